// Call detail records as one phone saw them: layouts, bad rows, and legs to calls. Each call is
// written as one line of text, "type time number name duration", so that the rows below can be read
// side by side.
#include <algorithm>
#include <cstdint>
#include <sstream>

#include "desktop/cdr/CallRecords.h"
#include "desktop/platform/Text.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

void SetZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

class CallRecords : public testing::Test {
 protected:
  CallRecords() { SetZone("UTC0"); }
};

CdrImport Read(const std::string& text, const std::string& extension = "100") {
  std::istringstream in(text);
  return ReadCallRecords(in, {extension, "pbx.example", {}});
}

// Seconds are counted from the start of the records below.
constexpr int kStart = 1777852800;  // 2026-05-04 00:00:00 UTC

// The calls, then the bad rows.
Strings Shown(const CdrImport& import) {
  Strings shown;
  for (const CallLogAddItemData& call : import.calls) {
    shown.push_back(Format("%d %d ", call.type, call.born_tick - kStart) + call.remote_sip_name +
                    " '" + call.remote_display_name + "' " + std::to_string(call.duration));
  }
  for (const BadRow& row : import.bad) {
    shown.push_back(std::to_string(row.line) + ": " + row.reason);
  }
  return shown;
}

// A record in either layout; the parts that a test does not set are those of an ordinary missed
// call.
struct Row {
  std::string channel = "PJSIP/200-00000001";
  std::string dstchannel = "PJSIP/100-00000002";
  std::string disposition = "NO ANSWER";
  std::string billsec = "0";
  std::string start = "2026-05-04 00:00:10";
  std::string src = "200";
  std::string more = "";  // columns behind the layout's own, with their commas
  std::string dst = "300";
  std::string clid = R"("""Bo"" <200>")";
  std::string lastapp = "Dial";
  std::string answer = "";
  std::string duration = "5";

  std::string Master() const {
    return "\"\"," + src + "," + dst + ",\"ctx\"," + clid + "," + Tail("DOCUMENTATION");
  }
  std::string Custom() const {
    return clid + "," + src + "," + dst + ",\"ctx\"," + Tail("3,\"account\"");
  }

 private:
  std::string Tail(const std::string& amaflags) const {
    return channel + "," + dstchannel + "," + lastapp + ",\"a,b\"," + start + "," + answer +
           ",2026-05-04 01:00:00," + duration + "," + billsec + "," + disposition + "," + amaflags +
           more + "\n";
  }
};

Row With(std::string Row::*column, const std::string& value, Row row = Row()) {
  row.*column = value;
  return row;
}

constexpr struct {
  const char* extension;
  const char* channel;
  const char* dstchannel;
  const char* disposition;
  const char* lastapp;
  const char* call;  // empty: other
} kLegs[] = {
    {"100", "PJSIP/100-01", "PJSIP/200-02", "ANSWERED", "Dial", "1 10 300 '' 7"},
    {"100", "SIP/100-01", "", "congestion", "Dial", "1 10 300 '' 0"},
    {"100", "SIP/100-01", "PJSIP/200-02", "ANSWERED", "VoiceMail", "1 10 300 '' 7"},
    {"100", "PJSIP/200-01", "PJSIP/100-02", "ANSWERED", "Dial", "3 10 200 'Bo' 7"},
    {"100", "PJSIP/200-01", "PJSIP/100-02", "NO ANSWER", "Dial", "2 10 200 'Bo' 0"},
    {"100", "PJSIP/200-01", "PJSIP/100-02", "NOANSWER", "Dial", "2 10 200 'Bo' 0"},
    {"100", "PJSIP/200-01", "PJSIP/100-02", "FAILED", "Dial", "2 10 200 'Bo' 0"},
    {"100", "PJSIP/200-01", "PJSIP/100-02", "ANSWERED", "VoiceMail", "2 10 200 'Bo' 0"},
    {"100", "PJSIP/100-01", "PJSIP/100-02", "ANSWERED", "Dial", "1 10 300 '' 7"},
    {"front-desk", "AsyncGoto/SCCP/front-desk-0a", "", "ANSWERED", "Dial", "1 10 300 '' 7"},
    {"front", "SCCP/front-desk-0a", "", "ANSWERED", "Dial", ""},
    {"100", "Local/100@from-internal-0000;1", "Local/100-0000;1", "ANSWERED", "Dial", ""},
    {"100", "PJSIP/1100-01", "PJSIP/1001-02", "NO ANSWER", "Dial", ""},
    {"100", "100", "", "ANSWERED", "Dial", ""},
    {"", "PJSIP/-01", "", "ANSWERED", "Dial", ""},
};

