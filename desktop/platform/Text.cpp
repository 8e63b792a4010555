// Formatting, and making any bytes fit for a terminal.
#include "desktop/platform/Text.h"

#include <utf8proc.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

namespace desk {
namespace {

// Direction overrides and other invisible format characters could disguise a line.
bool IsVisible(std::int32_t code) {
  const bool control = code < 0x20 || (code >= 0x7f && code < 0xa0);
  return !control && utf8proc_category(code) != UTF8PROC_CATEGORY_CF;
}

// Families of emoji and some words of India and Persia are written with a joiner, or its opposite,
// between two characters.
bool Joins(std::int32_t before, std::int32_t code, std::string_view rest) {
  const bool isJoiner = code == 0x200C || code == 0x200D;
  constexpr std::int32_t kAsciiEnd = 0x80;  // behind a digit it would hide in a number
  return isJoiner && before >= kAsciiEnd && IsVisible(before) && !rest.empty() &&
         IsVisible(TakeCharacter(&rest).code);
}

}  // namespace

std::string FormatV(const char* format, va_list arguments) {
  char* text = nullptr;
  if (vasprintf(&text, format, arguments) < 0) throw std::bad_alloc();
  const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
  return text;
}

std::string Format(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatV(format, arguments);
  va_end(arguments);
  return text;
}

std::string CString(const std::string& bytes) { return bytes.c_str(); }

Character TakeCharacter(std::string_view* text) {
  Character first;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text->data()),
                                       static_cast<utf8proc_ssize_t>(text->size()), &first.code);
  first.bytes = text->substr(0, length > 0 ? static_cast<std::size_t>(length) : 1);
  text->remove_prefix(first.bytes.size());
  return first;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (TakeCharacter(&text).code < 0) return false;
  }
  return true;
}

std::string Printable(std::string_view text) {
  std::string shown;
  std::int32_t before = 0;
  while (!text.empty()) {
    const Character letter = TakeCharacter(&text);
    if (IsVisible(letter.code) || Joins(before, letter.code, text)) {
      shown += letter.bytes;
    } else {
      for (const char byte : letter.bytes)
        shown += Format("\\x%02X", static_cast<unsigned char>(byte));
    }
    before = letter.code;
  }
  return shown;
}

}  // namespace desk
