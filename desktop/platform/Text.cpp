// Formatting, hiding credentials, and making any bytes fit for a terminal.
#include "desktop/platform/Text.h"

#include <utf8proc.h>

#include <cstdio>

namespace desk {

std::string FormatV(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
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

namespace {

// Where the credentials at the start of `rest`, which follows "://", end. Nobody has escaped them:
// they can hold what looks like a host, a path or another URL. So they reach to the last "@" of
// all, but for those where a path repeats the user, as in "/user/anna@example.org/".
std::size_t CredentialsEnd(std::string_view rest) {
  const std::size_t colon = rest.find(':');
  const std::string repeated = "/" + std::string(rest.substr(0, colon)) + "/";
  std::size_t at = rest.rfind('@');
  for (;;) {
    const std::size_t again = rest.rfind(repeated, at);
    if (again == std::string_view::npos || at >= again + repeated.size()) break;
    at = rest.rfind('@', again);
  }
  return at < colon ? rest.rfind('@') : at;
}

}  // namespace

std::string MaskCredentials(std::string_view text) {
  constexpr std::string_view kSchemeEnd = "://";
  const std::size_t scheme = text.find(kSchemeEnd);
  if (scheme == std::string_view::npos) return std::string(text);
  const std::size_t start = scheme + kSchemeEnd.size();
  const std::size_t end = CredentialsEnd(text.substr(start));
  if (end == std::string_view::npos) return std::string(text);
  return std::string(text.substr(0, start)).append("***").append(text.substr(start + end));
}

std::string Printable(std::string_view text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + i;
    utf8proc_int32_t letter = 0;
    const auto left = static_cast<utf8proc_ssize_t>(text.size() - i);
    const utf8proc_ssize_t length = utf8proc_iterate(bytes, left, &letter);
    const bool control = length > 0 && (letter < 0x20 || (letter >= 0x7f && letter < 0xa0));
    // Direction overrides and other invisible format characters could disguise a line.
    const bool format = length > 0 && utf8proc_category(letter) == UTF8PROC_CATEGORY_CF;
    const std::size_t step = length > 0 ? static_cast<std::size_t>(length) : 1;
    if (length <= 0 || control || format) {
      for (std::size_t k = 0; k < step; ++k) shown += Format("\\x%02X", bytes[k]);
    } else {
      shown += text.substr(i, step);
    }
    i += step;
  }
  return shown;
}

}  // namespace desk
