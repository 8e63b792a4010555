// Tests of the time texts: which form a list shows, time zones and their changes, the ends of time.
// POSIX zone rules stand in TZ, so no time zone database is needed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <optional>

#include "TimeText.h"

namespace {

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr std::time_t kNow = 1772874309;  // 2026-03-07 10:05:09 in Berlin

class TimeTextTest : public testing::Test {
 protected:
  TimeTextTest() {
    if (const char* zone = std::getenv("TZ")) original_ = zone;
    setenv("TZ", kBerlin, 1);
  }

  ~TimeTextTest() override {
    original_ ? setenv("TZ", original_->c_str(), 1) : unsetenv("TZ");
    tzset();
  }

 private:
  std::optional<std::string> original_;
};

TEST_F(TimeTextTest, AListShowsAsLittleAsNeeded) {
  struct Row {
    std::time_t time;
    std::time_t now;
    const char* text;
  };
  const Row rows[] = {
      {kNow, kNow, "10:05"},
      {1772838000, kNow, "00:00"},
      {1772837999, kNow, "03-06, 23:59"},
      {1767222000, kNow, "01-01, 00:00"},
      {1767221999, kNow, "2025-12-31"},
      {kNow, 1772838000, "10:05"},         // later today
      {1782900000, kNow, "07-01, 12:00"},  // later this year, in summer time
      {1798758000, kNow, "2027-01-01"},
      {kNow - 28 * 86400, kNow, "02-07, 10:05"},  // the same day of another month
      {kNow - 365 * 86400, kNow, "2025-03-07"},   // the same day of another year
      {1774745999, 1774746000, "01:59"},
      {1774746000, 1774746000, "03:00"},  // the hour from 2 to 3 is left out
      {0, kNow, "1970-01-01"},
      {-1, kNow, "1970-01-01"},
      {-3601, kNow, "1969-12-31"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(desk::ListTimeText(row.time, row.now, ", "), row.text) << row.time;
  }
}

TEST_F(TimeTextTest, TheFullFormShowsDateAndSeconds) {
  struct Row {
    std::time_t time;
    const char* text;
  };
  const Row rows[] = {
      {kNow, "2026-03-07 10:05:09"},
      {0, "1970-01-01 01:00:00"},
      {-3601, "1969-12-31 23:59:59"},
      {std::numeric_limits<int>::max(), "2038-01-19 04:14:07"},
      {std::numeric_limits<int>::min(), "1901-12-13 21:45:52"},
      {1774745999, "2026-03-29 01:59:59"},
      {1774746000, "2026-03-29 03:00:00"},
      {1792888200, "2026-10-25 02:30:00"},  // the hour from 2 to 3 comes twice
      {1792891800, "2026-10-25 02:30:00"},
      {1792893600, "2026-10-25 03:00:00"},
  };
  for (const Row& row : rows) EXPECT_EQ(desk::FullTimeText(row.time, " "), row.text) << row.time;
}

TEST_F(TimeTextTest, TheSeparatorIsTakenAsItStands) {
  EXPECT_EQ(desk::FullTimeText(kNow, ""), "2026-03-0710:05:09");
  EXPECT_EQ(desk::FullTimeText(kNow, "%Y\n"), "2026-03-07%Y\n10:05:09");
  EXPECT_EQ(desk::ListTimeText(1772837999, kNow, "%s"), "03-06%s23:59");
}

TEST_F(TimeTextTest, AChangeOfZoneShowsAtOnce) {
  EXPECT_EQ(desk::FullTimeText(kNow, " "), "2026-03-07 10:05:09");
  setenv("TZ", "NST3:30", 1);
  EXPECT_EQ(desk::FullTimeText(kNow, " "), "2026-03-07 05:35:09");
  setenv("TZ", "JST-9", 1);
  EXPECT_EQ(desk::ListTimeText(1772837999, kNow, " "), "07:59");  // yesterday no longer
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(desk::FullTimeText(kNow, " "), "2026-03-07 09:05:09");
}

TEST_F(TimeTextTest, AnyValueGivesAText) {
  constexpr std::time_t first = std::numeric_limits<std::time_t>::min();
  constexpr std::time_t last = std::numeric_limits<std::time_t>::max();
  for (const std::time_t time : {first, last}) {
    EXPECT_EQ(desk::FullTimeText(time, " "), std::to_string(time));
    EXPECT_EQ(desk::ListTimeText(time, kNow, " "), std::to_string(time));
    EXPECT_EQ(desk::ListTimeText(kNow, time, " "), "2026-03-07");
  }
  EXPECT_EQ(desk::ListTimeText(67768036191673199, kNow, " "), "2147485547-12-31");
  EXPECT_EQ(desk::ListTimeText(-67768040609740800, kNow, " "), "-2147481748-01-01");
  EXPECT_EQ(desk::FullTimeText(-62135596800, " "), "0001-01-01 01:00:00");
}

}  // namespace
