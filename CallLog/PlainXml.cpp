// Where a document is no XML, the pass over it gives up; so TinyXML, which reads the copy, never
// sees a tag, a quote or a comment other than this pass has seen.
#include "CallLog/PlainXml.h"

#include <strings.h>

#include <algorithm>
#include <string_view>

#include "CallLog/XmlChars.h"

namespace NS_CALLLOG {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr auto IsSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };

bool EndsName(char c) {
  return IsSpace(c) || std::string_view("<>\"'=&/!?").find(c) != std::string_view::npos;
}

std::size_t SpacesAtStart(std::string_view text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsSpace);
  return static_cast<std::size_t>(end - text.begin());
}

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// What most names are made of; other characters are looked at one by one.
constexpr auto IsPlainNameCharacter = [](char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || c == '_';
};

// One pass over a document, most of which stays as it is and is copied in long runs:
//
//     document   <item a="x"><!-- gone -->text &amp; more</item>
//     out_       <item a="x">
//     run_                                ^ kept from here up to rest_, but not yet in out_
//     rest_                                    ^ not looked at yet
//
// So something has been kept as soon as out_ holds text, or rest_ is ahead of run_.
class PlainXmlWriter {
 public:
  PlainXmlWriter(std::string_view document, std::string* out)
      : rest_(document), run_(document.data()), out_(out) {}

  bool Run();

 private:
  bool Starts(std::string_view prefix) const { return rest_.substr(0, prefix.size()) == prefix; }
  bool Begun() const { return !out_->empty() || run_ != rest_.data(); }

  void Keep(std::size_t length) { rest_.remove_prefix(length); }
  void Replace(std::size_t length, std::string_view text);
  void Drop(std::size_t length) { Replace(length, {}); }
  void DropPast(std::string_view end);
  void DropInstruction();
  void DropXmlDeclaration();
  void DropDeclaration();
  bool DropByteOrderMark();
  bool DropBadByte();

  template <class Wanted>
  void KeepWhile(Wanted wanted);
  void KeepCharacter();
  bool KeepNode();
  bool KeepCData();
  bool KeepWholeCData();
  void KeepCDataCharacter();
  bool KeepOpenTag();
  bool KeepCloseTag();
  bool KeepAttributes();
  bool KeepAttribute();
  bool KeepName();
  bool QuoteValue();
  bool KeepUntil(char end);
  void KeepAmpersand();
  std::size_t ReferenceLength(char32_t* character) const;

  std::string_view rest_;
  const char* run_;
  std::string* const out_;
  int depth_ = 0;
  bool bracketsClose_ = true;  // false once a document type was found whose do not
};

// Behind the root element nothing but further nodes counts, as in TinyXML: text ends the document
// there.
bool PlainXmlWriter::Run() {
  bool anything = false;
  for (;;) {
    if (depth_ == 0) {
      do Drop(SpacesAtStart(rest_));
      while (!Begun() && (DropByteOrderMark() || DropBadByte()));
      if (rest_.empty() || rest_.front() != '<') return anything;
    } else if (!KeepUntil('<')) {
      return false;
    }
    if (!KeepNode()) return false;
    anything = true;
  }
}

void PlainXmlWriter::Replace(std::size_t length, std::string_view text) {
  out_->append(run_, rest_.data());
  out_->append(text);
  rest_.remove_prefix(length);
  run_ = rest_.data();
}

void PlainXmlWriter::DropPast(std::string_view end) {
  const std::size_t found = rest_.find(end);
  Drop(found == std::string_view::npos ? rest_.size() : found + end.size());
}

// "<?...?>", or "<?...>" when no "?>" comes before the next one.
void PlainXmlWriter::DropInstruction() {
  if (strncasecmp(rest_.data(), "<?xml", 5) == 0) return DropXmlDeclaration();  // up to a NUL
  const std::string_view head = rest_.substr(0, rest_.find("<?", 2));
  DropPast(head.find("?>") != std::string_view::npos ? "?>" : ">");
}

// Up to the first ">" that stands in no value; a quote that stays open begins none.
void PlainXmlWriter::DropXmlDeclaration() {
  const std::string_view head = rest_.substr(0, rest_.find('<', 1));
  std::size_t at = head.find_first_of(">\"'");
  while (at != std::string_view::npos && head[at] != '>') {
    const std::size_t close = head.find(head[at], at + 1);
    at = head.find_first_of(">\"'", (close != std::string_view::npos ? close : at) + 1);
  }
  if (at != std::string_view::npos) return Drop(at + 1);
  DropPast(">");
}

