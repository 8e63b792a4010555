// The phone driven by lines: how they are split, what is said of wrong ones, and that nothing is
// lost.
#include <gtest/gtest.h>

#include <sstream>

#include "desktop/console/CallImport.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
#include "desktop/console/Script.h"
#include "desktop/console/TimeInput.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

TEST(CommandLineTest, SplitsAtBlanksAndKeepsQuotes) {
  const std::pair<const char*, Strings> rows[] = {
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

// A PBX's record of a call.
constexpr char kMissedBy100[] =
    "\"\",200,300,ctx,Bo,PJSIP/200-1,PJSIP/100-2,Dial,,2026-05-04 00:00:10,,2026-05-04 "
    "00:00:20,5,0,"
    "NO ANSWER,DOCUMENTATION\n";

class ScriptTest : public testing::Test {
 protected:
  // What the script prints; what it complains of goes to `errors`.
  std::string Run(const std::string& script) {
    std::ostringstream out;
    std::istringstream lines(script);
    Profile profile;
    profile.accounts = {Account(0, "100", "sip.example.org")};
    Phone phone(root.path(), profile, std::make_unique<ManualClock>(0));
    Console console{phone, out};
    ReportNews(console);
    wrong = RunScript(console, lines, "script", errors);
    return out.str();
  }

  TemporaryDirectory root;
  TemporaryDirectory files;
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

TEST_F(ScriptTest, ACallThatIsNotKeptSaysWhy) {
  const auto records = files.path() / "records.csv";
  WriteFile(records, Repeat(kMissedBy100, 1000));
  const std::string import = "cdr " + records.string() + " 100\n";
  const std::string printed =
      Run("call all 1\n"
          "account 100 missed off\n"
          "call missed 2\n" +
          import +
          "call received 2\n"
          "call missed 2 account=200@sip.example.org\n"
          "config HistorySavedSwitch 0\n"
          "call missed 2\n"
          "dial 2\n"
          "hangup\n" +
          import + "config HistorySavedSwitch 1\ndial 2\nhangup\n");
  Strings reasons;
  std::istringstream lines(printed);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("refused") != line.npos || line.find("not kept") != line.npos) {
      reasons.push_back(line);
    }
  }
  const std::string off = "the history is switched off (HistorySavedSwitch is not 1)";
  const std::string noMissed = "the account 100@sip.example.org keeps no missed calls";
  EXPECT_EQ(reasons, (Strings{"  refused: a call is outgoing, missed, received or forwarded",
                              "  refused: " + noMissed, "  1000 calls refused: " + noMissed,
                              "  refused: " + off, "  it is not kept: " + off,
                              "  1000 calls refused: " + off}));
}

TEST_F(ScriptTest, AnInterruptionEndsWhatTakesLong) {
  const auto records = files.path() / "records.csv";
  WriteFile(records, kMissedBy100);
  std::ostringstream out;
  Phone phone(root.path(), Profile(), std::make_unique<RealClock>());
  Console console{phone, out};
  phone.interrupted = [] { return true; };
  EXPECT_FALSE(phone.Wait(std::chrono::hours(1)));
  const CallImport import = {records.string(), "100", "sip.example.org"};
  EXPECT_THROW(import.Run(console), CommandError);
  EXPECT_FALSE(phone.Save()) << "a call came in";
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

TEST_F(ScriptTest, ASecondPhoneIsRefusedTheSameRoot) {
  const Phone phone(root.path(), Profile(), std::make_unique<ManualClock>(0));
  EXPECT_THROW(RootDirectory second(root.path()), RootError);
  WriteFile(root.path() / "file", "");
  EXPECT_THROW(RootDirectory(root.path() / "file"), RootError);
}

}  // namespace
}  // namespace desk
