// Times as text: a server's stamps, what the phone shows, and what a user types.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "CallLog/ServerTime.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/TimeInput.h"
#include "desktop/platform/TimeText.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

using NS_CALLLOG::ServerTime;
using Fields = std::vector<int>;

Fields FieldsOf(const ServerTime& time) {
  return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

Fields ScanWithLibrary(const char* text, const char* format, bool monthFirst = false) {
  Fields f(6);
  std::sscanf(text, format, &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
  if (monthFirst) std::rotate(f.begin(), f.begin() + 2, f.begin() + 3);
  return f;
}

// scanf reads the same where it is defined; all six numbers stand in what is shown.
void CheckServerTime(const char* text) {
  const ServerTime time = NS_CALLLOG::ScanServerTime(text);
  std::size_t digits = 0, longest = 0;
  for (const char* c = text; *c != '\0'; ++c) {
    digits = std::isdigit(static_cast<unsigned char>(*c)) != 0 ? digits + 1 : 0;
    longest = std::max(longest, digits);
  }
  if (longest < 10) EXPECT_EQ(FieldsOf(time), ScanWithLibrary(text, "%d-%d-%dT%d:%d:%d"));
  const std::string shown = FormatServerTime(time, true);
  EXPECT_EQ(FieldsOf(time), ScanWithLibrary(shown.c_str(), "%d-%d-%d %d:%d:%d", true)) << shown;
}

void CheckShown(std::time_t time, std::time_t now) {
  const std::string full = FullTimeText(time, " ");
  EXPECT_NE(full.find(ListTimeText(time, now, " ")), std::string::npos) << full;
  constexpr std::time_t kYear1000 = -30610224000, kYear10000 = 253402300800;
  if (time >= kYear1000 && time < kYear10000 && time != -1) EXPECT_EQ(ParseLocalTime(full), time);
}

}  // namespace

void FuzzOne(const std::string& input) {
  CheckServerTime(input.c_str());
  std::time_t times[2] = {};
  std::memcpy(times, input.data(), std::min(input.size(), sizeof times));
  for (const unsigned shift : {0u, 24u, 40u}) CheckShown(times[0] >> shift, times[1] >> shift);
  try {
    EXPECT_GE(ParseSpan(input), Milliseconds(0));
    EXPECT_LE(ParseSpan(input), std::chrono::hours(24 * 365 * 100));
  } catch (const CommandError&) {
  }
  try {
    const std::string full = FullTimeText(ParseLocalTime(input), " ");
    EXPECT_EQ(ParseLocalTime(full), ParseLocalTime(input)) << full;
  } catch (const CommandError&) {
  }
}

}  // namespace desk