TEST_F(CallRecords, TellWhatThePhoneSawFromChannelsAndDisposition) {
  for (const auto& row : kLegs) {
    Row leg = With(&Row::lastapp, row.lastapp, {row.channel, row.dstchannel, row.disposition, "7"});
    leg.answer = "2026-05-04 00:00:12";  // filled by some writers for unanswered calls, too
    const Strings expected = *row.call != '\0' ? Strings{row.call} : Strings{};
    for (const std::string& text : {leg.Master(), leg.Custom()}) {
      const CdrImport import = Read(text, row.extension);
      EXPECT_EQ(Shown(import), expected) << text;
      EXPECT_EQ(import.other, expected.empty() ? 1u : 0u) << text;
    }
  }
}

constexpr struct {
  const char* src;
  const char* clid;
  const char* caller;
} kCallers[] = {
    {"200", R"("""Zoë B."" <200>")", "200 'Zoë B.'"},
    {"200", R"("""Bo ""The B"""" <200>")", "200 'Bo \"The B\"'"},
    {"200", R"(""Bo, jr" <200>")", "200 'Bo, jr'"},  // the quotes of a name not doubled
    {"200", R"(""""" <200>")", "200 ''"},
    {"200", R"("""200"" <200>")", "200 ''"},
    {"200", R"("""Bo"" <200")", "200 'Bo'"},
    {"200", "Bo", "200 'Bo'"},
    {"200", "", "200 ''"},
    {"", R"("""Bo"" <+4420>")", "+4420 'Bo'"},
    {"", "+4420", "+4420 ''"},
    {"200", "\"\"\"B\no\t\"\" <200>\"", "200 'B o'"},
};

TEST_F(CallRecords, NameTheCallerAndTheAccount) {
  for (const auto& row : kCallers) {
    const std::string text = With(&Row::src, row.src, With(&Row::clid, row.clid)).Master();
    const std::string call = std::string("2 10 ") + row.caller + " 0";
    EXPECT_EQ(Shown(Read(text + text)), (Strings{call, call})) << text;
  }
  const CallLogAddItemData call = Read(Row().Master()).calls.at(0);
  EXPECT_EQ(call.local_sip_name + "@" + call.local_sip_server, "100@pbx.example");
  EXPECT_EQ(call.remote_sip_server + call.forward_sip_name, "pbx.example");
}

// Ids, and legs from one caller to the extension and to others.
const std::string kA = ",1777852810.1,\"\"";
const std::string kB = ",1777852810.2,\"\"";
const std::string kBLinkedToA = kB + ",,1777852810.1,77";
const std::string kX = "PJSIP/200-00000001";
const std::string kE = "PJSIP/100-0000000e";
const Row kMissed = {kX, kE, "NO ANSWER"};
const Row kTaken = {kX, "PJSIP/101-00000003", "ANSWERED", "30"};
const Row kMenu = {kX, "", "ANSWERED", "9"};
const Row kLocal = {kX, "Local/9@q-1;1", "NO ANSWER"};
const Row kAgain = {kX, kE, "BUSY", "0", "2026-05-04 00:00:30"};
const Row kTransfer = {"PJSIP/100-ff", "PJSIP/101-3", "ANSWERED", "8", "2026-05-04 00:00:20"};

std::string In(const std::string& ids, const Row& row) {
  return With(&Row::more, ids, row).Master();
}

