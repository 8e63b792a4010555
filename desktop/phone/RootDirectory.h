// The directory that holds the whole state of one phone. The module's desktop build keeps its files
// below the working directory of the process, so the phone moves there.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace desk {

class RootError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// As long as it exists, what the process makes is its user's alone: the files tell who called, and
// passwords stand in them.
class RootDirectory {
 public:
  // Makes the directory and what the module expects in it, takes it for this process alone, closes
  // it to other users, and makes it the working directory. What a transfer of an ended process has
  // left there goes. Throws RootError: for a directory that holds other files and no phone, too.
  explicit RootDirectory(const std::filesystem::path& path);
  ~RootDirectory();
  RootDirectory(const RootDirectory&) = delete;
  RootDirectory& operator=(const RootDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The directory of a phone was there, and open to other users.
  bool wasOpen() const { return wasOpen_; }

  // A folder under the user's state directory.
  static std::filesystem::path Default();

 private:
  class PrivateUmask {
   public:
    ~PrivateUmask() { umask(before_); }

   private:
    const mode_t before_ = umask(S_IRWXG | S_IRWXO);
  };

  class Lock {
   public:
    ~Lock() { close(file_); }
    void Take(const std::filesystem::path& root);

   private:
    int file_ = -1;
  };

  const PrivateUmask umask_;
  std::filesystem::path path_;
  std::filesystem::path before_;  // the working directory to go back to
  Lock lock_;
  bool wasOpen_ = false;
};

}  // namespace desk
