// Time stamps by hand: scanf has no answer to a number beyond int, and printf would take a fifth of
// the time in which a list is read.
#include "CallLog/ServerTime.h"

#include <cctype>
#include <charconv>
#include <climits>
#include <cstring>
#include <string_view>
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

// Appends `before` and the number, with at least so many digits.
void AppendNumber(const char* before, int number, std::size_t digits, std::string* text) {
  char buffer[11];
  const char* const end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
  std::string_view shown(buffer, static_cast<std::size_t>(end - buffer));
  text->append(before);
  if (number < 0) {
    text->push_back('-');
    shown.remove_prefix(1);
  }
  if (shown.size() < digits) text->append(digits - shown.size(), '0');
  text->append(shown);
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
  std::string text;
  AppendNumber("", time.month, 2, &text);
  AppendNumber("-", time.day, 2, &text);
  if (withYear) AppendNumber("-", time.year, 4, &text);
  AppendNumber(" ", time.hour, 2, &text);
  AppendNumber(":", time.minute, 2, &text);
  if (withYear) AppendNumber(":", time.second, 2, &text);
  return text;
}

}  // namespace NS_CALLLOG
