// Spans and local times from text; how a time is shown is TimeText's.
#include "desktop/console/TimeInput.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <string_view>

#include "desktop/console/CommandLine.h"

namespace desk {
namespace {

std::int64_t MillisecondsIn(const std::string& unit) {
  static const std::map<std::string, std::int64_t> kUnits = {
      {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}, {"d", 86'400'000}};
  const auto found = kUnits.find(unit);
  return found != kUnits.end() ? found->second : 0;
}

bool SameFields(const std::tm& a, const std::tm& b) {
  return a.tm_year == b.tm_year && a.tm_mon == b.tm_mon && a.tm_mday == b.tm_mday &&
         a.tm_hour == b.tm_hour && a.tm_min == b.tm_min && a.tm_sec == b.tm_sec;
}

}  // namespace

Milliseconds ParseSpan(const std::string& text) {
  constexpr std::int64_t kLongest = 100LL * 365 * 86'400'000;
  const CommandError wrong("a span such as 300ms, 5s, 10m, 2h or 3d is wanted, not \"" + text +
                           "\"");
  std::int64_t total = 0;
  const char* position = text.data();
  const char* const end = text.data() + text.size();
  if (position == end) throw wrong;
  while (position != end) {
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(position, end, number);
    if (error != std::errc() || number < 0) throw wrong;
    const char* unitEnd = stop;
    while (unitEnd != end && (*unitEnd < '0' || *unitEnd > '9')) ++unitEnd;
    const std::int64_t unit = MillisecondsIn(std::string(stop, unitEnd));
    if (unit == 0 || number > (kLongest - total) / unit) throw wrong;
    total += number * unit;
    position = unitEnd;
  }
  return Milliseconds(total);
}

std::time_t ParseLocalTime(const std::string& text) {
  for (const char* format : {"%Y-%m-%d %H:%M:%S", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
    std::tm fields{};
    const char* const rest = strptime(text.c_str(), format, &fields);
    if (rest == nullptr || *rest != '\0') continue;
    fields.tm_isdst = -1;
    std::tm normalised = fields;
    const std::time_t time = std::mktime(&normalised);
    if (time != -1 && SameFields(fields, normalised)) return time;
  }
  throw CommandError("a time such as \"2026-10-07 10:05:09\" is wanted, not \"" + text + "\"");
}

void SetTimeZone(const std::string& zone) {
  const bool rule = zone.find_first_of("0123456789") != std::string::npos;
  if (zone.empty() ||
      (!rule && !std::filesystem::exists(std::filesystem::path("/usr/share/zoneinfo") / zone))) {
    throw CommandError("unknown time zone \"" + zone + "\"");
  }
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

}  // namespace desk
