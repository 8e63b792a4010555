// Handlers that set a flag and write to an eventfd; everything else happens where that is polled.
#include "desktop/console/Signals.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>

namespace desk {
namespace {

constexpr int kEnding[] = {SIGHUP, SIGTERM, SIGQUIT, SIGINT};

std::array<std::atomic<bool>, NSIG> arrived;
std::atomic<int> wakeUp{-1};
std::atomic<int> nowhere{-1};  // /dev/null

// A terminal that is stopped (Ctrl-S) would hold whoever writes to it, and the calls would not be
// saved.
void LeaveStoppedOutput() {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  if (poll(&output, 1, 0) == 0) dup2(nowhere, STDOUT_FILENO);
}

void Note(int signal) {
  const int error = errno;
  arrived[static_cast<std::size_t>(signal)] = true;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wakeUp, &one, sizeof one);
  if (std::count(std::begin(kEnding), std::end(kEnding), signal) != 0) LeaveStoppedOutput();
  errno = error;
}

}  // namespace

Signals::Signals() {
  nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  for (const int signal : kEnding) Catch(signal, 0);
  Catch(SIGPIPE, 0);
}

Signals::~Signals() {
  for (const auto& [signal, action] : before_) sigaction(signal, &action, nullptr);
  close(wakeUp.exchange(-1));
  close(nowhere.exchange(-1));
}

void Signals::Catch(int signal, int flags) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  before_.emplace_back(signal, action);
  action = {};
  action.sa_handler = Note;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

void Signals::CatchStops() {
  for (const int signal : {SIGTSTP, SIGCONT, SIGWINCH}) Catch(signal, SA_RESTART);
}

// A descriptor of its own: the other may be closed before the last signal arrives.
void Signals::WakeUp(int eventDescriptor) {
  close(wakeUp.exchange(fcntl(eventDescriptor, F_DUPFD_CLOEXEC, 0)));
}

int Signals::Ending() const {
  for (const int signal : kEnding) {
    if (arrived[static_cast<std::size_t>(signal)]) return signal;
  }
  return 0;
}

bool Signals::Take(int signal) { return arrived[static_cast<std::size_t>(signal)].exchange(false); }

void Signals::Stop() {
  struct sigaction caught = {};
  struct sigaction normal = {};
  normal.sa_handler = SIG_DFL;
  sigaction(SIGTSTP, &normal, &caught);
  raise(SIGTSTP);
  sigaction(SIGTSTP, &caught, nullptr);
}

SignalsBlocked::SignalsBlocked() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before_);
}

SignalsBlocked::~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace desk
