// A small reader of our own, because no library of Debian 12 serves: libvformat crashes on a
// cut-off file, libbelcard reads 4.0 alone, libvc neither unfolds nor decodes, and libkf5contacts
// and libebook-contacts bring much of the Qt or GNOME platform along.
#include "desktop/platform/contacts/VCard.h"

#include <iconv.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>

#include "desktop/platform/Text.h"

namespace desk {

namespace {

constexpr auto kNone = std::string_view::npos;
constexpr char kBegin[] = "BEGIN:VCARD";
constexpr char kNoCard[] = "not a vCard: BEGIN:VCARD expected";
constexpr char kNoEnd[] = "the card has no END:VCARD";

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return upper;
}

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != kNone; }

std::string DecodeQuotedPrintable(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char* const hex = text.data() + i + 1;
    unsigned char byte = 0;
    const bool escape = text[i] == '=' && i + 2 < text.size() &&
                        std::from_chars(hex, hex + 2, byte, 16).ptr == hex + 2;
    decoded += escape ? static_cast<char>(byte) : text[i];
    if (escape) i += 2;
  }
  return decoded;
}

// `text` in UTF-8; as it is when it is not in `charset`.
std::string FromCharset(const std::string& charset, const std::string& text) {
  const iconv_t converter = iconv_open("UTF-8", charset.c_str());
  if (converter == reinterpret_cast<iconv_t>(-1)) return text;
  std::string input = text, output(4 * text.size(), '\0');
  char *from = input.data(), *to = output.data();
  std::size_t left = input.size(), room = output.size();
  const bool whole = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
  iconv_close(converter);
  return whole ? output.substr(0, output.size() - room) : text;
}

// An unknown escape stays as it is: it may be part of a path.
std::string Unescape(std::string_view text) {
  constexpr std::string_view kEscapes = "\\,;:nN";
  constexpr std::string_view kMeanings = "\\,;:\n\n";
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escaped = text[i] == '\\' && i + 1 < text.size();
    const auto meaning = escaped ? kEscapes.find(text[i + 1]) : kNone;
    plain += meaning == kNone ? text[i] : kMeanings[meaning];
    if (meaning != kNone) ++i;
  }
  return plain;
}

struct Line {
  std::size_t number;
  std::string text;
};

// True for a property whose lines may end in a soft break, in the way of 2.1.
bool IsQuotedPrintable(std::string_view line) {
  return Contains(Upper(line.substr(0, line.find(':'))), "QUOTED-PRINTABLE");
}

// Without the blank ones.
std::vector<Line> UnfoldedLines(const std::string& text) {
  std::vector<Line> lines;
  std::istringstream input(text);
  std::string line;
  bool mayBreak = false;
  for (std::size_t number = 1; std::getline(input, line); ++number) {
    if (number == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (mayBreak && !lines.back().text.empty() && lines.back().text.back() == '=') {
      lines.back().text.pop_back();
      lines.back().text += line;
    } else if (!lines.empty() && !line.empty() && (line[0] == ' ' || line[0] == '\t')) {
      lines.back().text.append(line, 1);
    } else {
      mayBreak = IsQuotedPrintable(line);
      lines.push_back({number, line});
    }
  }
  const auto isBlank = [](const Line& each) { return each.text.find_first_not_of(" \t") == kNone; };
  lines.erase(std::remove_if(lines.begin(), lines.end(), isBlank), lines.end());
  return lines;
}

struct Property {
  std::string name;        // in capitals, without its group; empty: the line is no property
  std::string parameters;  // in capitals
  std::string value;       // as it is written

  std::string Parameter(const std::string& parameter) const {
    const auto begin = parameters.find(";" + parameter + "=");
    if (begin == kNone) return {};
    const std::string text = parameters.substr(begin + parameter.size() + 2);
    return text.substr(0, text.find(';'));
  }

  // A part of the value.
  std::string Read(std::string_view part) const {
    const bool quoted = Contains(parameters, "QUOTED-PRINTABLE");
    const std::string text = quoted ? DecodeQuotedPrintable(part) : std::string(part);
    const std::string charset = Parameter("CHARSET");
    return Unescape(charset.empty() ? text : FromCharset(charset, text));
  }

  // The part of this number, of those between semicolons.
  std::string Component(int number) const {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
      if (value[i] == '\\') {
        ++i;
      } else if (value[i] == ';') {
        if (number-- == 0) return Read(std::string_view(value).substr(begin, i - begin));
        begin = i + 1;
      }
    }
    return number == 0 ? Read(std::string_view(value).substr(begin)) : "";
  }
};

