// A file is read once, and TinyXML is handed only the plain copy of it.
#include "CallLog/XmlReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <tinyxml.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "CallLog/PlainXml.h"
#include "CallLog/XmlEncoding.h"

namespace NS_CALLLOG {
namespace {

constexpr std::size_t kUsualFile = 128 * 1024;  // bytes; a full history is smaller
constexpr std::string_view kBeforeXml = " \t\n\v\f\r\xEF\xBB\xBF";  // blanks and byte order marks

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

}  // namespace

// A big file that is something else is left at its start. A history of 2 GiB would not fit into the
// phone that writes it.
bool ReadXmlFile(const std::string& path, std::string* bytes) {
  const FileDescriptor file(path);
  struct stat status {};
  if (file.get() < 0 || fstat(file.get(), &status) != 0) return false;
  errno = 0;
  if (!S_ISREG(status.st_mode) || status.st_size >= INT_MAX) return false;
  bytes->reserve(std::min(static_cast<std::size_t>(status.st_size), kUsualFile));
  std::array<char, 4096> chunk;
  for (;;) {
    const ssize_t count = read(file.get(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    const std::string_view text(chunk.data(), static_cast<std::size_t>(count));
    errno = 0;
    const bool hole = text.find_first_not_of('\0') == std::string_view::npos;
    // The end, or what a file system leaves behind it after a power cut.
    if (hole) return !bytes->empty();
    if (!bytes->empty() || text.find('<') != std::string_view::npos) {
      bytes->append(text);
    } else if (text.find_first_not_of(kBeforeXml) != std::string_view::npos) {
      return false;
    }
  }
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
