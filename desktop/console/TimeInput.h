// Times and spans as a user writes them.
#pragma once

#include <ctime>
#include <string>

#include "desktop/platform/Clock.h"

namespace desk {

// "300ms", "5s", "10m", "2h", "3d", also joined ("1h30m"); throws CommandError.
Milliseconds ParseSpan(const std::string& text);

// "2026-10-07 10:05:09" or "2026-10-07 10:05" or "2026-10-07", in the local time zone; throws
// CommandError.
std::time_t ParseLocalTime(const std::string& text);

// Changes the process's time zone: a zone's name or a POSIX rule; throws CommandError for a name
// that the machine does not know.
void SetTimeZone(const std::string& zone);

}  // namespace desk