// "<!...>", in front of the root element with the bracketed part of a document type. Where brackets
// stay open the first ">" ends it.
void PlainXmlWriter::DropDeclaration() {
  int brackets = 0;
  for (std::size_t i = 0; !Begun() && bracketsClose_ && i < rest_.size(); ++i) {
    const char c = rest_[i];
    if (c == '[') ++brackets;
    if (c == ']') --brackets;
    if (c == '>' && brackets <= 0) return Drop(i + 1);
  }
  bracketsClose_ = false;
  DropPast(">");
}

bool PlainXmlWriter::DropByteOrderMark() {
  if (!Starts(kByteOrderMark)) return false;
  Drop(kByteOrderMark.size());
  return true;
}

// Between tags and attributes a byte that is no character is passed over, also one that another
// program, or the decoder, has marked as such.
bool PlainXmlWriter::DropBadByte() {
  if (rest_.empty() || IsPlainXmlText(rest_.front())) return false;
  const XmlCharacter first = FirstXmlCharacter(rest_);
  if (first.allowed && !Starts(kReplacementCharacter)) return false;
  Drop(first.length);
  return true;
}

template <class Wanted>
void PlainXmlWriter::KeepWhile(Wanted wanted) {
  const auto end = std::find_if_not(rest_.begin(), rest_.end(), wanted);
  Keep(static_cast<std::size_t>(end - rest_.begin()));
}

void PlainXmlWriter::KeepCharacter() {
  const XmlCharacter first = FirstXmlCharacter(rest_);
  if (first.allowed) {
    Keep(first.length);
  } else {
    Replace(first.length, kReplacementCharacter);
  }
}

bool PlainXmlWriter::KeepNode() {
  if (Starts("<!--")) {
    Drop(4);
    DropPast("-->");
    return true;
  }
  if (Starts("<![CDATA[")) return KeepCData();
  if (Starts("<!")) {
    DropDeclaration();
    return true;
  }
  if (Starts("<?")) {
    DropInstruction();
    return true;
  }
  return Starts("</") ? KeepCloseTag() : KeepOpenTag();
}

// In an element it becomes text, of which there is one piece then, whoever asks for it. What is
// blanks alone would be no text, and stays CDATA.
bool PlainXmlWriter::KeepCData() {
  const std::size_t end = rest_.find("]]>");
  if (depth_ == 0 || end == std::string_view::npos) return KeepWholeCData();
  const std::string_view inside = rest_.substr(9, end - 9);
  if (!inside.empty() && SpacesAtStart(inside) == inside.size()) return KeepWholeCData();
  Drop(9);
  while (!Starts("]]>")) KeepCDataCharacter();
  Drop(3);
  return true;
}

// Behind the root element nothing is lost with the end.
bool PlainXmlWriter::KeepWholeCData() {
  const bool behindRoot = depth_ == 0 && Begun();
  Keep(9);
  for (;;) {
    KeepWhile([](char c) { return IsPlainXmlText(c) && c != ']'; });
    if (rest_.empty()) return behindRoot;
    if (Starts("]]>")) break;
    KeepCharacter();
  }
  Keep(3);
  return true;
}

// As a reference where TinyXML would take it for markup, or condense it with other blanks.
void PlainXmlWriter::KeepCDataCharacter() {
  switch (rest_.front()) {
    case '<': Replace(1, "&lt;"); break;
    case '&': Replace(1, "&amp;"); break;
    case ' ': Replace(1, "&#32;"); break;
    case '\t': Replace(1, "&#9;"); break;
    case '\n': Replace(1, "&#10;"); break;
    case '\r': Replace(1, "&#13;"); break;
    default: KeepCharacter();
  }
}

bool PlainXmlWriter::KeepOpenTag() {
  if (depth_ == kMaxXmlDepth) return false;
  Keep(1);
  return KeepName() && KeepAttributes();
}

// Outside the root element TinyXML passes over one that closes nothing.
bool PlainXmlWriter::KeepCloseTag() {
  if (depth_ == 0) {
    DropPast(">");
    return true;
  }
  Keep(2);
  if (!KeepName()) return false;
  KeepWhile(IsSpace);
  if (!Starts(">")) return false;
  Keep(1);
  --depth_;
  return true;
}

