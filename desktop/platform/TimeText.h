// The texts in which the phone shows a time, in the local time zone.
// The zone is the TZ variable's, looked up at each call, so a change of it shows at once.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace desk {

// For a row of a list, as short as `now` allows:
//   of today               "10:05"
//   of this year           "03-07 10:05"
//   of any other year      "2025-03-07"
// `separator` stands between date and time. A time beyond the calendar gives its seconds in
// decimal.
std::string ListTimeText(std::time_t time, std::time_t now, std::string_view separator);

// Whether `name` is a time zone: one of the system's, such as "Europe/Berlin", or a rule such as
// "CET-1CEST,M3.5.0,M10.5.0/3".
bool IsTimeZone(const std::string& name);

// In full: "2026-03-07 10:05:09".
std::string FullTimeText(std::time_t time, std::string_view separator);

}  // namespace desk
