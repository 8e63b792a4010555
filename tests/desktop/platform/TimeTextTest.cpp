// Tests of the time texts: which form a list shows, time zones and their changes, the ends of time.
// POSIX zone rules stand in TZ, so no time zone database is needed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "desktop/platform/TimeText.h"

namespace {

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr std::time_t kNow = 1772874309;  // 2026-03-07 10:05:09 in Berlin
constexpr std::time_t kFirst = std::numeric_limits<std::time_t>::min();
constexpr std::time_t kLast = std::numeric_limits<std::time_t>::max();

constexpr struct {
  std::time_t time;
  std::time_t now;
  const char* text;
} kListTexts[] = {
    {1772838000, kNow, "00:00"},
    {1772837999, kNow, "03-06%s23:59"},
    {1767222000, kNow, "01-01%s00:00"},
    {1767221999, kNow, "2025-12-31"},
    {kNow, 1772838000, "10:05"},         // later today
    {1782900000, kNow, "07-01%s12:00"},  // later this year, in summer time
    {1798758000, kNow, "2027-01-01"},
    {kNow - 28 * 86400, kNow, "02-07%s10:05"},  // the same day of another month
    {kNow - 365 * 86400, kNow, "2025-03-07"},   // the same day of another year
    {kFirst, kNow, "-9223372036854775808"},
    {kNow, kFirst, "2026-03-07"},
    {67768036191673199, kNow, "2147485547-12-31"},
};

TEST(TimeTextTest, AListShowsAsLittleAsNeeded) {
  setenv("TZ", kBerlin, 1);
  for (const auto& row : kListTexts) {
    EXPECT_EQ(desk::ListTimeText(row.time, row.now, "%s"), row.text) << row.time;
  }
}

constexpr struct {
  std::time_t time;
  const char* text;
} kFullTexts[] = {
    {kNow, "2026-03-07%Y\n10:05:09"},       {-3601, "1969-12-31%Y\n23:59:59"},
    {1774745999, "2026-03-29%Y\n01:59:59"}, {1774746000, "2026-03-29%Y\n03:00:00"},
    {1792888200, "2026-10-25%Y\n02:30:00"},  // the hour from 2 to 3 comes twice
    {1792891800, "2026-10-25%Y\n02:30:00"}, {-62135596800, "0001-01-01%Y\n01:00:00"},
    {kLast, "9223372036854775807"},
};

TEST(TimeTextTest, TheFullFormShowsDateAndSeconds) {
  setenv("TZ", kBerlin, 1);
  for (const auto& row : kFullTexts) EXPECT_EQ(desk::FullTimeText(row.time, "%Y\n"), row.text);
}

TEST(TimeTextTest, AChangeOfZoneShowsAtOnce) {
  setenv("TZ", kBerlin, 1);
  EXPECT_EQ(desk::FullTimeText(kNow, ""), "2026-03-0710:05:09");
  setenv("TZ", "JST-9", 1);
  EXPECT_EQ(desk::ListTimeText(1772837999, kNow, " "), "07:59");  // yesterday no longer
}

}  // namespace
