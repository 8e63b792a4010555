// How the number of new missed and forwarded calls is shown: idle status, LED and backlight.
#pragma once

namespace NS_CALLLOG {

// Both post on every call, also when the count is what was shown before; 0 takes the status away.
void PublishMissedCount(int count);
void PublishForwardedCount(int count);

}  // namespace NS_CALLLOG
