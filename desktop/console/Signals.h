// The signals that end the phone, SIGHUP, SIGINT, SIGQUIT and SIGTERM, and those with which a shell
// stops it and lets it go on: which of them have arrived. SIGPIPE ends nothing: a phone that nobody
// listens to any more still has calls to save.
#pragma once

#include <signal.h>

#include <utility>
#include <vector>

namespace desk {

// One at a time. Signals are caught from its construction to its end; what is ignored already, as
// under nohup, stays ignored.
class Signals {
 public:
  // Catches those that end the phone. One of them cuts a call that blocks short (EINTR).
  Signals();
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  // Catches SIGTSTP and SIGCONT, too, for who has a terminal to put in order then.
  void CatchStops();

  // Each arrival writes to this eventfd from now on.
  void WakeUp(int eventDescriptor);

  // The signal that ends the phone; 0 when none has arrived.
  int Ending() const;

  // Whether it has arrived since this was last asked.
  bool Take(int signal);

  // Stops the process as SIGTSTP would if it were not caught; returns when the process goes on.
  void Stop();

 private:
  void Catch(int signal, int flags);

  std::vector<std::pair<int, struct sigaction>> before_;
};

// Threads that begin while it exists take no signals.
class SignalsBlocked {
 public:
  SignalsBlocked();
  ~SignalsBlocked();
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace desk