std::string Both(const std::string& ids) { return In(ids, kMissed) + In(ids, kTaken); }

std::string Answered(const char* seconds, const char* start) {
  return In(kA, {kX, kE, "ANSWERED", seconds, std::string("2026-05-04 00:00:") + start});
}

const Strings kOne = {"2 10 200 'Bo' 0"};

const struct {
  const char* what;
  std::string text;
  Strings calls;
} kGroups[] = {
    {"answered elsewhere, by linkedid", In(kBLinkedToA, kMissed) + In(kA, kTaken), {}},
    {"linked by a third leg", In(kB, kMissed) + In(kA, kTaken) + In(kBLinkedToA, kLocal), {}},
    {"so, told first", In(kB, kTaken) + In(kBLinkedToA, kLocal) + In(kA, kMissed), {}},
    {"another call answered", In(kB, kTaken) + In(kA, kMissed), kOne},
    {"lone column with an id of a named system", Both(",pbx-1777852810.1"), {}},
    {"lone column with a userfield", Both(",ad"), kOne},
    {"no ids", Both(""), kOne},
    {"sums", In(",1777852810.2,12.50", kMissed) + In(",1777852810.1,12.50", kTaken), kOne},
    {"voicemail", In(kA, kMissed) + In(kA, With(&Row::lastapp, "VoiceMail", kTaken)), kOne},
    {"nor is a menu", In(kA, kMissed) + In(kA, kMenu), kOne},
    {"rung twice by a queue", In(kA, kMissed) + In(kA, kAgain), kOne},
    {"rung twice, answered then", In(kA, kMissed) + Answered("4", "30"), {"3 30 200 'Bo' 4"}},
    {"one after the other", Answered("3", "15") + Answered("4", "10"), {"3 10 200 'Bo' 7"}},
    {"two legs at a time", Answered("3", "10") + Answered("4", "12"), {"3 10 200 'Bo' 4"}},
    {"placed to a group",
     In(kA, {kE, "PJSIP/101-3", "NO ANSWER"}) + In(kA, {kE, "PJSIP/102-4", "ANSWERED", "8"}),
     {"1 10 300 '' 8"}},
    {"received, and a second call placed for a transfer",
     Answered("3", "10") + In(kBLinkedToA, kTransfer),
     {"3 10 200 'Bo' 3", "1 20 300 '' 8"}},
    {"longest", Answered("2147483647", "10") + Answered("9", "30"), {"3 10 200 'Bo' 2147483647"}},
};

TEST_F(CallRecords, MakeOneCallOfItsLegs) {
  for (const auto& row : kGroups) EXPECT_EQ(Shown(Read(row.text)), row.calls) << row.what;
}

TEST_F(CallRecords, ComeOldestFirstAndOtherwiseInTheOrderOfTheFile) {
  std::string text;
  Strings calls(40);
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const std::string start = i < 20 ? "2026-05-04 00:00:17" : "2026-05-04 00:00:15";
    text += With(&Row::start, start, With(&Row::src, std::to_string(i))).Custom();
    calls[(i + 20) % 40] = (i < 20 ? "2 17 " : "2 15 ") + std::to_string(i) + " 'Bo' 0";
  }
  EXPECT_EQ(Shown(Read(text)), calls);
}

const std::string kGood = Row().Master();
const std::string kCall = "2 10 200 'Bo' 0";
const std::string kAs(39, 'a');

const struct {
  std::string Row::*column;
  std::string value;
  const char* reason;
  std::string shown = value;
} kBadFields[] = {
    {&Row::start, "2026-02-30 10:00:00", "start is not in the calendar"},
    {&Row::start, "2026-05-04 24:00:00", "start is not in the calendar"},
    {&Row::start, "2026-05-04 10:00:60", "start is not in the calendar"},
    {&Row::start, "2038-01-19 03:14:08", "start is outside the years that the phone can store"},
    {&Row::start, "1901-12-13 20:45:51", "start is outside the years that the phone can store"},
    {&Row::start, "05/04/2026 10:00:00", "start is not a time as YYYY-MM-DD hh:mm:ss"},
    {&Row::disposition, kAs + "é" + std::string(1 << 20, 'b'), "unknown disposition", kAs + "..."},
    {&Row::disposition, std::string("a\0b\x1b", 4), "unknown disposition", "a?b?"},
    {&Row::billsec, "3.5", "billsec is not a number of seconds"},
    {&Row::duration, "2147483648", "duration is not a number of seconds"},
};

