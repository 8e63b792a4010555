#include "platform/ThreadTimer.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Quietly.h"

bool timerSetThreadTimer(unsigned int id, unsigned int milliseconds) {
  bool started = false;
  desk::Quietly([&] {
    started = desk::Platform::Current().timers.Set(id, desk::Milliseconds(milliseconds));
  });
  return started;
}

bool timerKillThreadTimer(unsigned int id) {
  bool killed = false;
  desk::Quietly([&] { killed = desk::Platform::Current().timers.Kill(id); });
  return killed;
}
