#include "platform/Backlight.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Quietly.h"

void backlight_RegisterEvent(BACK_LIGHT_TYPE type, bool on) {
  desk::Quietly([&] {
    desk::Platform& platform = desk::Platform::Current();
    platform.Switch(&platform.display.backlightEvents, type, on, "backlight");
  });
}
