// Spans and local times from text; how a time is shown is TimeText's.
#include "desktop/console/TimeInput.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string_view>

#include "desktop/console/CommandLine.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

constexpr char kDigits[] = "0123456789";
constexpr std::int64_t kLongest = 100LL * 365 * 86'400'000;

// Takes a number and its unit off the text; nothing for what is none, or longer than the longest.
std::optional<std::int64_t> TakeMilliseconds(std::string_view* text) {
  static const std::map<std::string_view, std::int64_t> kUnits = {
      {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}, {"d", 86'400'000}};
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  text->remove_prefix(static_cast<std::size_t>(stop - text->data()));
  const std::size_t end = std::min(text->find_first_of(kDigits), text->size());
  const auto unit = kUnits.find(text->substr(0, end));
  text->remove_prefix(end);
  if (error != std::errc() || number < 0 || unit == kUnits.end()) return std::nullopt;
  if (number > kLongest / unit->second) return std::nullopt;
  return number * unit->second;
}

}  // namespace

Milliseconds ParseSpan(const std::string& text) {
  std::int64_t total = 0;
  std::string_view rest = text;
  do {
    const auto part = TakeMilliseconds(&rest);
    if (!part || *part > kLongest - total) {
      throw CommandError("a span such as 300ms, 5s, 10m, 2h or 3d is wanted, not \"" + text + "\"");
    }
    total += *part;
  } while (!rest.empty());
  return Milliseconds(total);
}

std::time_t ParseLocalTime(const std::string& text) {
  for (const char* format : {"%Y-%m-%d %H:%M:%S", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
    std::tm fields{};
    const char* const rest = strptime(text.c_str(), format, &fields);
    if (rest == nullptr || *rest != '\0') continue;
    fields.tm_isdst = -1;
    std::tm real = fields;  // of 30 February, or of the hour that is left out in spring: another
    const std::time_t time = std::mktime(&real);
    const bool isReal = real.tm_mday == fields.tm_mday && real.tm_hour == fields.tm_hour &&
                        real.tm_min == fields.tm_min;
    if (time != -1 && isReal) return time;
  }
  throw CommandError("a time such as \"2026-10-07 10:05:09\" is wanted, not \"" + text + "\"");
}

void SetTimeZone(const std::string& zone) {
  if (!IsTimeZone(zone)) {
    throw CommandError("\"" + zone + "\" is no time zone; one is \"Europe/Berlin\", or \"UTC0\"");
  }
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

}  // namespace desk
