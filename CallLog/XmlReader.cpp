// A file is read once, copied into plain XML in one pass, and only that copy is handed to TinyXML.
#include "XmlReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <tinyxml.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "XmlChars.h"
#include "XmlEncoding.h"

namespace NS_CALLLOG {
namespace {

class FileDescriptor {
 public:
  // Non-blocking, so that a FIFO in the file's place does not hold the phone.
  explicit FileDescriptor(const std::string& path)
      : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
  ~FileDescriptor() {
    if (fd_ >= 0) close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int get() const { return fd_; }

 private:
  int fd_;
};

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// One pass over a document, from `rest_` to `out_`. Where it finds no XML it gives up; so TinyXML,
// which reads the copy, never sees a tag, a quote or a comment other than this pass has seen.
class PlainXmlWriter {
 public:
  PlainXmlWriter(std::string_view document, std::string* out) : rest_(document), out_(out) {}

  bool Run();

 private:
  bool Starts(std::string_view prefix) const { return rest_.substr(0, prefix.size()) == prefix; }
  void SkipSpaces();
  bool SkipBadByte();
  void SkipPast(std::string_view end);
  void SkipDeclaration();
  bool CopyNode();
  bool CopyCData();
  bool CopyOpenTag();
  bool CopyCloseTag();
  bool CopyAttributes();
  bool CopyAttribute();
  bool CopyName(std::string_view ends);
  bool CopyUntil(char end);
  void CopyAmpersand();
  std::size_t ReferenceLength(char32_t* character) const;

