// Commands for the phone's clocks.
#include "desktop/console/Commands.h"
#include "desktop/console/TimeInput.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

void PrintClock(Console& console) {
  console.out << "  " << FullTimeText(console.phone.platform().clock().Wall(), " ") << "\n";
}

void Wait(Console& console, Arguments& arguments) {
  const Milliseconds span = ParseSpan(arguments.Word("how long"));
  arguments.Done();
  if (!console.phone.Wait(span, [&] { ReportNews(console); }))
    console.out << "  the wait was interrupted\n";
}

void WallClock(Console& console, Arguments& arguments) {
  if (arguments.HasWord()) {
    const std::time_t time = ParseLocalTime(arguments.Word("the time"));
    arguments.Done();
    ManualClock* const clock = console.phone.platform().manualClock();
    if (clock == nullptr) throw CommandError("the clock is the machine's; a script has its own");
    clock->SetWall(time);
  }
  PrintClock(console);
}

void TimeZone(Console& console, Arguments& arguments) {
  SetTimeZone(arguments.Word("the time zone"));
  arguments.Done();
  PrintClock(console);
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
