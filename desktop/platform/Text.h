// Small text helpers of the desktop platform.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace desk {

// printf into a string.
std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string FormatV(const char* format, va_list arguments);

// `bytes` up to its first NUL.
std::string CString(const std::string& bytes);

// `text` with "***" for the user and password of a URL in it, and for whatever might belong to
// them: where that cannot be told, up to the last "@" of the text.
std::string MaskCredentials(std::string_view text);

// `text` fit for a terminal: control characters become "\xNN", and so do malformed UTF-8 bytes.
std::string Printable(std::string_view text);

}  // namespace desk
