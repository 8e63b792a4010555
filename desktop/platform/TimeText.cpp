// The date formats, over the C library's calendar and time zones.
#include "desktop/platform/TimeText.h"

#include <time.h>

#include <array>
#include <fstream>
#include <optional>
#include <regex>
#include <string_view>

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

bool IsTimeZone(const std::string& name) {
  // POSIX: its names, how far they are from UTC, and when which is in force.
  static const std::regex kRule(
      "([A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)[+-]?([01]?\\d|2[0-4])(:[0-5]\\d){0,2}"
      "(([A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)([+-]?([01]?\\d|2[0-4])(:[0-5]\\d){0,2})?"
      "(,(J?\\d{1,3}|M(1[0-2]|[1-9])\\.[1-5]\\.[0-6])(/[+-]?\\d{1,3}(:[0-5]\\d){0,2})?){0,2})?");
  if (std::regex_match(name, kRule)) return true;
  if (name.find("..") != std::string::npos) return false;
  std::array<char, 4> begin{};
  std::ifstream file("/usr/share/zoneinfo/" + name, std::ios::binary);
  return file.read(begin.data(), begin.size()) && std::string_view(begin.data(), 4) == "TZif";
}

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
