// Reads when poll() says that there is something, so that nothing but poll() ever waits.
#include "desktop/console/ScriptInput.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"

namespace desk {

ScriptInput::ScriptInput(Console& console, const std::string& name)
    : phone_(console.phone),
      descriptor_(name == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                              : open((console.folder / name).c_str(), O_RDONLY | O_CLOEXEC)) {
  if (descriptor_ < 0) throw CommandError("cannot read " + name);
}

ScriptInput::~ScriptInput() { close(descriptor_); }

// The phone is asked after its loop has run, which takes what woke it.
bool ScriptInput::WaitForBytes() {
  pollfd waiting[] = {{descriptor_, POLLIN, 0}, {phone_.platform().loop.descriptor(), POLLIN, 0}};
  while (waiting[0].revents == 0) {
    phone_.platform().RunDue();
    if (phone_.interrupted()) return false;
    poll(waiting, 2, -1);
  }
  return true;
}

ScriptInput::int_type ScriptInput::underflow() {
  if (!WaitForBytes()) return traits_type::eof();
  const ssize_t size = read(descriptor_, bytes_.data(), bytes_.size());
  if (size <= 0) return traits_type::eof();
  setg(bytes_.data(), bytes_.data(), bytes_.data() + size);
  return traits_type::to_int_type(bytes_.front());
}

}  // namespace desk
