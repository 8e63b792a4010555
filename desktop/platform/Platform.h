// One desktop phone's platform: everything that stands behind the declarations of platform/. One
// exists at a time; the platform's functions act on it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "desktop/platform/Accounts.h"
#include "desktop/platform/Clock.h"
#include "desktop/platform/Display.h"
#include "desktop/platform/Journal.h"
#include "desktop/platform/MessageLoop.h"
#include "desktop/platform/Profile.h"
#include "desktop/platform/Talk.h"
#include "desktop/platform/ThreadTimers.h"
#include "desktop/platform/Trace.h"
#include "desktop/platform/contacts/Contacts.h"
#include "desktop/platform/transfer/Transfer.h"

namespace desk {

class Platform {
 public:
  Platform(const Profile& profile, std::unique_ptr<Clock> clock);
  ~Platform();
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  static Platform& Current();

  // Fires the timers that are due and delivers what is posted, until there is nothing left to do
  // now.
  void RunDue();

  // What a reboot does to the platform: settings and contacts stay; the queue, handlers, timers and
  // everything that the phone shows are gone. The module must have been released before.
  void PowerCycle();

  // For a manual clock: moves it by `span`, stopping at each timer on the way, as if the phone had
  // been left alone for that long.
  void Advance(Milliseconds span);

  // One of `lights`, which belong to the display, goes on or off.
  void Switch(std::set<int>* lights, int light, bool on, const char* name);
  // The display has changed: `line` for the journal says how.
  void NoteDisplay(std::string line);

 private:
  const std::unique_ptr<Clock> clock_;

 public:
  Journal journal;
  MessageLoop loop{journal};
  ThreadTimers timers{journal, loop, *clock_};
  Trace trace{journal};
  Display display;
  Accounts accounts;
  Contacts contacts;
  std::map<std::string, int> config;
  Talk talk;
  TransferService transfers;
  bool networkUp = true;
  bool hasMenu = true;
  std::function<void()> onDisplayChange;  // called behind each status, LED and backlight event

  const Clock& clock() const { return *clock_; }
  ManualClock* manualClock() const { return dynamic_cast<ManualClock*>(clock_.get()); }
};

}  // namespace desk
