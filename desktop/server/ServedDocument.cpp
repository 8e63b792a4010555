// The system calls behind a document that is sent.
#include "desktop/server/ServedDocument.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace desk {

std::shared_ptr<const ServedDocument> ServedDocument::Open(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (file < 0) return nullptr;
  const std::shared_ptr<ServedDocument> document(new ServedDocument(file));
  struct stat status = {};
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  document->size_ = static_cast<std::size_t>(status.st_size);
  return document;
}

ServedDocument::~ServedDocument() { close(file_); }

std::size_t ServedDocument::Read(std::size_t offset, char* bytes, std::size_t size) const {
  const ssize_t got = pread(file_, bytes, size, static_cast<off_t>(offset));
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

}  // namespace desk