// From behind the element's name to the end of its tag.
bool PlainXmlWriter::KeepAttributes() {
  for (int count = 0;; ++count) {
    do KeepWhile(IsSpace);
    while (DropBadByte());
    if (Starts("/>")) {
      Keep(2);
      return true;
    }
    if (Starts(">")) {
      Keep(1);
      ++depth_;
      return true;
    }
    if (count == kMaxXmlAttributes || !KeepAttribute()) return false;
  }
}

bool PlainXmlWriter::KeepAttribute() {
  if (!KeepName()) return false;
  KeepWhile(IsSpace);
  if (!Starts("=")) return false;
  Keep(1);
  KeepWhile(IsSpace);
  if (!Starts("\"") && !Starts("'")) return QuoteValue();
  const char quote = rest_.front();
  Keep(1);
  if (!KeepUntil(quote)) return false;
  Keep(1);
  return true;
}

// A value that stands without quotes, up to a blank, "/" or ">". References are plain text in it.
bool PlainXmlWriter::QuoteValue() {
  Replace(0, "\"");
  while (!rest_.empty() && !IsSpace(rest_.front()) && !Starts("/") && !Starts(">")) {
    if (Starts("\"") || Starts("'")) return false;
    if (Starts("&")) {
      Replace(1, "&amp;");
    } else {
      KeepCharacter();
    }
  }
  Replace(0, "\"");
  return true;
}

// A name, up to what cannot be a part of it; bytes that are no character drop out. What begins
// otherwise than a name would be no element for TinyXML.
bool PlainXmlWriter::KeepName() {
  while (DropBadByte()) {
  }
  if (rest_.empty() || !IsNameStart(rest_.front())) return false;
  for (;;) {
    KeepWhile(IsPlainNameCharacter);
    if (rest_.empty() || EndsName(rest_.front())) return true;
    if (!DropBadByte()) KeepCharacter();
  }
}

// Text up to `end`, which stays; false when the document ends first.
bool PlainXmlWriter::KeepUntil(char end) {
  for (;;) {
    KeepWhile([end](char c) { return IsPlainXmlText(c) && c != '&' && c != end; });
    if (rest_.empty()) return false;
    if (rest_.front() == end) return true;
    if (rest_.front() == '&') {
      KeepAmpersand();
    } else {
      KeepCharacter();
    }
  }
}

// A reference, or an ampersand that stands for itself. No other may reach TinyXML: behind "&#" it
// looks for a semicolon as far as the document's end, and swallows the tags on the way.
void PlainXmlWriter::KeepAmpersand() {
  for (const std::string_view entity : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
    if (!Starts(entity)) continue;
    Keep(entity.size());
    return;
  }
  char32_t character = 0;
  const std::size_t length = ReferenceLength(&character);
  if (length == 0) {
    Replace(1, "&amp;");
  } else if (IsXmlCharacter(character)) {
    Keep(length);
  } else {
    Replace(length, kReplacementCharacter);
  }
}

// Length of the "&#233;" or "&#xE9;" at the start, 0 when there is none; and the character it
// stands for.
std::size_t PlainXmlWriter::ReferenceLength(char32_t* character) const {
  if (!Starts("&#")) return 0;
  const bool hexadecimal = Starts("&#x");
  const std::string_view digits = hexadecimal ? "0123456789abcdefABCDEF" : "0123456789";
  const std::size_t begin = hexadecimal ? 3 : 2;
  const std::size_t end = rest_.find_first_not_of(digits, begin);
  if (end == begin || end == std::string_view::npos || rest_[end] != ';') return 0;
  const char32_t base = hexadecimal ? 16 : 10;
  for (std::size_t i = begin; i < end && *character <= 0x10FFFF; ++i) {
    const std::size_t value = digits.find(rest_[i]);
    const std::size_t digit = value < 16 ? value : value - 6;  // "A" stands behind "f"
    *character = *character * base + static_cast<char32_t>(digit);
  }
  return end + 1;
}

}  // namespace

bool ToPlainXml(const std::string& bytes, std::string* plain) {
  plain->reserve(bytes.size());
  return PlainXmlWriter(bytes, plain).Run();
}

}  // namespace NS_CALLLOG
