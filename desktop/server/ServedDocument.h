// A document that the log server sends, read from its file piece by piece.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>

namespace desk {

// Any thread.
class ServedDocument {
 public:
  // Null for anything but a regular file that can be read; a link is not followed. Never waits.
  static std::shared_ptr<const ServedDocument> Open(const std::filesystem::path& path);
  ~ServedDocument();
  ServedDocument(const ServedDocument&) = delete;
  ServedDocument& operator=(const ServedDocument&) = delete;

  std::size_t size() const { return size_; }  // when it was opened
  // How many bytes it got from `offset` on: 0 where the file ends by now, or cannot be read.
  std::size_t Read(std::size_t offset, char* bytes, std::size_t size) const;

 private:
  explicit ServedDocument(int file) : file_(file) {}

  const int file_;
  std::size_t size_ = 0;
};

}  // namespace desk
