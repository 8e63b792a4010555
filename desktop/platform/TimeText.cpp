// The date formats, over the C library's calendar and time zones.
#include "desktop/platform/TimeText.h"

#include <time.h>

#include <optional>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

// Empty when the year is beyond what the calendar holds.
std::optional<std::tm> LocalTime(std::time_t time) {
  tzset();  // localtime_r alone may keep the zone of the first call
  std::tm local{};
  if (!localtime_r(&time, &local)) return std::nullopt;
  return local;
}

std::string Day(const std::tm& local) {
  return Format("%02d-%02d", local.tm_mon + 1, local.tm_mday);
}

std::string Date(const std::tm& local) {
  return Format("%04lld-", local.tm_year + 1900LL) + Day(local);
}

std::string Minute(const std::tm& local) {
  return Format("%02d:%02d", local.tm_hour, local.tm_min);
}

}  // namespace

std::string ListTimeText(std::time_t time, std::time_t now, std::string_view separator) {
  const auto local = LocalTime(time);
  if (!local) return std::to_string(time);
  const auto today = LocalTime(now);
  if (!today || local->tm_year != today->tm_year) return Date(*local);
  if (local->tm_yday == today->tm_yday) return Minute(*local);
  return Day(*local).append(separator) + Minute(*local);
}

std::string FullTimeText(std::time_t time, std::string_view separator) {
  const auto local = LocalTime(time);
  if (!local) return std::to_string(time);
  return Date(*local).append(separator) + Minute(*local) + Format(":%02d", local->tm_sec);
}

}  // namespace desk
