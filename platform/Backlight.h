// The display's backlight. Message thread only.
#pragma once

enum BACK_LIGHT_TYPE {
  BACK_LIGHT_MISSED_CALL = 5,
};

// Registers or withdraws a reason to light the display. Registering one that is registered already
// is allowed and happens often. Never throws. May enter the module again, but for
// ReleaseInstance(): see CallLog.h.
void backlight_RegisterEvent(BACK_LIGHT_TYPE type, bool on);
