// Text measured in a terminal's columns.
#pragma once

#include <string>
#include <string_view>

namespace desk {

struct ScreenSize {
  int rows = 0;  // 0: not known
  int columns = 80;
};

// That of the terminal on standard output.
ScreenSize TerminalSize();

// The columns that printable UTF-8 takes.
std::size_t Width(std::string_view text);

// `text` with blanks behind it up to `width`.
std::string Padded(const std::string& text, std::size_t width);

// `text`, or as many whole characters of it as leave room for an ellipsis in `width`.
std::string CutTo(const std::string& text, std::size_t width);

}  // namespace desk
