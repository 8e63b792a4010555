// A PBX's call detail records. Every row is a call's, somebody else's or named as bad; and whatever
// stands before it, a good row at the end is read.
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

}  // namespace

void FuzzOne(const std::string& input) {
  const CdrImport import = Read(input);
  EXPECT_LE(import.calls.size() + import.bad.size() + import.other, import.rows);
  if (input.find(kGoodId) != std::string::npos) return;  // legs of one call
  const CdrImport more = Read(input + "\n" + kGoodRow);
  EXPECT_EQ(more.rows, import.rows + 1);
  EXPECT_EQ(more.bad.size(), import.bad.size());
  EXPECT_EQ(more.other, import.other);
  EXPECT_EQ(more.calls.size(), import.calls.size() + 1);
}

}  // namespace desk
