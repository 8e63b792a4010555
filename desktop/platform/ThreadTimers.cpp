// Timers as due times on the monotonic clock; a due one becomes a message.
#include "desktop/platform/ThreadTimers.h"

#include <algorithm>

#include "desktop/platform/Journal.h"
#include "desktop/platform/MessageLoop.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

template <class Map>
auto Earliest(Map& due) {
  return std::min_element(due.begin(), due.end(),
                          [](const auto& a, const auto& b) { return a.second < b.second; });
}

}  // namespace

bool ThreadTimers::Set(unsigned int id, Milliseconds delay) {
  journal_.Add(Format("timer %u set %lld", id, static_cast<long long>(delay.count())));
  due_[id] = clock_.Monotonic() + delay;
  return true;
}

bool ThreadTimers::Kill(unsigned int id) {
  const bool runs = due_.erase(id) > 0;
  journal_.Add(Format("timer %u kill", id));
  return runs;
}

std::optional<Milliseconds> ThreadTimers::NextDue() const {
  const auto next = Earliest(due_);
  if (next == due_.end()) return std::nullopt;
  return next->second;
}

void ThreadTimers::FireDue() {
  for (auto next = Earliest(due_); next != due_.end(); next = Earliest(due_)) {
    if (next->second > clock_.Monotonic()) return;
    loop_.Post({kTimerMessage, next->first, 0, {}});
    due_.erase(next);
  }
}

}  // namespace desk