TEST_F(CallRecords, NameTheFieldThatIsBad) {
  for (const auto& field : kBadFields) {
    const Row row = With(field.column, field.value);
    const Strings shown = {std::string("1: ") + field.reason + ": \"" + field.shown + "\""};
    EXPECT_EQ(Shown(Read(row.Master())), shown);
    EXPECT_EQ(Shown(Read(row.Custom())), shown);
  }
}

const struct {
  std::string text;  // between two good records
  Strings bad;
  std::size_t good = 2;
} kBadRows[] = {
    {"hello\n", {"2: 1 column, too few for a call record"}},
    {kGood.substr(0, kGood.rfind(',')) + "\n", {"2: 15 columns, too few for a call record"}},
    {std::string(17, ',') + "\n", {"2: 18 columns, in no known order"}},
    {With(&Row::start, "today", With(&Row::disposition, "MAYBE")).Master(),
     {"2: 16 columns, in no known order"}},
    // An open quote costs its own line, not those behind it.
    {"\"200\",\"lost\nx,y\n",
     {"2: a quoted field is not closed", "3: 2 columns, too few for a call record"}},
    {kGood.substr(0, kGood.size() - 1) + ",\"1777852810.1\",\"open\n" + kGood,
     {"2: a quoted field is not closed"},
     3},
    {"a,\"b\n\na\n", {"2: a quoted field is not closed", "4: 1 column, too few for a call record"}},
    // Line breaks in a field that is closed belong to it; rows behind it keep their lines.
    {With(&Row::lastapp, "\"Di\r\n\nal\"", With(&Row::billsec, "x")).Master() + "\n \t\r\na\r\n",
     {"2: billsec is not a number of seconds: \"x\"", "7: 1 column, too few for a call record"}},
    {With(&Row::lastapp, "\"D\nl\"").Master(), {}, 3},
    {With(&Row::lastapp, "\"" + std::string(98, '\n') + "\"").Master(), {}, 3},
    {std::string(16 << 20, 'x') + "\n", {"2: 1 column, too few for a call record"}},
    {std::string((16 << 20) + 1, 'x') + "\n", {"2: longer than 16 MB"}},
    {std::string(33 << 20, 'x') + "\n", {"2: longer than 16 MB"}},
    {With(&Row::lastapp, std::string(2 << 20, '\0')).Master(), {}, 3},
};

TEST_F(CallRecords, NameBadRowsAndGoOn) {
  for (const auto& row : kBadRows) {
    const CdrImport import = Read(kGood + row.text + kGood);
    EXPECT_EQ(Shown(import), Strings(row.good, kCall) + row.bad) << row.text.substr(0, 300);
    EXPECT_EQ(import.rows, row.good + row.bad.size()) << row.text.substr(0, 300);
  }
  const std::string manyLines = "\"" + std::string(200, '\n') + "\"";
  EXPECT_EQ(Read(With(&Row::lastapp, manyLines).Master()).bad.size(), 2u);
  EXPECT_EQ(Shown(Read("\"c")), Strings{"1: a quoted field is not closed"});
}

TEST_F(CallRecords, PassOverMarkAndHeaders) {
  const Row header = {"channel", "dstchannel", "disposition", "billsec", "\"Start\"", "src"};
  const CdrImport import = Read("\xEF\xBB\xBF" + header.Master() + Row().Custom() +
                                header.Custom() + kGood.substr(0, kGood.size() - 1));
  EXPECT_EQ(import.rows, 2u);
  EXPECT_EQ(Shown(import), (Strings{kCall, kCall}));
  EXPECT_EQ(Shown(Read("\xEF\xBB\xBF" + Row().Custom())), Strings{kCall});
  EXPECT_EQ(Read("").rows, 0u);
}

