// Which bytes may stand in the text of a UTF-8 XML document.
#pragma once

#include <string>
#include <string_view>

namespace NS_CALLLOG {

// U+FFFD, which stands for what may not.
inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// True for the characters that XML 1.0 allows.
bool IsXmlCharacter(char32_t character);

// Appends the first character of `bytes` (which must not be empty) to `out`, or U+FFFD for a byte
// that is no part of well-formed UTF-8 and for a character that XML 1.0 forbids. The number of
// bytes used.
std::size_t AppendXmlCharacter(std::string_view bytes, std::string* out);

// `bytes` up to the first NUL, fit for an XML document.
std::string ToXmlText(const std::string& bytes);

}  // namespace NS_CALLLOG
