// Display texts of time values, in the phone's time zone and date format.
#pragma once

#include <string>

// Both take seconds since 1970-01-01 00:00:00 UTC, and the text that parts date and time (the
// module passes one blank). Any value gives a text.

// The short form, for a row of a list.
std::string Setting_CallLogTime2String(long time, const std::string& separator);

// The full form, for the detail of one call.
std::string Setting_Time2String(long time, const std::string& separator);
