// The one platform of the process, how time passes on it, and its smallest operations:
// configuration values and network state.
#include "desktop/platform/Desktop.h"

#include <cassert>
#include <utility>

#include "platform/ConfigParser.h"
#include "platform/NetStatus.h"

namespace desk {
namespace {

Desktop* current = nullptr;

}  // namespace

Desktop::Desktop(const Profile& profile, std::unique_ptr<Clock> clock)
    : clock_(std::move(clock)),
      accounts(profile.accounts),
      contacts(profile.contacts),
      config(profile.config),
      transfers(loop, trace, profile.limits),
      networkUp(profile.network_up),
      hasMenu(profile.has_menu) {
  assert(current == nullptr);
  current = this;
}

Desktop::~Desktop() { current = nullptr; }

Desktop& Desktop::Current() {
  assert(current != nullptr);
  return *current;
}

void Desktop::RunDue() {
  do {
    timers.FireDue();
  } while (loop.Deliver() > 0);
}

void Desktop::PowerCycle() {
  transfers.Clear();
  loop.Clear();
  timers.Clear();
  display = Display();
  talk = Talk();
  journal.Add("power-cycle");
}

void Desktop::Advance(Milliseconds span) {
  ManualClock& time = *manualClock();
  const Milliseconds end = time.Monotonic() + span;
  RunDue();
  for (auto next = timers.NextDue(); next && *next <= end; next = timers.NextDue()) {
    time.Advance(*next - time.Monotonic());
    RunDue();
  }
  time.Advance(end - time.Monotonic());
}

}  // namespace desk

using desk::Desktop;

int configParser_GetConfigInt(const char* key) {
  const auto& config = Desktop::Current().config;
  const auto found = key != nullptr ? config.find(key) : config.end();
  return found != config.end() ? found->second : 0;
}

int netGetNetworkSta() {
  constexpr int kAvailable = 2;
  return Desktop::Current().networkUp ? kAvailable : 0;
}
