// The thread timers of the loop's thread. A timer fires once.
#pragma once

#include <map>
#include <optional>

#include "desktop/platform/Clock.h"

namespace desk {

class Journal;
class MessageLoop;

class ThreadTimers {
 public:
  static constexpr unsigned int kTimerMessage = 0x8113;

  ThreadTimers(Journal& journal, MessageLoop& loop, const Clock& clock)
      : journal_(journal), loop_(loop), clock_(clock) {}

  bool Set(unsigned int id, Milliseconds delay);
  bool Kill(unsigned int id);
  void Clear() { due_.clear(); }

  // When the next timer is due on the monotonic clock; nothing when none runs.
  std::optional<Milliseconds> NextDue() const;

  // Posts the message of every timer that is due by now, the earliest first.
  void FireDue();

 private:
  Journal& journal_;
  MessageLoop& loop_;
  const Clock& clock_;
  std::map<unsigned int, Milliseconds> due_;  // by timer id
};

}  // namespace desk
