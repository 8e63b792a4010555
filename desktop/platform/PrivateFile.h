// A file on its way to its real name, for data that nobody else may see half done.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace desk {

// Whether `path` is a plain file, and no link: what somebody else may have put there is not read.
bool IsOwnFile(const std::filesystem::path& path);

// Readable by its owner alone, under a name of its own beside the one that it is meant for. It
// disappears unless it is moved there. All results false: errno tells why.
class PrivateFile {
 public:
  PrivateFile() = default;
  ~PrivateFile();
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  bool CreateBeside(const std::filesystem::path& target);
  bool Write(const char* bytes, std::size_t size);
  bool Close();
  bool MoveTo(const std::string& target);  // replaces a link rather than following it

  // Removes what processes that ended too early have left beside `target`.
  static void RemoveLeft(const std::filesystem::path& target);

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::string path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace desk
