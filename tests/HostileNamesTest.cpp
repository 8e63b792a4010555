// Callers choose their names, so any bytes arrive. Whatever they are and wherever they stand, every
// call is there after a restart, valid text as it was, and the file is XML.
#include <algorithm>
#include <cstdlib>
#include <random>

#include "PhoneTest.h"
#include "PlainModel.h"

namespace desk {
namespace {

std::string Repeat(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

class HostileNamesTest : public PhoneTest {
 protected:
  // Adds a call with `text` in every place, older than those before it.
  void AddWith(const std::string& text) {
    CallLogAddItemData call = MakeCall(1 + calls_ % 4, text, kNow - calls_);
    call.local_sip_name = call.local_sip_server = call.remote_sip_server = text;
    call.remote_display_name = call.forward_sip_name = call.forward_display_name = text;
    ASSERT_EQ(CallLog_AddLog(call), 0);
    ++calls_;
  }

  void Restart() {
    ASSERT_EQ(Controller().SaveToFile(), 1);
    PowerCycle();
  }

  void ExpectRow(int row, const std::string& text) const {
    const CallLogDetailData detail = Detail(0, row);
    const std::string what = "row " + std::to_string(row);
    EXPECT_TRUE(detail.display_name == text) << what << ": " << detail.display_name.substr(0, 99);
    EXPECT_TRUE(detail.number == text) << what << ": " << detail.number.substr(0, 99);
    EXPECT_TRUE(detail.server == text) << what << ": " << detail.server.substr(0, 99);
  }

  void ExpectXml() const {
    const std::string command = "xmllint --noout '" + HistoryFile().string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }

 private:
  int calls_ = 0;
};

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
  for (const auto& row : rows) {
    AddWith(row.sent);
    PlainCall call;
    const int position = static_cast<int>(expected.size());
    call.type = 1 + position % 4;
    call.born_tick = kNow - position;
    call.duration = 5;
    call.local_sip_name = call.local_sip_server = row.kept;
    call.remote_display_name = call.remote_sip_name = call.remote_sip_server = row.kept;
    expected.push_back(call);
  }
  Restart();
  EXPECT_EQ(ReadFile(HistoryFile()), FileText(expected));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ExpectRow(static_cast<int>(i), expected[i].remote_display_name);
  }
  ExpectXml();
}

TEST_F(HostileNamesTest, FillTheHistoryAndAllComeBack) {
  std::vector<std::string> names;
  for (int byte = 1; byte <= 0xFF; ++byte) names.emplace_back(1, static_cast<char>(byte));
  for (int lead = 0xC0; lead <= 0xFF; ++lead) {
    names.push_back(std::string("\"") + static_cast<char>(lead) + "\x80'\x80\x80&" +
                    static_cast<char>(lead));
  }
  const char* const pieces[] = {"x", "\xC3", "\"", "'\"", "<", "&lt;", "\x01", "\u00E9", "\r\n"};
  for (const char* piece : pieces) names.push_back(Repeat(piece, 65536).substr(0, 65536));
  for (const char* end : {"\xC3", "\xE2\x82", "\xF0\x9F\x98"}) {
    names.push_back(std::string(65536, 'x') + end);
  }
  std::mt19937 random(1);
  while (names.size() < 400) {
    std::string name;
    for (auto i = random() % 40; i > 0; --i) {
      name += static_cast<char>(1 + random() % 0xFF);
    }
    names.push_back(name);
  }
  for (const std::string& name : names) AddWith(name);
  Restart();
  for (int type = 1; type <= 4; ++type) EXPECT_EQ(Names(type).size(), 100u);
  for (int row = 0; row < 400; ++row)
    ExpectRow(row, KeptText(names[static_cast<std::size_t>(row)]));
  ExpectXml();
}

TEST_F(HostileNamesTest, MakeNoFileTooLargeToLoad) {
  const std::string name(65536, '~');
  for (int i = 0; i < 400; ++i) {
    CallLogAddItemData call = MakeCall(1 + i % 4, "10");
    call.remote_display_name = name;
    CallLog_AddLog(call);
  }
  Restart();
  EXPECT_GT(std::filesystem::file_size(HistoryFile()), 26'000'000u);
  const std::vector<std::string> names = Names(0);
  EXPECT_EQ(std::count(names.begin(), names.end(), name), 400);
}

}  // namespace
}  // namespace desk
