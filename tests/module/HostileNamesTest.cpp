// Callers choose their names, so any bytes arrive. Whatever they are and wherever they stand, every
// call is there after a restart, valid text as it was, and the file is XML.
#include <cstdlib>

#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"

namespace desk {
namespace {

class HostileNamesTest : public PhoneTest {};

TEST_F(HostileNamesTest, LoseOnlyWhatXmlForbids) {
  const std::string r = "\uFFFD";
  const struct {
    std::string sent;
    std::string kept;
  } rows[] = {
      {"\"" + Repeat("'", 3000), "\"" + Repeat("'", 3000)},  // nothing takes more room in the file
      {"Zo\u00EB \u4E2D\u6587 \U0001F600", "Zo\u00EB \u4E2D\u6587 \U0001F600"},
      {"  \t a\r\nb \n", "  \t a\r\nb \n"},
      {"\"'<>&&amp;&#65;&#x;&lt", "\"'<>&&amp;&#65;&#x;&lt"},
      {"]]><!--?></root_call_log>", "]]><!--?></root_call_log>"},
      {"%s%n%d", "%s%n%d"},
      {"\x7F\xC2\x80\xC2\x9F", "\x7F\xC2\x80\xC2\x9F"},
      {"\xEF\xBB\xBF"
       "a\xEF\xBB\xBF",
       "\xEF\xBB\xBF"
       "a\xEF\xBB\xBF"},
      {"\xDF\xBF\xE0\xA0\x80", "\xDF\xBF\xE0\xA0\x80"},
      {"\xED\x9F\xBF\xEE\x80\x80", "\xED\x9F\xBF\xEE\x80\x80"},
      {"\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
       "\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
      {std::string("a\0b", 3), "a"},
      {"\x01\x08\x0B\x0C\x0E\x1F", Repeat(r, 6)},
      {"\xEF\xBF\xBE"
       "a\xEF\xBF\xBF",
       r + "a" + r},
      {"a\xC3", "a" + r},
      {"\xC3\"", r + "\""},
      {"\xC3<\xE2<\xF0<", r + "<" + r + "<" + r + "<"},
      {"\xE2\x82", r + r},
      {"\xE2\x82"
       "a",
       r + r + "a"},
      {"\xF0\x9F\x98", r + r + r},
      {"\xF0\x9F\x98\xC3\xA9", r + r + r + "\u00E9"},
      {"\x80\xBF", r + r},
      {"\xC0\xAF\xC1\xBF", Repeat(r, 4)},
      {"\xE0\x80\xAF\xE0\x9F\xBF", Repeat(r, 6)},
      {"\xF0\x80\x80\xAF\xF0\x8F\xBF\xBF", Repeat(r, 8)},
      {"\xED\xA0\x80\xED\xBF\xBF", Repeat(r, 6)},
      {"\xF4\x90\x80\x80\xF5\x80\x80\x80", Repeat(r, 8)},
      {"\xF8\x88\x80\x80\x80\xFE\xFF", Repeat(r, 7)},
      {"\xC3\xA9\xA9", "\u00E9" + r},
  };
  PlainCalls expected;
  for (const auto& [sent, kept] : rows) {
    const int position = static_cast<int>(expected.size());
    CallLogAddItemData call = MakeCall(1 + position % 4, sent, kNow - position);
    call.local_sip_name = call.local_sip_server = call.remote_sip_server = sent;
    call.remote_display_name = call.forward_sip_name = call.forward_display_name = sent;
    ASSERT_EQ(CallLog_AddLog(call), 0);
    PlainCall& left = expected.emplace_back(PlainCall{call});
    left.local_sip_name = left.local_sip_server = kept;
    left.remote_display_name = left.remote_sip_name = left.remote_sip_server = kept;
  }
  for (int start = 0; start < 2; ++start) {  // the second writes what the first has read
    Controller().RemoveAllLogsByClickAction(Action(99));
    ASSERT_EQ(Controller().SaveToFile(), 1);
    EXPECT_EQ(ReadFile(HistoryFile()), FileText(expected));
    PowerCycle();
  }
  const std::string command = "xmllint --noout '" + HistoryFile().string() + "'";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
}  // namespace desk
