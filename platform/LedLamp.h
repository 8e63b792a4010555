// The message LED. Message thread only.
#pragma once

namespace ledlamp {

enum LAMP_EVENTTYPE {
  LAMP_EVENT_MISSED_CALL = 9,
  LAMP_EVENT_FORWARDED_CALL = 10,
};

// Switches an event on or off; the LED is lit while any event is on. Posting an event that is
// already in the wanted state is allowed and happens often. Never throws. May enter the module
// again, but for ReleaseInstance(): see CallLog.h.
void ledlamp_PostEvent(LAMP_EVENTTYPE event, bool on);

}  // namespace ledlamp
