// The date formats, over the C library's calendar and time zones.
#include "desktop/platform/TimeText.h"

#include <time.h>

#include <array>
#include <cstdio>
#include <optional>

namespace desk {
namespace {

// Empty when the year is beyond what the calendar holds.
std::optional<std::tm> LocalTime(std::time_t time) {
  tzset();  // localtime_r alone may keep the zone of the first call
  std::tm local{};
  if (!localtime_r(&time, &local)) return std::nullopt;
  return local;
}

std::string Format(const std::tm& local, const char* format) {
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &local)};
}

// strftime's year runs over at the end of what an int holds.
std::string Date(const std::tm& local) {
  const long long year = local.tm_year + 1900LL;
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%04lld", year);
  return std::string(text.data(), static_cast<std::size_t>(length)) + Format(local, "-%m-%d");
}

}  // namespace

std::string ListTimeText(std::time_t time, std::time_t now, std::string_view separator) {
  const auto local = LocalTime(time);
  if (!local) return std::to_string(time);
  const auto today = LocalTime(now);
  if (!today || local->tm_year != today->tm_year) return Date(*local);
  std::string clock = Format(*local, "%H:%M");
  if (local->tm_yday == today->tm_yday) return clock;
  return Format(*local, "%m-%d").append(separator) + clock;
}

std::string FullTimeText(std::time_t time, std::string_view separator) {
  const auto local = LocalTime(time);
  if (!local) return std::to_string(time);
  return Date(*local).append(separator) + Format(*local, "%H:%M:%S");
}

}  // namespace desk
