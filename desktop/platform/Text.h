// Small text helpers of the desktop platform.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

namespace desk {

// printf into a string.
std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string FormatV(const char* format, va_list arguments);

// `bytes` up to its first NUL.
std::string CString(const std::string& bytes);

// A character of UTF-8, or one byte that is none: its code is -1.
struct Character {
  std::int32_t code = -1;
  std::string_view bytes;
};

// Takes the first character off `text`, which must not be empty.
Character TakeCharacter(std::string_view* text);

bool IsUtf8(std::string_view text);

// `text` fit for a terminal: control characters become "\xNN", and so do invisible ones that join
// nothing and malformed UTF-8 bytes.
std::string Printable(std::string_view text);

}  // namespace desk
