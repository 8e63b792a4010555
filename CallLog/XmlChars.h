// Which bytes may stand in the text of a UTF-8 XML document.
#pragma once

#include <string>
#include <string_view>

namespace NS_CALLLOG {

// U+FFFD, which stands for what may not.
inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// True for the bytes from 0x20 to 0x7F, each of which is a character that XML allows: most text is
// made of them alone, and can be passed on as it is.
inline constexpr auto IsPlainXmlText = [](char byte) {
  return static_cast<signed char>(byte) >= 0x20;
};

// True for the characters that XML 1.0 allows.
bool IsXmlCharacter(char32_t character);

// The first character of some bytes.
struct XmlCharacter {
  std::size_t length;  // bytes that it takes; 1 for a byte that is no part of well-formed UTF-8
  bool allowed;        // false for such a byte, and for a character that XML 1.0 forbids
};

// The first character of `bytes`, which must not be empty.
XmlCharacter FirstXmlCharacter(std::string_view bytes);

// True when all of `bytes` may stand in a document as it is.
bool IsXmlText(std::string_view bytes);

// `bytes` up to the first NUL, fit for an XML document: with U+FFFD for what is not allowed.
std::string ToXmlText(const std::string& bytes);

}  // namespace NS_CALLLOG
