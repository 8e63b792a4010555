// Makes, locks and enters the directory of one phone.
#include "RootDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

namespace desk {
namespace {

namespace fs = std::filesystem;

RootError Unusable(const fs::path& path, const std::string& reason) {
  return RootError("cannot use " + path.string() + ": " + reason);
}

}  // namespace

RootDirectory::RootDirectory(const fs::path& path) {
  std::error_code error;
  before_ = fs::current_path(error);
  path_ = fs::absolute(path, error);
  for (const char* folder : {"config/data", "tmp"}) {
    fs::create_directories(path_ / folder, error);
    if (error) throw Unusable(path_, error.message());
  }
  lock_ = open((path_ / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (lock_ < 0) throw Unusable(path_, std::strerror(errno));
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    close(lock_);
    throw Unusable(path_, "another phone is running there");
  }
  fs::current_path(path_, error);
  if (error) {
    close(lock_);
    throw Unusable(path_, error.message());
  }
}

RootDirectory::~RootDirectory() {
  std::error_code ignored;
  fs::current_path(before_, ignored);
  close(lock_);
}

fs::path RootDirectory::Default() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return fs::path(state) / "deskphone";
  const char* const home = std::getenv("HOME");
  return fs::path(home != nullptr ? home : ".") / ".local/state/deskphone";
}

}  // namespace desk
