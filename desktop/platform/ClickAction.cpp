// The search for the id: each occurrence of the pattern is tried in turn.
// Works on bytes, without regard to locale or encoding.
#include "desktop/platform/ClickAction.h"

#include <charconv>
#include <limits>

namespace desk {
namespace {

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The number that `text` begins with; -1 unless it is a whole word that fits an int.
int LeadingNumber(std::string_view text) {
  unsigned value = 0;  // unsigned, so that a sign is not taken for part of the number
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || value > unsigned{std::numeric_limits<int>::max()}) return -1;
  if (stop != end && IsWordCharacter(*stop)) return -1;
  return static_cast<int>(value);
}

}  // namespace

int ParseIdByClickAction(std::string_view action, std::string_view pattern) {
  if (pattern.empty() || pattern.back() != 'x') return -1;
  const std::string_view prefix = pattern.substr(0, pattern.size() - 1);
  for (auto at = action.find(prefix); at != action.npos; at = action.find(prefix, at + 1)) {
    if (at > 0 && IsWordCharacter(action[at - 1])) continue;
    const int id = LeadingNumber(action.substr(at + prefix.size()));
    if (id >= 0) return id;
  }
  return -1;
}

}  // namespace desk