Property ParseProperty(std::string_view line) {
  bool quoted = false;
  const auto colon = std::find_if(line.begin(), line.end(), [&](char c) {
    quoted ^= c == '"';
    return c == ':' && !quoted;
  });
  if (colon == line.end()) return {};
  const auto length = static_cast<std::size_t>(colon - line.begin());
  const std::string head = Upper(line.substr(0, length));
  const auto nameEnd = std::min(head.find(';'), head.size());
  const std::string name = head.substr(0, nameEnd);
  return {name.substr(name.rfind('.') + 1), head.substr(nameEnd),
          std::string(line.substr(length + 1))};
}

// Empty for what names nobody.
std::string NameIn(const Property& property) {
  if (property.name == "FN") return property.Read(property.value);
  if (property.name == "ORG") return property.Component(0);
  if (property.name != "N") return {};
  const std::string family = property.Component(0), given = property.Component(1);
  return given + (given.empty() || family.empty() ? "" : " ") + family;
}

void Store(const Property& property, Contact& contact) {
  const std::string value = property.Read(property.value);
  const std::string scheme = Upper(value.substr(0, value.find(':') + 1));
  if (property.name == "TEL") {
    // The number of a URI ends where its parameters begin.
    std::string number =
        DialledForm(scheme == "TEL:" ? value.substr(4, value.find(';') - 4) : value);
    if (!number.empty()) contact.numbers.push_back(std::move(number));
  } else if (property.name == "PHOTO" && contact.photo.empty()) {
    const bool isInline = scheme == "DATA:" || Contains(property.parameters, "ENCODING=B") ||
                          Contains(property.parameters, "BASE64");
    if (!isInline) contact.photo = value;
  }
}

struct Fault {
  std::size_t line;
  const char* reason;
};

void Check(bool good, std::size_t line, const char* reason) {
  if (!good) throw Fault{line, reason};
}

using LineIterator = std::vector<Line>::const_iterator;

// The card that begins at `line`, which moves to its end.
Contact ReadCard(LineIterator* line, LineIterator end) {
  const std::size_t begin = (*line)->number;
  std::map<std::string, std::string> names;  // by property
  Contact contact;
  while (++*line != end && Upper((*line)->text) != "END:VCARD") {
    Check(Upper((*line)->text) != kBegin, begin, kNoEnd);
    const Property property = ParseProperty((*line)->text);
    Check(!property.name.empty(), (*line)->number, "neither a property nor END:VCARD");
    const std::string name = NameIn(property);
    Check(IsUtf8(name), (*line)->number, "the name is not in UTF-8, or not in its CHARSET");
    if (!name.empty()) names.emplace(property.name, name);
    Store(property, contact);
  }
  Check(*line != end, begin, kNoEnd);
  for (const char* property : {"FN", "N", "ORG"}) {
    if (contact.name.empty()) contact.name = names[property];
  }
  Check(!contact.name.empty(), begin, "the card has no name");
  Check(!contact.numbers.empty(), begin, "the card has no number");
  return contact;
}

}  // namespace

std::vector<Contact> ParseVCards(const std::string& text, const std::string& source,
                                 std::ostream& skipped) {
  const std::vector<Line> lines = UnfoldedLines(text);
  std::vector<Contact> contacts;
  for (auto line = lines.begin(); line != lines.end();) {
    try {
      Check(Upper(line->text) == kBegin, line->number, kNoCard);
      contacts.push_back(ReadCard(&line, lines.end()));
      ++line;
    } catch (const Fault& fault) {
      skipped << source << ":" << fault.line << ": " << fault.reason << "\n";
      line = std::find_if(line, lines.end(),
                          [](const Line& each) { return Upper(each.text) == kBegin; });
    }
  }
  return contacts;
}

}  // namespace desk
