// Call detail records as one phone saw them: layouts, bad rows, and legs to calls. Each call is
// written as one line of text, "type time number name duration", so that the rows below can be read
// side by side.
#include <algorithm>
#include <cstdint>
#include <sstream>

#include "desktop/cdr/CallRecords.h"
#include "tests/support/PhoneTest.h"

namespace {

using desk::Strings;

void SetZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

class CallRecords : public testing::Test {
 protected:
  CallRecords() { SetZone("UTC0"); }
};

desk::CdrImport Read(const std::string& text, const std::string& extension = "100") {
  std::istringstream in(text);
  return desk::ReadCallRecords(in, {extension, "pbx.example", {}});
}

// Seconds are counted from the start of the records below.
constexpr int kStart = 1777852800;  // 2026-05-04 00:00:00 UTC

std::string Show(const CallLogAddItemData& call) {
  return std::to_string(call.type) + " " + std::to_string(call.born_tick - kStart) + " " +
         call.remote_sip_name + " '" + call.remote_display_name + "' " +
         std::to_string(call.duration);
}

Strings Calls(const desk::CdrImport& import) {
  Strings calls;
  for (const CallLogAddItemData& call : import.calls) calls.push_back(Show(call));
  return calls;
}

Strings Bad(const desk::CdrImport& import) {
  Strings bad;
  for (const desk::BadRow& row : import.bad) {
    bad.push_back(std::to_string(row.line) + ": " + row.reason);
  }
  return bad;
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

const char kE[] = "PJSIP/100-0000000e";

TEST_F(CallRecords, TellWhatThePhoneSawFromChannelsAndDisposition) {
  const struct {
    const char* extension;
    const char* channel;
    const char* dstchannel;
    const char* disposition;
    const char* lastapp;
    const char* call;  // empty: other
  } rows[] = {
      {"100", "PJSIP/100-01", "PJSIP/200-02", "ANSWERED", "Dial", "1 10 300 '' 7"},
      {"100", "SIP/100-01", "", "NO ANSWER", "Dial", "1 10 300 '' 0"},
      {"100", "SIP/100-01", "", "congestion", "Dial", "1 10 300 '' 0"},
      {"100", "SIP/100-01", "PJSIP/200-02", "ANSWERED", "VoiceMail", "1 10 300 '' 7"},
      {"100", "PJSIP/200-01", "PJSIP/100-02", "ANSWERED", "Dial", "3 10 200 'Bo' 7"},
      {"100", "PJSIP/200-01", "PJSIP/100-02", "NO ANSWER", "Dial", "2 10 200 'Bo' 0"},
      {"100", "PJSIP/200-01", "PJSIP/100-02", "NOANSWER", "Dial", "2 10 200 'Bo' 0"},
      {"100", "PJSIP/200-01", "PJSIP/100-02", "FAILED", "Dial", "2 10 200 'Bo' 0"},
      {"100", "PJSIP/200-01", "PJSIP/100-02", "ANSWERED", "VoiceMail", "2 10 200 'Bo' 0"},
      {"100", "PJSIP/100-01", "PJSIP/100-02", "ANSWERED", "Dial", "1 10 300 '' 7"},
      {"front-desk", "SCCP/front-desk-0a", "", "ANSWERED", "Dial", "1 10 300 '' 7"},
      {"100", "AsyncGoto/SIP/100-01", "SIP/200-02", "ANSWERED", "Dial", "1 10 300 '' 7"},
      {"front", "SCCP/front-desk-0a", "", "ANSWERED", "Dial", ""},
      {"100", "Local/100@from-internal-0000;1", "Local/100-0000;1", "ANSWERED", "Dial", ""},
      {"100", "PJSIP/1100-01", "PJSIP/1001-02", "NO ANSWER", "Dial", ""},
      {"100", "100", "", "ANSWERED", "Dial", ""},
      {"", "PJSIP/-01", "", "ANSWERED", "Dial", ""},
  };
  for (const auto& row : rows) {
    Row leg = {row.channel, row.dstchannel, row.disposition, "7"};
    leg.lastapp = row.lastapp;
    leg.answer = "2026-05-04 00:00:12";  // filled by some writers for unanswered calls, too
    const Strings expected = *row.call != '\0' ? Strings{row.call} : Strings{};
    for (const std::string& text : {leg.Master(), leg.Custom()}) {
      const desk::CdrImport import = Read(text, row.extension);
      EXPECT_EQ(Calls(import), expected) << text;
      EXPECT_EQ(import.other, expected.empty() ? 1u : 0u) << text;
      EXPECT_EQ(Bad(import), Strings{});
    }
  }
}

TEST_F(CallRecords, NameTheCallerAndTheAccount) {
  const struct {
    const char* src;
    const char* clid;
    const char* caller;
  } rows[] = {
      {"200", R"("""Zoë B."" <200>")", "200 'Zoë B.'"},
      {"200", R"("""Bo ""The B"""" <200>")", "200 'Bo \"The B\"'"},
      {"200", R"(""Bo, jr" <200>")", "200 'Bo, jr'"},  // the quotes of a name not doubled
      {"200", R"(""""" <200>")", "200 ''"},
      {"200", R"("""200"" <200>")", "200 ''"},
      {"200", R"("""Bo"" <200")", "200 'Bo'"},
      {"200", "200", "200 ''"},
      {"200", "Bo", "200 'Bo'"},
      {"200", "", "200 ''"},
      {"", R"("""Bo"" <+4420>")", "+4420 'Bo'"},
      {"", "+4420", "+4420 ''"},
      {"", R"(""""" <>")", " ''"},
      {"200", "\"\"\"B\no\t\"\" <200>\"", "200 'B o'"},
  };
  for (const auto& row : rows) {
    const std::string text = With(&Row::src, row.src, With(&Row::clid, row.clid)).Master();
    const std::string call = std::string("2 10 ") + row.caller + " 0";
    EXPECT_EQ(Calls(Read(text + text)), (Strings{call, call})) << text;
  }
  const CallLogAddItemData call = Read(Row().Master()).calls.at(0);
  EXPECT_EQ(call.local_sip_name + "@" + call.local_sip_server, "100@pbx.example");
  EXPECT_EQ(call.remote_sip_server + call.forward_sip_name, "pbx.example");
}

TEST_F(CallRecords, MakeOneCallOfItsLegs) {
  const std::string a = ",1777852810.1,\"\"";
  const std::string b = ",1777852810.2,\"\"";
  const std::string bLinkedToA = b + ",,1777852810.1,77";
  const std::string x = "PJSIP/200-00000001";
  const Row missed = {x, kE, "NO ANSWER"};
  const Row taken = {x, "PJSIP/101-00000003", "ANSWERED", "30"};
  const Row local = {x, "Local/9@q-1;1", "NO ANSWER"};
  const Row menu = {x, "", "ANSWERED", "9"};
  const Row again = {x, kE, "BUSY", "0", "2026-05-04 00:00:30"};
  const Row transfer = {"PJSIP/100-ff", "PJSIP/101-3", "ANSWERED", "8", "2026-05-04 00:00:20"};
  const auto in = [](const std::string& ids, const Row& row) {
    return With(&Row::more, ids, row).Master();
  };
  const auto both = [&](const std::string& ids) { return in(ids, missed) + in(ids, taken); };
  const auto answered = [&](const char* seconds, const char* start) {
    return in(a, {x, kE, "ANSWERED", seconds, std::string("2026-05-04 00:00:") + start});
  };
  const auto byMailbox = [](const Row& row) { return With(&Row::lastapp, "VoiceMail", row); };
  const Strings one = {"2 10 200 'Bo' 0"};
  const struct {
    const char* what;
    std::string text;
    Strings calls;
  } rows[] = {
      {"answered elsewhere", both(a), {}},
      {"answered elsewhere, by linkedid", in(bLinkedToA, missed) + in(a, taken), {}},
      {"linked by a third leg", in(b, missed) + in(a, taken) + in(bLinkedToA, local), {}},
      {"so, told first", in(b, taken) + in(bLinkedToA, local) + in(a, missed), {}},
      {"another call answered", in(b, taken) + in(a, missed), one},
      {"lone column with an id of a named system", both(",pbx-1777852810.1"), {}},
      {"lone column with a userfield", both(",ad"), one},
      {"no ids", both(""), one},
      {"userfield like a sum", in(",1777852810.2,12.50", missed) + in(",1777852810.1,12.50", taken),
       one},
      {"voicemail is no phone", in(a, missed) + in(a, byMailbox(menu)), one},
      {"nor is that of another", in(a, missed) + in(a, byMailbox(taken)), one},
      {"nor is a menu", in(a, missed) + in(a, menu), one},
      {"rung twice by a queue", in(a, missed) + in(a, again), one},
      {"rung twice, answered then", in(a, missed) + answered("4", "30"), {"3 30 200 'Bo' 4"}},
      {"one after the other", answered("3", "30") + answered("4", "10"), {"3 10 200 'Bo' 7"}},
      {"two legs at a time", answered("3", "10") + answered("4", "12"), {"3 10 200 'Bo' 4"}},
      {"placed to a group",
       in(a, {kE, "PJSIP/101-3", "NO ANSWER"}) + in(a, {kE, "PJSIP/102-4", "ANSWERED", "8"}),
       {"1 10 300 '' 8"}},
      {"received, and a second call placed for a transfer",
       answered("3", "10") + in(bLinkedToA, transfer),
       {"3 10 200 'Bo' 3", "1 20 300 '' 8"}},
      {"the longest call there is",
       answered("2147483647", "10") + answered("9", "30"),
       {"3 10 200 'Bo' 2147483647"}},
  };
  for (const auto& row : rows) {
    const desk::CdrImport import = Read(row.text);
    EXPECT_EQ(Calls(import), row.calls) << row.what;
    EXPECT_EQ(Bad(import), Strings{}) << row.what;
  }
}

TEST_F(CallRecords, ComeOldestFirstAndOtherwiseInTheOrderOfTheFile) {
  std::string text;
  Strings calls(40);
  for (std::size_t i = 0; i < calls.size(); ++i) {
    Row row;
    row.src = std::to_string(i);
    row.start.back() = i < 20 ? '7' : '5';
    text += row.Custom();
    calls[(i + 20) % 40] = (i < 20 ? "2 17 " : "2 15 ") + row.src + " 'Bo' 0";
  }
  EXPECT_EQ(Calls(Read(text)), calls);
}

TEST_F(CallRecords, NameBadRowsAndGoOn) {
  const std::string good = Row().Master();
  const std::string unclosed = "\"200\",\"lost\nx,y\n";
  const std::string lastFieldOpen = good.substr(0, good.size() - 1) + ",\"1777852810.1\",\"open\n";
  const std::string as(39, 'a');
  const struct {
    std::string Row::*column;
    std::string value;
    const char* reason;
    std::string shown = value;
  } fields[] = {
      {&Row::start, "2026-02-30 10:00:00", "start is not in the calendar"},
      {&Row::start, "2026-05-04 24:00:00", "start is not in the calendar"},
      {&Row::start, "2026-00-04 10:60:00", "start is not in the calendar"},
      {&Row::start, "2038-01-19 03:14:08", "start is outside the years that the phone can store"},
      {&Row::start, "1901-12-13 20:45:51", "start is outside the years that the phone can store"},
      {&Row::disposition, "MAYBE", "unknown disposition"},
      {&Row::disposition, "", "unknown disposition"},
      {&Row::disposition, as + "é" + std::string(1 << 20, 'b'), "unknown disposition", as + "..."},
      {&Row::disposition, std::string("a\0b\x1b", 4), "unknown disposition", "a?b?"},
      {&Row::billsec, "3.5", "billsec is not a number of seconds"},
      {&Row::duration, "2147483648", "duration is not a number of seconds"},
  };
  for (const auto& field : fields) {
    const Row row = With(field.column, field.value);
    const Strings bad = {std::string("2: ") + field.reason + ": \"" + field.shown + "\""};
    EXPECT_EQ(Bad(Read(good + row.Master() + good)), bad);
    EXPECT_EQ(Bad(Read(good + row.Custom() + good)), bad);
  }
  const struct {
    std::string text;
    Strings bad;
    std::size_t good = 2;
  } rows[] = {
      {"hello\n", {"2: 1 column, too few for a call record"}},
      {good.substr(0, good.rfind(',')) + "\n", {"2: 15 columns, too few for a call record"}},
      {std::string(17, ',') + "\n", {"2: 18 columns, in no known order"}},
      {With(&Row::start, "today", With(&Row::disposition, "MAYBE")).Master(),
       {"2: 16 columns, in no known order"}},
      // An open quote costs its own line, not those behind it.
      {unclosed, {"2: a quoted field is not closed", "3: 2 columns, too few for a call record"}},
      {lastFieldOpen + good, {"2: a quoted field is not closed"}, 3},
      // Line breaks in a field that is closed belong to it; rows behind it keep their lines.
      {With(&Row::lastapp, "\"Di\r\n\nal\"", With(&Row::billsec, "x")).Master() + "a\n",
       {"2: billsec is not a number of seconds: \"x\"", "5: 1 column, too few for a call record"}},
      {"\n \t\r\n" + With(&Row::lastapp, "\"D\nl\"").Master() + "\r\na\r\n",
       {"7: 1 column, too few for a call record"},
       3},
      {std::string(16 << 20, 'x') + "\n", {"2: 1 column, too few for a call record"}},
      {std::string((16 << 20) + 1, 'x') + "\n", {"2: longer than 16 MB"}},
      {std::string(33 << 20, 'x') + "\n", {"2: longer than 16 MB"}},
      {With(&Row::lastapp, std::string(2 << 20, '\0')).Master(), {}, 3},
  };
  for (const auto& row : rows) {
    const desk::CdrImport import = Read(good + row.text + good);
    EXPECT_EQ(Bad(import), row.bad) << row.text.substr(0, 300);
    EXPECT_EQ(import.calls.size(), row.good) << row.text.substr(0, 300);
    EXPECT_EQ(import.rows, row.good + row.bad.size()) << row.text.substr(0, 300);
  }
  const std::string manyLines = "\"" + std::string(200, '\n') + "\"";
  EXPECT_EQ(Read(With(&Row::lastapp, manyLines).Master()).bad.size(), 2u);
  EXPECT_EQ(Bad(Read(good + "a,\"b\n\n" + good + "\"c")),
            (Strings{"2: a quoted field is not closed", "5: a quoted field is not closed"}));
}

TEST_F(CallRecords, PassOverMarkAndHeaders) {
  const Row header = {"channel", "dstchannel", "disposition", "billsec", "\"Start\"", "src"};
  const std::string last = Row().Master();
  const desk::CdrImport import = Read("\xEF\xBB\xBF" + header.Master() + Row().Custom() +
                                      header.Custom() + last.substr(0, last.size() - 1));
  EXPECT_EQ(import.rows, 2u);
  EXPECT_EQ(import.calls.size(), 2u);
  EXPECT_EQ(Bad(import), Strings{});
  EXPECT_EQ(Calls(Read("\xEF\xBB\xBF" + Row().Custom())), Strings{"2 10 200 'Bo' 0"});
  EXPECT_EQ(Read("").rows, 0u);
}

TEST_F(CallRecords, ReadTimesAsLocal) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  const std::pair<const char*, int> times[] = {
      {"2026-01-15 12:00:00", 1768474800}, {"2026-07-15 12:00:00", 1784109600},
      {"2028-02-29 00:00:00", 1835391600}, {"1970-01-01 00:59:59", -1},
      {"2038-01-19 04:14:07", 2147483647},
  };
  for (const auto& [text, tick] : times) {
    const desk::CdrImport import = Read(With(&Row::start, text).Master());
    ASSERT_EQ(import.calls.size(), 1u) << text;
    EXPECT_EQ(import.calls[0].born_tick, tick) << text;
  }
  // The hour that clocks pass over in spring is no reason to lose a call.
  EXPECT_EQ(Read(With(&Row::start, "2026-03-29 02:30:00").Master()).calls.size(), 1u);
}

TEST_F(CallRecords, ReportTheBytesRead) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += Row().Master() + Row().Custom();
  std::istringstream in(text);
  std::vector<std::uint64_t> done;
  const auto report = [&done](std::uint64_t bytes) { done.push_back(bytes); };
  EXPECT_EQ(desk::ReadCallRecords(in, {"100", "", report}).calls.size(), 2000u);
  ASSERT_GT(done.size(), 2u);
  EXPECT_LT(done.front(), text.size() / 2);
  EXPECT_EQ(done.back(), text.size());
}

}  // namespace
