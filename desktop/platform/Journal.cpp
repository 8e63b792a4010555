// Keeps the newest lines; whoever reads them gets copies.
#include "desktop/platform/Journal.h"

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

void Journal::Clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  lines_.clear();
}

}  // namespace desk
