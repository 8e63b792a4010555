#include "platform/LedLamp.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Quietly.h"

void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE event, bool on) {
  desk::Quietly([&] {
    desk::Platform& platform = desk::Platform::Current();
    platform.Switch(&platform.display.ledEvents, event, on, "led");
  });
}
