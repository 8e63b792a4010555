// Commands for the phone's clocks.
#include "desktop/console/Commands.h"
#include "desktop/console/TimeInput.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

void PrintClock(Phone& phone) {
  phone.out() << "  " << FullTimeText(phone.platform().clock().Wall(), " ") << "\n";
}

void Wait(Phone& phone, Arguments& arguments) {
  const Milliseconds span = ParseSpan(arguments.Word("how long"));
  arguments.Done();
  if (!phone.Wait(span)) phone.out() << "  the wait was interrupted\n";
}

void WallClock(Phone& phone, Arguments& arguments) {
  if (arguments.HasWord()) {
    const std::time_t time = ParseLocalTime(arguments.Word("the time"));
    arguments.Done();
    ManualClock* const clock = phone.platform().manualClock();
    if (clock == nullptr) throw CommandError("the clock is the machine's; a script has its own");
    clock->SetWall(time);
  }
  PrintClock(phone);
}

void TimeZone(Phone& phone, Arguments& arguments) {
  SetTimeZone(arguments.Word("the time zone"));
  arguments.Done();
  PrintClock(phone);
}

}  // namespace

CommandGroup TimeCommands() {
  return {"Time",
          {
              {"wait", "SPAN", "lets time pass, such as 5s or 2h; at once in a script", Wait},
              {"clock", "[TIME]", "the wall clock; a script can set it", WallClock},
              {"timezone", "ZONE", "another time zone, such as Europe/Berlin", TimeZone},
          }};
}

}  // namespace desk