  std::string_view rest_;
  std::string* const out_;
  int depth_ = 0;
};

// Behind the root element nothing but further nodes counts, as in TinyXML: text ends the document
// there.
bool PlainXmlWriter::Run() {
  if (Starts("\xEF\xBB\xBF")) rest_.remove_prefix(3);
  bool anything = false;
  for (;;) {
    if (depth_ == 0) {
      SkipSpaces();
      while (out_->empty() && SkipBadByte()) SkipSpaces();
      if (rest_.empty() || rest_.front() != '<') return anything;
    } else if (!CopyUntil('<')) {
      return false;
    }
    if (!CopyNode()) return false;
    anything = true;
  }
}

void PlainXmlWriter::SkipSpaces() {
  while (!rest_.empty() && IsSpace(rest_.front())) rest_.remove_prefix(1);
}

// Between tags and attributes a byte that is no character is passed over.
bool PlainXmlWriter::SkipBadByte() {
  if (rest_.empty()) return false;
  std::string character;
  const std::size_t length = AppendXmlCharacter(rest_, &character);
  if (character != kReplacementCharacter) return false;
  rest_.remove_prefix(length);
  return true;
}

void PlainXmlWriter::SkipPast(std::string_view end) {
  const std::size_t found = rest_.find(end);
  rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + end.size());
}

// "<!...>", with a bracketed part when it is a document type.
void PlainXmlWriter::SkipDeclaration() {
  int brackets = 0;
  while (!rest_.empty()) {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    if (c == '[') ++brackets;
    if (c == ']') --brackets;
    if (c == '>' && brackets <= 0) return;
  }
}

bool PlainXmlWriter::CopyNode() {
  if (Starts("<!--")) {
    rest_.remove_prefix(4);
    SkipPast("-->");
    return true;
  }
  if (Starts("<![CDATA[")) return CopyCData();
  if (Starts("<!")) {
    SkipDeclaration();
    return true;
  }
  if (Starts("<?")) {
    SkipPast("?>");
    return true;
  }
  return Starts("</") ? CopyCloseTag() : CopyOpenTag();
}

bool PlainXmlWriter::CopyCData() {
  rest_.remove_prefix(9);
  while (!Starts("]]>")) {
    if (rest_.empty()) return false;
    if (rest_.front() == '<' || rest_.front() == '&') {
      out_->append(rest_.front() == '<' ? "&lt;" : "&amp;");
      rest_.remove_prefix(1);
    } else {
      rest_.remove_prefix(AppendXmlCharacter(rest_, out_));
    }
  }
  rest_.remove_prefix(3);
  return depth_ > 0;
}

bool PlainXmlWriter::CopyOpenTag() {
  if (depth_ == kMaxXmlDepth) return false;
  out_->push_back('<');
  rest_.remove_prefix(1);
  return CopyName("/>") && CopyAttributes();
}

bool PlainXmlWriter::CopyCloseTag() {
  if (depth_ == 0) return false;
  out_->append("</");
  rest_.remove_prefix(2);
  if (!CopyName(">")) return false;
  SkipSpaces();
  if (!Starts(">")) return false;
  out_->push_back('>');
  rest_.remove_prefix(1);
  --depth_;
  return true;
}

// From behind the element's name to the end of its tag.
bool PlainXmlWriter::CopyAttributes() {
  for (int count = 0;; ++count) {
    do SkipSpaces();
    while (SkipBadByte());
    if (Starts("/>")) {
      out_->append("/>");
      rest_.remove_prefix(2);
      return true;
    }
    if (Starts(">")) {
      out_->push_back('>');
      rest_.remove_prefix(1);
      ++depth_;
      return true;
    }
    if (count == kMaxXmlAttributes || !CopyAttribute()) return false;
  }
}

bool PlainXmlWriter::CopyAttribute() {
  out_->push_back(' ');
  if (!CopyName("=")) return false;
  SkipSpaces();
  if (!Starts("=")) return false;
  rest_.remove_prefix(1);
  SkipSpaces();
  if (!Starts("\"") && !Starts("'")) return false;
  const char quote = rest_.front();
  rest_.remove_prefix(1);
  out_->append({'=', quote});
  if (!CopyUntil(quote)) return false;
  rest_.remove_prefix(1);
  out_->push_back(quote);
  return true;
}

// A name, which ends at white space or at one of `ends`; bytes that are no character drop out. What
// begins otherwise than a name would be no element for TinyXML.
bool PlainXmlWriter::CopyName(std::string_view ends) {
  while (SkipBadByte()) {
  }
  if (rest_.empty() || !IsNameStart(rest_.front())) return false;
  while (!rest_.empty() && !IsSpace(rest_.front()) &&
         ends.find(rest_.front()) == std::string_view::npos) {
    constexpr std::string_view kNotInNames = "<>\"'=&/!?";
    if (kNotInNames.find(rest_.front()) != std::string_view::npos) return false;
    if (!SkipBadByte()) rest_.remove_prefix(AppendXmlCharacter(rest_, out_));
  }
  return true;
}

// Text up to `end`, which stays; false when the document ends first.
bool PlainXmlWriter::CopyUntil(char end) {
  while (!rest_.empty() && rest_.front() != end) {
    if (rest_.front() == '&') {
      CopyAmpersand();
    } else {
      rest_.remove_prefix(AppendXmlCharacter(rest_, out_));
    }
  }
  return !rest_.empty();
}

// A reference, or an ampersand that stands for itself. No other may reach TinyXML: behind "&#" it
// looks for a semicolon as far as the document's end, and swallows the tags on the way.
void PlainXmlWriter::CopyAmpersand() {
  for (const std::string_view entity : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
    if (!Starts(entity)) continue;
    out_->append(entity);
    rest_.remove_prefix(entity.size());
    return;
  }
  char32_t character = 0;
  const std::size_t length = ReferenceLength(&character);
  if (length == 0) {
    out_->append("&amp;");
  } else if (IsXmlCharacter(character)) {
    out_->append(rest_.substr(0, length));
  } else {
    out_->append(kReplacementCharacter);
  }
  rest_.remove_prefix(length > 0 ? length : 1);
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

// A big file that is something else is left at its start. A history of 2 GiB would not fit into the
// phone that writes it.
bool ReadXmlFile(const std::string& path, std::string* bytes) {
  const FileDescriptor file(path);
  struct stat status {};
  if (file.get() < 0 || fstat(file.get(), &status) != 0) return false;
  errno = 0;
  if (!S_ISREG(status.st_mode) || status.st_size >= INT_MAX) return false;
  std::array<char, 4096> chunk;
  for (;;) {
    const ssize_t count = read(file.get(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    const std::string_view text(chunk.data(), static_cast<std::size_t>(count));
    errno = 0;
    if (bytes->empty() && text.find('<') == std::string_view::npos) return false;
    const bool hole = text.find_first_not_of('\0') == std::string_view::npos;
    if (hole) return true;  // the end, or what a file system leaves behind it after a power cut
    bytes->append(text);
  }
}

bool ToPlainXml(const std::string& bytes, std::string* plain) {
  plain->reserve(bytes.size());
  return PlainXmlWriter(bytes, plain).Run();
}

bool ParseXml(TiXmlDocument* document, std::string bytes) {
  std::string plain;
  DecodeSingleByteXml(&bytes);
  if (!ToPlainXml(bytes, &plain)) return false;
  if (plain.empty()) return true;
  std::string().swap(bytes);
  document->SetTabSize(0);  // rows and columns are of no use here and cost time
  document->Parse(plain.c_str(), nullptr, TIXML_ENCODING_UTF8);
  return !document->Error();
}

bool LoadXmlFile(TiXmlDocument* document, const std::string& path) {
  try {
    std::string bytes;
    return ReadXmlFile(path, &bytes) && ParseXml(document, std::move(bytes));
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
}

}  // namespace NS_CALLLOG
