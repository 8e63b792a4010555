// The directory that holds the whole state of one phone. The module's desktop build keeps its files
// below the working directory of the process, so the phone moves there.
#pragma once

#include <filesystem>
#include <stdexcept>

namespace desk {

class RootError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class RootDirectory {
 public:
  // Makes the directory and what the module expects in it, takes it for this process alone, and
  // makes it the working directory. Throws RootError.
  explicit RootDirectory(const std::filesystem::path& path);
  ~RootDirectory();
  RootDirectory(const RootDirectory&) = delete;
  RootDirectory& operator=(const RootDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  const std::filesystem::path& startedIn() const { return before_; }

  // A folder under the user's state directory.
  static std::filesystem::path Default();

 private:
  std::filesystem::path path_;
  std::filesystem::path before_;  // the working directory to go back to
  int lock_ = -1;
};

}  // namespace desk
