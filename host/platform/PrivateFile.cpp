// The file system calls behind a file that nobody else may see half done.
#include "PrivateFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <utility>

namespace desk {

PrivateFile::~PrivateFile() {
  if (!path_.empty()) unlink(path_.c_str());
}

bool PrivateFile::CreateBeside(const std::filesystem::path& target) {
  std::string path = target.parent_path() / ("." + target.filename().string() + "-XXXXXX");
  const int descriptor = mkostemp(path.data(), O_CLOEXEC);
  if (descriptor < 0) return false;
  path_ = std::move(path);
  file_.reset(fdopen(descriptor, "wb"));
  if (file_ == nullptr) close(descriptor);
  return file_ != nullptr;
}

bool PrivateFile::Write(const char* bytes, std::size_t size) {
  return std::fwrite(bytes, 1, size, file_.get()) == size;
}

bool PrivateFile::Close() { return std::fclose(file_.release()) == 0; }

bool PrivateFile::MoveTo(const std::string& target) {
  if (std::rename(path_.c_str(), target.c_str()) != 0) return false;
  path_.clear();
  return true;
}

}  // namespace desk
