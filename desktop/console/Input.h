// What a script or an import reads. It is read when poll() says that there is something, so that
// nothing but poll() ever waits.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"

namespace desk {

// The bytes of a file, or of standard input. A read that waits for more lets the phone work
// meanwhile, and ends when the phone is interrupted.
class Input : public std::streambuf {
 public:
  static constexpr char kStandard[] = "-";

  // Throws CommandError when there is no such file.
  Input(Console& console, const std::string& name)
      : phone_(console.phone),
        name_(name == kStandard ? "standard input" : name),
        descriptor_(name == kStandard
                        ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                        : open((console.folder / name).c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) throw CommandError("cannot read " + name_ + ": " + std::strerror(errno));
  }
  ~Input() override { close(descriptor_); }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  const std::string& name() const { return name_; }    // for a user
  const std::string& error() const { return error_; }  // why the stream is bad

 protected:
  int_type underflow() override {
    if (!WaitForBytes()) return traits_type::eof();
    const ssize_t size = read(descriptor_, bytes_.data(), bytes_.size());
    if (size < 0) {
      error_ = std::strerror(errno);
      throw std::runtime_error(error_);  // the stream is bad then
    }
    if (size == 0) return traits_type::eof();
    setg(bytes_.data(), bytes_.data(), bytes_.data() + size);
    return traits_type::to_int_type(bytes_.front());
  }

 private:
  // The phone is asked after its loop has run, which takes what woke it.
  bool WaitForBytes() {
    pollfd waiting[] = {{descriptor_, POLLIN, 0}, {phone_.platform().loop.descriptor(), POLLIN, 0}};
    while (waiting[0].revents == 0) {
      phone_.platform().RunDue();
      if (phone_.interrupted()) return false;
      poll(waiting, 2, -1);
    }
    return true;
  }

  Phone& phone_;
  const std::string name_;
  std::string error_;
  const int descriptor_;
  std::array<char, 65536> bytes_;
};

}  // namespace desk
