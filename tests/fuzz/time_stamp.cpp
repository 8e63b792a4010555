// Times as text: a server's stamps, what the phone shows, and what a user types.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <regex>

#include "CallLog/ServerTime.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/TimeInput.h"
#include "desktop/platform/TimeText.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

// scanf reads the same where it is defined.
void CheckServerTime(const char* text) {
  static const std::regex kBeyondInt("[0-9]{10}");
  const NS_CALLLOG::ServerTime t = NS_CALLLOG::ScanServerTime(text);
  FormatServerTime(t, true);
  if (std::regex_search(text, kBeyondInt)) return;
  std::vector<int> f(6);
  std::sscanf(text, "%d-%d-%dT%d:%d:%d", &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
  EXPECT_EQ((std::vector<int>{t.year, t.month, t.day, t.hour, t.minute, t.second}), f);
}

// A time that is shown is read back as itself, within the years that have four digits.
void CheckShown(std::time_t time, std::time_t now) {
  ListTimeText(time, now, " ");
  constexpr std::time_t kYear1000 = -30610224000, kYear10000 = 253402300800;
  const std::string full = FullTimeText(time, " ");
  if (time >= kYear1000 && time < kYear10000 && time != -1) EXPECT_EQ(ParseLocalTime(full), time);
}

}  // namespace

void FuzzOne(const std::string& input) {
  CheckServerTime(input.c_str());
  std::time_t times[2] = {};
  std::memcpy(times, input.data(), std::min(input.size(), sizeof times));
  for (const unsigned shift : {0u, 24u, 40u}) CheckShown(times[0] >> shift, times[1] >> shift);
  try {
    ParseSpan(input);
  } catch (const CommandError&) {
  }
  try {
    const std::time_t typed = ParseLocalTime(input);
    EXPECT_EQ(ParseLocalTime(FullTimeText(typed, " ")), typed);
  } catch (const CommandError&) {
  }
}

}  // namespace desk
