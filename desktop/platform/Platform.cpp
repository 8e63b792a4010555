// The one platform of the process, and how time passes on it.
#include "desktop/platform/Platform.h"

#include <cassert>
#include <utility>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

Platform* current = nullptr;

}  // namespace

Platform::Platform(const Profile& profile, std::unique_ptr<Clock> clock)
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

Platform::~Platform() { current = nullptr; }

Platform& Platform::Current() {
  assert(current != nullptr);
  return *current;
}

void Platform::RunDue() {
  do {
    timers.FireDue();
  } while (loop.Deliver() > 0);
}

void Platform::PowerCycle() {
  transfers.Clear();
  loop.Clear();
  timers.Clear();
  display = Display();
  talk = Talk();
  journal.Add("power-cycle");
}

void Platform::Advance(Milliseconds span) {
  ManualClock& time = *manualClock();
  const Milliseconds end = time.Monotonic() + span;
  RunDue();
  for (auto next = timers.NextDue(); next && *next <= end; next = timers.NextDue()) {
    time.Advance(*next - time.Monotonic());
    RunDue();
  }
  time.Advance(end - time.Monotonic());
}

void Platform::Switch(std::set<int>* lights, int light, bool on, const char* name) {
  if (on) {
    lights->insert(light);
  } else {
    lights->erase(light);
  }
  NoteDisplay(Format("%s %d %s", name, light, on ? "on" : "off"));
}

void Platform::NoteDisplay(std::string line) {
  journal.Add(std::move(line));
  if (onDisplayChange) onDisplayChange();
}

}  // namespace desk
