// The display's backlight. Message thread only.
#pragma once

enum BACK_LIGHT_TYPE {
  BACK_LIGHT_MISSED_CALL = 5,
};

// Registers or withdraws a reason to light the display. Registering one that is registered already
// is allowed and happens often. Never throws.
void backlight_RegisterEvent(BACK_LIGHT_TYPE type, bool on);
