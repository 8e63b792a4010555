// Time stamps by hand: scanf has no answer to a number beyond int.
#include "ServerTime.h"

#include <cctype>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace NS_CALLLOG {
namespace {

// What "%d" of scanf reads, but for numbers beyond int, where scanf is not defined. Null when there
// is no number.
const char* ScanNumber(const char* text, int* number) {
  while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
  const bool negative = *text == '-';
  if (*text == '+') ++text;
  const char* const digits = text + (negative ? 1 : 0);
  if (std::isdigit(static_cast<unsigned char>(*digits)) == 0) return nullptr;
  const auto [end, error] = std::from_chars(text, text + std::strlen(text), *number);
  if (error == std::errc::result_out_of_range) *number = negative ? INT_MIN : INT_MAX;
  return end;
}

}  // namespace

ServerTime ScanServerTime(const char* text) {
  ServerTime time;
  int* const fields[] = {&time.year, &time.month,  &time.day,
                         &time.hour, &time.minute, &time.second};
  constexpr char kSeparators[] = "--T::";
  const char* separator = kSeparators;
  for (int* field : fields) {
    if (text != nullptr) text = ScanNumber(text, field);
    if (text == nullptr || *text == '\0' || *text != *separator) break;
    ++text;
    ++separator;
  }
  return time;
}

std::string FormatServerTime(const ServerTime& time, bool withYear) {
  char text[100] = {};
  if (withYear) {
    std::snprintf(text, sizeof text, "%.2d-%.2d-%.4d %.2d:%.2d:%.2d", time.month, time.day,
                  time.year, time.hour, time.minute, time.second);
  } else {
    std::snprintf(text, sizeof text, "%.2d-%.2d %.2d:%.2d", time.month, time.day, time.hour,
                  time.minute);
  }
  return text;
}

}  // namespace NS_CALLLOG
