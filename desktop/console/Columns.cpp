#include "desktop/console/Columns.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

std::size_t WidthOf(std::int32_t code) {
  return static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code)));
}

// What a reader takes for one character: a letter with its accents, an emoji of several.
std::string_view TakeGrapheme(std::string_view* text) {
  const std::string_view all = *text;
  utf8proc_int32_t state = 0;
  Character last = TakeCharacter(text);
  std::size_t length = last.bytes.size();
  while (!text->empty()) {
    std::string_view rest = *text;
    const Character next = TakeCharacter(&rest);
    if (utf8proc_grapheme_break_stateful(last.code, next.code, &state)) break;
    length += next.bytes.size();
    *text = rest;
    last = next;
  }
  return all.substr(0, length);
}

}  // namespace

ScreenSize TerminalSize() {
  winsize size = {};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return {};
  return {size.ws_row, size.ws_col};
}

std::size_t Width(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) width += WidthOf(TakeCharacter(&text).code);
  return width;
}

std::string Padded(const std::string& text, std::size_t width) {
  const std::size_t used = Width(text);
  return text + std::string(used < width ? width - used : 0, ' ');
}

std::string CutTo(const std::string& text, std::size_t width) {
  constexpr std::string_view kEllipsis = "...";
  if (Width(text) <= width) return text;
  std::string cut;
  std::string_view rest = text;
  std::size_t left = width > kEllipsis.size() ? width - kEllipsis.size() : 0;
  while (!rest.empty()) {
    const std::string_view next = TakeGrapheme(&rest);
    if (Width(next) > left) break;
    left -= Width(next);
    cut += next;
  }
  return cut.append(kEllipsis);
}

}  // namespace desk
