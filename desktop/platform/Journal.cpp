// Keeps the newest lines; whoever reads them gets copies.
#include "desktop/platform/Journal.h"

#include <algorithm>
#include <utility>

namespace desk {

void Journal::Add(std::string line) {
  if (line.size() > kLineBytes) line = line.substr(0, kLineBytes);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (lines_.size() == kCapacity) lines_.pop_front();
  lines_.push_back(std::move(line));
}

std::vector<std::string> Journal::Lines() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {lines_.begin(), lines_.end()};
}

std::vector<std::string> Journal::LinesOf(const std::vector<std::string>& prefixes) const {
  std::vector<std::string> found;
  for (const std::string& line : Lines()) {
    const auto begins = [&](const std::string& prefix) { return line.rfind(prefix, 0) == 0; };
    if (std::any_of(prefixes.begin(), prefixes.end(), begins)) found.push_back(line);
  }
  return found;
}

void Journal::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  lines_.clear();
}

}  // namespace desk
