// The time stamps of server call logs.
#pragma once

#include <string>

namespace NS_CALLLOG {

struct ServerTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// Reads "year-month-dayThour:minute:second"; what follows is ignored, and no time zone is applied.
// Reads as far as the form goes: fields behind that stay 0, as all do for null. A number beyond int
// is cut.
ServerTime ScanServerTime(const char* text);

// "03-07-2015 09:05:03" with the year, "03-07 09:05" without.
std::string FormatServerTime(const ServerTime& time, bool withYear);

}  // namespace NS_CALLLOG
