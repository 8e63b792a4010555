// The phone driven by lines: how they are split, what is said of wrong ones, and that nothing is
// lost.
#include <gtest/gtest.h>

#include <sstream>

#include "CommandLine.h"
#include "Phone.h"
#include "PhoneTest.h"
#include "Script.h"
#include "TimeInput.h"

namespace desk {
namespace {

using Words = std::vector<std::string>;

TEST(CommandLineTest, SplitsAtBlanksAndKeepsQuotes) {
  const std::pair<const char*, Words> rows[] = {
      {"", {}},
      {"  # call missed 1", {}},
      {" list\tall 0 ", {"list", "all", "0"}},
      {"call name=\"Anna Berg\" #31#", {"call", "name=Anna Berg", "#31#"}},
      {R"("a\"b\\c\n\xC3" 'd\n"')", {"a\"b\\c\n\xC3", "d\\n\""}},
      {"a'b c'd \"\"", {"ab cd", ""}},
  };
  for (const auto& [line, words] : rows) EXPECT_EQ(SplitWords(line), words) << line;
  for (const char* line : {"a \"b", "'", "\"\\", R"("\xC")", R"("\xGG")"}) {
    EXPECT_THROW(SplitWords(line), CommandError) << line;
  }
}

TEST(TimeInputTest, ReadsSpansAndTimes) {
  EXPECT_EQ(ParseSpan("1h30m5s20ms"), Milliseconds(5'405'020));
  for (const char* text : {"", "5", "s", "-1s", "5x", "1d1", "9999999999999999d"}) {
    EXPECT_THROW(ParseSpan(text), CommandError) << text;
  }
  SetTimeZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(ParseLocalTime("2026-07-01 12:00"), 1782900000);
  EXPECT_EQ(ParseLocalTime("2026-12-01 12:00:30"), 1796122830);
  for (const char* text : {"", "12:00", "2026-02-30", "2026-03-29 02:30", "2026-01-01 25:00"}) {
    EXPECT_THROW(ParseLocalTime(text), CommandError) << text;
  }
  EXPECT_THROW(SetTimeZone("Nowhere/AtAll"), CommandError);
}

class ScriptTest : public testing::Test {
 protected:
  // What the script prints; what it complains of goes to `errors`.
  std::string Run(const std::string& script) {
    std::ostringstream out;
    std::istringstream lines(script);
    Profile profile;
    profile.config = {{"HistorySavedSwitch", 1}};
    Phone phone(root.path(), profile, std::make_unique<ManualClock>(0), out);
    wrong = RunScript(phone, lines, "script", errors);
    return out.str();
  }

  TemporaryDirectory root;
  std::ostringstream errors;
  int wrong = 0;
};

TEST_F(ScriptTest, WrongLinesAreNamedAndTheRestGoesOn) {
  Run("call missed 1\n"
      "bogus\n"
      "call\n"
      "call sideways 1\n"
      "list all 0 1 2\n"
      "detail missed x\n"
      "call missed 2 name=a name=b\n"
      "call missed \"3\n"
      "wait soon\n"
      "config HistorySavedSwitch on\n"
      "cdr nothing.csv 100\n"
      "call missed 4\r\n"
      "quit\n"
      "call missed 5\n");
  EXPECT_EQ(wrong, 10);
  std::istringstream lines(errors.str());
  int number = 2;
  for (std::string line; std::getline(lines, line); ++number) {
    EXPECT_EQ(line.find("script:" + std::to_string(number) + ": "), 0u) << line;
  }
  EXPECT_EQ(number, 12);
  const std::string next = Run("list\n");
  EXPECT_NE(next.find("all: 2 calls"), std::string::npos) << next << "quitting saves";
}

TEST_F(ScriptTest, TheHistoryIsGuardedFromStartToEnd) {
  const auto file = root.path() / "config/data/call_data.xml";
  const std::string note = "  * the last good copy of the history is back";
  for (const char* save : {"save\n", "wait 5s\n", "# quitting saves\n"}) {
    EXPECT_EQ(Run(std::string("power-cycle\ncall missed 1\n") + save).find(note), note.npos);
    EXPECT_EQ(ReadFile(file.string() + ".good"), ReadFile(file)) << save;
  }
  WriteFile(file, "");
  EXPECT_EQ(Run("").find(note), 0u);
  EXPECT_NE(Run("list\n").find("  all: 3 calls"), note.npos);
}

TEST_F(ScriptTest, ARootIsOnePhonesAlone) {
  std::ostringstream out;
  const Phone phone(root.path(), Profile(), std::make_unique<ManualClock>(0), out);
  EXPECT_THROW(RootDirectory second(root.path()), RootError);
  WriteFile(root.path() / "file", "");
  EXPECT_THROW(RootDirectory(root.path() / "file"), RootError);
}

}  // namespace
}  // namespace desk
