// UTF-8 by the table of its well-formed sequences, and the characters that XML 1.0 allows.
#include "CallLog/XmlChars.h"

#include <algorithm>
#include <cstdint>

namespace NS_CALLLOG {
namespace {

// Bounds of the second byte, by lead byte: they keep out overlong forms, surrogates and what lies
// beyond U+10FFFF.
struct Sequence {
  std::size_t length;
  unsigned char secondMin;
  unsigned char secondMax;
};

Sequence SequenceOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

// Length of the well-formed sequence at the start of `bytes`; 0 when there is none.
std::size_t DecodeUtf8(std::string_view bytes, char32_t* character) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const Sequence sequence = SequenceOf(at(0));
  if (sequence.length == 0 || sequence.length > bytes.size()) return 0;
  if (sequence.length == 1) {
    *character = at(0);
    return 1;
  }
  if (at(1) < sequence.secondMin || at(1) > sequence.secondMax) return 0;
  std::uint32_t value = at(0) & (0x7Fu >> sequence.length);
  for (std::size_t i = 1; i < sequence.length; ++i) {
    if ((at(i) & 0xC0u) != 0x80u) return 0;
    value = (value << 6) | (at(i) & 0x3Fu);
  }
  *character = value;
  return sequence.length;
}

}  // namespace

bool IsXmlCharacter(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  if (character >= 0xD800 && character <= 0xDFFF) return false;
  return character <= 0x10FFFF && character != 0xFFFE && character != 0xFFFF;
}

XmlCharacter FirstXmlCharacter(std::string_view bytes) {
  char32_t character = 0;
  const std::size_t length = DecodeUtf8(bytes, &character);
  if (length == 0) return {1, false};
  return {length, IsXmlCharacter(character)};
}

bool IsXmlText(std::string_view bytes) {
  for (;;) {
    const auto other = std::find_if_not(bytes.begin(), bytes.end(), IsPlainXmlText);
    if (other == bytes.end()) return true;
    bytes.remove_prefix(static_cast<std::size_t>(other - bytes.begin()));
    const XmlCharacter first = FirstXmlCharacter(bytes);
    if (!first.allowed) return false;
    bytes.remove_prefix(first.length);
  }
}

std::string ToXmlText(const std::string& bytes) {
  std::string text;
  std::string_view rest = bytes.c_str();
  text.reserve(rest.size());
  while (!rest.empty()) {
    const XmlCharacter first = FirstXmlCharacter(rest);
    text.append(first.allowed ? rest.substr(0, first.length) : kReplacementCharacter);
    rest.remove_prefix(first.length);
  }
  return text;
}

}  // namespace NS_CALLLOG
