// The phone driven by lines: how they are split, what is said of wrong ones, and that nothing is
// lost.
#include <gtest/gtest.h>

#include <sstream>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Script.h"
#include "desktop/console/TimeInput.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

const struct {
  const char* line;
  Strings words;
} kLines[] = {
    {" list\tall 0 ", {"list", "all", "0"}},
    {"call name=\"Anna Berg\" #31#", {"call", "name=Anna Berg", "#31#"}},
    {R"("a\"b\\c\n\xC3" 'd\n"')", {"a\"b\\c\n\xC3", "d\\n\""}},
    {"a'b c'd \"\"", {"ab cd", ""}},
};

TEST(CommandLineTest, SplitsAtBlanksAndKeepsQuotes) {
  for (const auto& row : kLines) EXPECT_EQ(SplitWords(row.line), row.words) << row.line;
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
    "00:00:20,5,0,NO ANSWER,DOCUMENTATION\n";

constexpr char kWrongLines[] =
    "bogus\ncall\ncall sideways 1\nlist all 0 1 2\ndetail missed x\ncall missed 2 name=a name=b\n"
    "call missed \"3\nwait soon\nconfig HistorySavedSwitch on\ncdr nothing.csv 100\n";

constexpr char kCallsNotKept[] =
    "call all 1\naccount 100 missed off\ncdr records.csv 100\n"
    "config HistorySavedSwitch 0\ncall missed 2\ndial 2\nhangup\n";
const Strings kWhyNotKept = {
    "  refused: a call is outgoing, missed, received or forwarded",
    "  2 calls refused: the account 100@sip.example.org keeps no missed calls",
    "  refused: the history is switched off (HistorySavedSwitch is not 1)",
    "  it is not kept: the history is switched off (HistorySavedSwitch is not 1)"};

class ScriptTest : public testing::Test {
 protected:
  ScriptTest() { WriteFile(files.path() / "records.csv", Repeat(kMissedBy100, 2)); }

  // What the script prints; what it complains of goes to `errors`.
  std::string Run(const std::string& script) {
    std::ostringstream out;
    std::istringstream lines(script);
    Profile profile;
    profile.accounts = {Account(0, "100", "sip.example.org")};
    Phone phone(root.path(), profile, std::make_unique<ManualClock>(0));
    Console console{phone, out, files.path()};
    ReportNews(console);
    wrong = RunScript(console, lines, "script", errors);
    return out.str();
  }

  TemporaryDirectory root;
  TemporaryDirectory files;
  std::ostringstream errors;
  int wrong = 0;
};

TEST_F(ScriptTest, ThePasswordOfALineIsNotShown) {
  const std::string shown = Run("source 0 server=h \"password=s3 cret\"\nsorce password=s3cret\n");
  EXPECT_EQ(shown.find("s3"), shown.npos) << shown;
}

TEST_F(ScriptTest, WrongLinesAreNamedAndTheRestGoesOn) {
  Run(std::string("call missed 1\n") + kWrongLines + "call missed 4\r\nquit\ncall missed 5\n");
  EXPECT_EQ(wrong, 10);
  EXPECT_EQ(errors.str().find("script:2: "), 0u) << errors.str();
  EXPECT_NE(errors.str().find("\nscript:11: "), std::string::npos) << errors.str();
  EXPECT_NE(Run("list\r\n").find("phone> list\n  all: 2 calls"), std::string::npos)
      << "quitting saves";
}

TEST_F(ScriptTest, ACallThatIsNotKeptSaysWhy) {
  const std::string printed = Run(kCallsNotKept);
  for (const std::string& reason : kWhyNotKept) {
    EXPECT_NE(printed.find(reason + "\n"), printed.npos) << printed;
  }
}

TEST_F(ScriptTest, AnInterruptedImportBringsNothingIn) {
  Phone phone(root.path(), Profile(), std::make_unique<ManualClock>(0));
  Console console{phone, errors, files.path()};
  phone.interrupted = [] { return true; };
  EXPECT_THROW(RunCommand(console, "cdr records.csv 100"), CommandError);
  EXPECT_FALSE(phone.Save());
}

TEST_F(ScriptTest, ACallIsBroughtInOnce) {
  const auto records = files.path() / "records.csv";
  const auto missed = [&](const std::string& script) {
    const std::string printed = Run(script + "\ncdr records.csv 100");
    return printed.substr(printed.rfind("\n  missed: ") + 11, 1);
  };
  const std::filesystem::path known = root.path() / "config/data/imported_calls";
  EXPECT_EQ(missed(""), "2");
  EXPECT_EQ(missed(""), "2");
  std::filesystem::remove(known);  // killed before it was written
  EXPECT_EQ(missed(""), "2");
  EXPECT_EQ(std::filesystem::status(known).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(missed("remove missed all"), "0");
  std::string more = kMissedBy100;
  more.replace(more.find(",200,"), 5, ",201,");
  WriteFile(records, ReadFile(records) + more);
  EXPECT_EQ(missed(""), "1");
}

TEST_F(ScriptTest, AnImportOfNothingSaysWhy) {
  WriteFile(files.path() / "bad.csv", "hello\n\n1\n");
  Run("cdr bad.csv 100\ncdr records.csv 300\ncdr - 100\n");
  EXPECT_EQ(wrong, 3);
  EXPECT_EQ(errors.str(),
            "script:1: bad.csv:1: 1 column, too few for a call record; no row is a call record\n"
            "script:2: no call of 300 is in records.csv; it has 100, 200\n"
            "script:3: the file is wanted by its name\n");
}

TEST_F(ScriptTest, TheHistoryIsGuardedFromStartToEnd) {
  const auto file = root.path() / "config/data/call_data.xml";
  const std::string note = "  * the last good copy of the history is back";
  for (const char* save : {"save", "wait 5s", "# quitting saves"}) {
    EXPECT_EQ(Run(std::string("power-cycle\ncall missed 1\n") + save).find(note), note.npos);
    EXPECT_EQ(ReadFile(file.string() + ".good"), ReadFile(file)) << save;
  }
  WriteFile(file, "");
  EXPECT_EQ(Run("").find(note), 0u);
  EXPECT_NE(Run("list").find("  all: 3 calls"), note.npos);
}

}  // namespace
}  // namespace desk
