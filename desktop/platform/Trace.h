// Where the trace goes: the journal always; a file or standard error when one is named. Credentials
// in URLs are masked before a line goes anywhere.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace desk {

class Journal;

class Trace {
 public:
  explicit Trace(Journal& journal) : journal_(journal) {}

  void Write(int level, const std::string& text);  // any thread

  // Writes lines up to `level` out as well; 0 writes none.
  void SetLevel(int level) { level_ = level; }
  // Sends them to the end of `file` instead of standard error. False when it cannot be opened.
  bool SetFile(const std::filesystem::path& file);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  Journal& journal_;
  int level_ = 0;
  std::unique_ptr<std::FILE, Close> file_;
};

}  // namespace desk
