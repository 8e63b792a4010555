// Single-byte documents become UTF-8 before anything else looks at them. What says ISO-8859-1 is
// read as windows-1252, as everybody does: the controls between 0x80 and 0x9F, which that would
// have instead, are in no text.
#include "CallLog/XmlEncoding.h"

#include <strings.h>

#include <algorithm>
#include <string_view>

#include "CallLog/XmlChars.h"

namespace NS_CALLLOG {
namespace {

// windows-1252 from 0x80 to 0x9F; U+FFFD where it has no character.
constexpr char16_t kWindows1252[] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

void AppendUtf8(char16_t character, std::string* out) {
  const unsigned int value = character;
  if (value < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (value >> 6)));
  } else {
    out->push_back(static_cast<char>(0xE0 | (value >> 12)));
    out->push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
  }
  out->push_back(static_cast<char>(0x80 | (value & 0x3F)));
}

// The value of "encoding" in the XML declaration at the start; empty when there is none.
std::string_view DeclaredEncoding(std::string_view document) {
  constexpr std::string_view kName = "encoding";
  constexpr std::string_view kBlanks = " \t\r\n";
  document.remove_prefix(std::min(document.find_first_not_of(kBlanks), document.size()));
  if (strncasecmp(document.data(), "<?xml", 5) != 0) return {};
  std::string_view rest = document.substr(0, document.find('>'));
  const std::size_t name = rest.find(kName);
  if (name == std::string_view::npos) return {};
  rest.remove_prefix(name + kName.size());
  const std::size_t quote = rest.find_first_of("\"'");
  if (quote == std::string_view::npos) return {};
  const std::size_t end = rest.find(rest[quote], quote + 1);
  if (end == std::string_view::npos) return {};
  return rest.substr(quote + 1, end - quote - 1);
}

bool IsOneOf(std::string_view name, std::initializer_list<const char*> names) {
  const std::string wanted(name);
  return std::any_of(names.begin(), names.end(), [&](const char* candidate) {
    return strcasecmp(candidate, wanted.c_str()) == 0;
  });
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = FirstXmlCharacter(bytes).length;
    if (length == 1 && static_cast<unsigned char>(bytes.front()) >= 0x80) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace

void DecodeSingleByteXml(std::string* document) {
  const auto names = {"ISO-8859-1", "ISO8859-1", "latin1", "windows-1252", "cp1252"};
  if (!IsOneOf(DeclaredEncoding(*document), names) || IsUtf8(*document)) return;
  std::string utf8;
  utf8.reserve(document->size() + document->size() / 8);
  for (const char c : *document) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8.push_back(c);
    } else if (byte < 0xA0) {
      AppendUtf8(kWindows1252[byte - 0x80], &utf8);
    } else {
      AppendUtf8(byte, &utf8);
    }
  }
  document->swap(utf8);
}

}  // namespace NS_CALLLOG
