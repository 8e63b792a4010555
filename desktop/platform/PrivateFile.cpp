// The file system calls behind a file that nobody else may see half done.
#include "desktop/platform/PrivateFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace desk {
namespace {

namespace fs = std::filesystem;

constexpr char kMadeUp[] = "XXXXXX";  // what mkostemp() replaces

std::string NameBeside(const fs::path& target) { return "." + target.filename().string() + "-"; }

}  // namespace

bool IsOwnFile(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(std::filesystem::symlink_status(path, ignored));
}

PrivateFile::~PrivateFile() {
  if (!path_.empty()) unlink(path_.c_str());
}

bool PrivateFile::CreateBeside(const fs::path& target) {
  std::string path = target.parent_path() / (NameBeside(target) + kMadeUp);
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

void PrivateFile::RemoveLeft(const fs::path& target) {
  const std::string begin = NameBeside(target);
  std::error_code error;
  for (fs::directory_iterator next(target.parent_path(), error), end; !error && next != end;
       next.increment(error)) {
    const std::string name = next->path().filename();
    const bool isOne = name.rfind(begin, 0) == 0 && name.size() == begin.size() + strlen(kMadeUp);
    std::error_code ignored;
    if (isOne && fs::is_regular_file(next->symlink_status(ignored))) fs::remove(*next, ignored);
  }
}

}  // namespace desk
