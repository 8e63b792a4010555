// A PBX's call detail records. Every row is a call's, somebody else's or named as bad; and whatever
// stands before it, a good row at the end is read.
#include <algorithm>
#include <climits>
#include <sstream>

#include "desktop/cdr/CallRecords.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

constexpr char kGoodId[] = "1999999999.77";
constexpr char kGoodRow[] =
    R"("","4411","100","in","""Eve"" <4411>","SIP/4411-a1","SIP/100-b2","Dial","x",)"
    R"("2026-05-04 08:58:12","","2026-05-04 08:58:20",8,0,"NO ANSWER","DOC","1999999999.77","")"
    "\n";

CdrImport Read(const std::string& text) {
  std::istringstream in(text);
  return ReadCallRecords(in, {"100", "pbx.example.org", {}});
}

void CheckCalls(const CdrImport& import) {
  EXPECT_LE(import.calls.size() + import.bad.size() + import.other, import.rows);
  int before = INT_MIN;
  for (const CallLogAddItemData& call : import.calls) {
    EXPECT_TRUE(call.type >= 1 && call.type <= 3);
    EXPECT_GE(call.born_tick, before);
    EXPECT_GE(call.duration, 0);
    for (const std::string& text : {call.remote_sip_name, call.remote_display_name}) {
      EXPECT_EQ(text.find_first_of("\n\r\t\x1B"), std::string::npos) << text;
    }
    before = call.born_tick;
  }
}

void CheckBadRows(const CdrImport& import, std::size_t lines) {
  std::size_t before = 0;
  for (const BadRow& bad : import.bad) {
    EXPECT_GT(bad.line, before);
    EXPECT_LE(bad.line, lines);
    EXPECT_FALSE(bad.reason.empty());
    EXPECT_EQ(bad.reason.find('\n'), std::string::npos);
    before = bad.line;
  }
}

}  // namespace

void FuzzOne(const std::string& input) {
  const CdrImport import = Read(input);
  CheckCalls(import);
  CheckBadRows(import, 1 + static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n')));
  if (input.find(kGoodId) != std::string::npos) return;  // legs of one call
  const CdrImport more = Read(input + "\n" + kGoodRow);
  EXPECT_EQ(more.rows, import.rows + 1);
  EXPECT_EQ(more.bad.size(), import.bad.size());
  EXPECT_EQ(more.other, import.other);
  EXPECT_EQ(more.calls.size(), import.calls.size() + 1);
}

}  // namespace desk
