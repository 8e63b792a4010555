// Runs lines one after the other; a wrong one is named and passed over. They are read when poll()
// says that there is something, so that nothing but poll() ever waits.
#include "desktop/console/Script.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <streambuf>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr char kStandardInput[] = "-";

// The bytes of a script. A read that waits for more lets the phone work meanwhile, and ends when
// the phone is interrupted.
class ScriptInput : public std::streambuf {
 public:
  ScriptInput(Console& console, const std::string& name)
      : phone_(console.phone),
        descriptor_(name == kStandardInput
                        ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                        : open((console.folder / name).c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) throw CommandError("cannot read " + name);
  }
  ~ScriptInput() override { close(descriptor_); }
  ScriptInput(const ScriptInput&) = delete;
  ScriptInput& operator=(const ScriptInput&) = delete;

  int error() const { return error_; }  // of the last read; 0: none

 protected:
  int_type underflow() override {
    if (!WaitForBytes()) return traits_type::eof();
    const ssize_t size = read(descriptor_, bytes_.data(), bytes_.size());
    error_ = size < 0 ? errno : 0;
    if (size <= 0) return traits_type::eof();
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
  const int descriptor_;
  int error_ = 0;
  std::array<char, 4096> bytes_;
};

// False for a wrong line.
bool RunLine(Console& console, const std::string& line, const std::string& place,
             std::ostream& errors) {
  console.out << (line.empty() || line.front() == '#' ? "" : "phone> ") << Printable(line) << "\n";
  try {
    RunCommand(console, line);
    return true;
  } catch (const CommandError& error) {
    console.out << std::flush;
    errors << place << ": " << Printable(error.what()) << std::endl;
    return false;
  }
}

}  // namespace

int RunScript(Console& console, std::istream& lines, const std::string& name,
              std::ostream& errors) {
  int wrong = 0;
  int number = 0;
  for (std::string line; !console.wantsToQuit && std::getline(lines, line);) {
    if (console.phone.interrupted()) break;  // it may be half a line
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!RunLine(console, line, name + ":" + std::to_string(++number), errors)) ++wrong;
  }
  console.out << std::flush;
  return wrong;
}

int RunScriptFile(Console console, const std::string& name, std::ostream& errors) {
  const bool isFile = name != kStandardInput;
  ScriptInput input(console, name);
  std::istream lines(&input);
  if (isFile) console.folder /= std::filesystem::path(name).parent_path();
  const int wrong = RunScript(console, lines, isFile ? name : "standard input", errors);
  if (input.error() != 0)
    throw CommandError("cannot read " + (isFile ? name : "standard input") + ": " +
                       std::strerror(input.error()));
  return wrong;
}

}  // namespace desk
