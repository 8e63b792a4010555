// Whole numbers as text.
#pragma once

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>

namespace desk {

// The decimal number that `text` is; nothing for any other text, and for a number beyond the
// limits.
inline std::optional<int> WholeNumber(std::string_view text,
                                      int low = std::numeric_limits<int>::min(),
                                      int high = std::numeric_limits<int>::max()) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < low || number > high) return std::nullopt;
  return number;
}

}  // namespace desk