TEST_F(CallRecords, TakeOtherSeparatorsAndCharacters) {
  for (const char separator : {';', '\t'}) {
    std::string text = "#\n" + With(&Row::more, ",\"\"").Master();
    std::replace(text.begin(), text.end(), ',', separator);
    EXPECT_EQ(Shown(Read(text + kGood)),
              (Strings{kCall, kCall, "1: 1 column, too few for a call record"}));
  }
  const std::string named = With(&Row::clid, "\"\"\"Zo\xEB \xA9\"\" <200>\"").Master();
  EXPECT_EQ(Shown(Read(named)), Strings{"2 10 200 'Zoë ©' 0"});
}

TEST_F(CallRecords, NameTheTimesThatAreKnown) {
  std::string text = Row().Master();
  for (std::size_t at = 0; (at = text.find("2026-05-04", at)) != text.npos;) {
    text.replace(at, 10, "04.05.2026");
  }
  const std::string fault = ": start is not a time as YYYY-MM-DD hh:mm:ss: \"04.05.2026 00:00:10\"";
  EXPECT_EQ(Shown(Read(text)), Strings{"1" + fault});
}

TEST_F(CallRecords, KeepNoMoreThanAPhoneDoes) {
  const std::string others = Repeat(With(&Row::dstchannel, "").Master(), 100'000 - 1);
  EXPECT_EQ(Shown(Read(In(kA, kMissed) + others + In(kA, kTaken))), Strings{});
  EXPECT_EQ(Shown(Read(In(kA, kMissed) + others + kMenu.Master() + In(kA, kTaken))), kOne);
  const CdrImport import = Read(With(&Row::src, "first").Master() + Repeat(kGood, 100) +
                                Repeat("x\n", 30) + Row{kE, ""}.Master());
  EXPECT_EQ(import.calls.size(), 101u);
  EXPECT_EQ(import.older, 1u);
  EXPECT_EQ(import.calls.front().remote_sip_name, "200");
  EXPECT_EQ(std::pair(import.badRows, import.bad.size()),
            std::pair(std::size_t{30}, std::size_t{20}));
}

TEST_F(CallRecords, NameTheBusiestExtensions) {
  std::string text;
  for (std::size_t i = 0; i < 12; ++i) {
    text += Repeat(Row{"PJSIP/3" + std::to_string(10 + i) + "-1", ""}.Master(), 20 - i);
  }
  EXPECT_EQ(Read(text).extensions,
            List("310", "311", "312", "313", "314", "315", "316", "317", "318", "319"));
  EXPECT_EQ(Read(text, "321").extensions, Strings{});
}

TEST_F(CallRecords, ReadTimesAsLocal) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  const std::pair<const char*, int> times[] = {
      {"2026-01-15 12:00:00", 1768474800}, {"2026-07-15 12:00:00", 1784109600},
      {"1970-01-01 00:59:59", -1},         {"2038-01-19 04:14:07", 2147483647},
      {"2026-03-29 02:30:00", 1774747800},  // when clocks go forward: no reason to lose a call
  };
  for (const auto& [text, tick] : times) {
    const CdrImport import = Read(With(&Row::start, text).Master());
    ASSERT_EQ(import.calls.size(), 1u) << text;
    EXPECT_EQ(import.calls[0].born_tick, tick) << text;
  }
}

TEST_F(CallRecords, ReportTheBytesRead) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += Row().Master() + Row().Custom();
  std::istringstream in(text);
  std::vector<std::uint64_t> done;
  const auto report = [&done](std::uint64_t bytes) { done.push_back(bytes); };
  EXPECT_EQ(ReadCallRecords(in, {"100", "", report}).rows, 2000u);
  ASSERT_GT(done.size(), 2u);
  EXPECT_LT(done.front(), text.size() / 2);
  EXPECT_EQ(done.back(), text.size());
}

}  // namespace
}  // namespace desk
