// The history file: its bytes, when it is written, what is made of files that somebody else wrote,
// cut or damaged. Names that are hostile in themselves are ModelTest's.
#include <fcntl.h>
#include <sys/stat.h>
#include <tinyxml.h>

#include <chrono>
#include <climits>
#include <functional>
#include <map>

#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

const std::string kHeader = "<?xml version='1.0' encoding='utf-8' ?>\n";

class HistoryFileTest : public PhoneTest {
 protected:
  // Starts the phone with this history file.
  void StartWith(const std::string& bytes) {
    fs::remove_all(HistoryFile());
    WriteFile(HistoryFile(), bytes);
    PowerCycle();
  }

  // Saves the history although nothing changed.
  static void Save() {
    Controller().RemoveAllLogsByClickAction("call_log_99");
    EXPECT_EQ(Controller().SaveToFile(), 1);
  }

  // What the module makes of a file: the file that it writes itself after having read it.
  std::string Rewritten(const std::string& bytes) {
    StartWith(bytes);
    Save();
    return ReadFile(HistoryFile());
  }

  // The next change writes a good file, and the next start finds in it what was there before.
  void ExpectNextSaveIsGood() {
    const int size = Size();
    Add(3, "77");
    EXPECT_EQ(Controller().SaveToFile(), 1);
    PowerCycle();
    EXPECT_EQ(Size(), size + 1);
  }

  Strings TakeSaveEvents() { return TakeJournal({"timer", "trace 3 --Call log: save"}); }
};

// Which changes start the timer, and what is in the file then, is ModelTest's.
TEST_F(HistoryFileTest, IsWrittenOnceFiveSecondsAfterTheFirstChange) {
  const Strings save = {"timer 90010 kill", "trace 3 --Call log: save call log file begin.",
                        "trace 3 --Call log: save call log file end."};
  for (const bool atOnce : {false, false, true}) {
    fs::remove(HistoryFile());
    Add(1, "10");
    platform->Advance(Milliseconds(3000));
    Add(2, "11");
    EXPECT_EQ(TakeSaveEvents(), Strings{"timer 90010 set 5000"});
    platform->Advance(Milliseconds(1999));
    EXPECT_FALSE(fs::exists(HistoryFile()));
    EXPECT_TRUE(!atOnce || Controller().SaveToFile() == 1);
    platform->Advance(Milliseconds(60000));
    EXPECT_TRUE(fs::exists(HistoryFile()));
    EXPECT_EQ(TakeSaveEvents(), save);
  }
  fs::remove(HistoryFile());
  EXPECT_EQ(Controller().SaveToFile(), 0);
  Add(1, "15");
  PowerCycle();
  EXPECT_EQ(Size(), 0) << "nothing saves on the way out";
}

TEST_F(HistoryFileTest, ThatCannotBeWrittenIsTriedAgainWithTheNextChangeOnly) {
  const fs::path away = root.path() / "config/away";
  fs::rename(HistoryFile().parent_path(), away);
  Add(1, "10");
  WaitForSave();
  EXPECT_EQ(Controller().SaveToFile(), 0);
  Add(1, "11");
  EXPECT_EQ(Controller().SaveToFile(), 1);
  fs::rename(away, HistoryFile().parent_path());
  EXPECT_EQ(Controller().SaveToFile(), 0);
  Add(1, "12");
  WaitForSave();
  PowerCycle();
  EXPECT_EQ(Size(), 3);
}

std::string Root(const std::string& items) {
  return "<root_call_log>" + items + "</root_call_log>";
}

std::string Item(const std::string& attributes) { return "<item " + attributes + "/>"; }

// The tags of `count` different attributes.
std::string Attributes(int count) {
  std::string attributes;
  for (int i = 0; i < count; ++i) attributes += " a" + std::to_string(i) + "='1'";
  return attributes;
}

// What the module makes of an item with little in it.
PlainCall Call(const std::string& name, int type = 0, int time = 0, int duration = 0) {
  PlainCall call;
  call.type = type;
  call.born_tick = time;
  call.duration = duration;
  call.remote_display_name = name;
  return call;
}

PlainCall FullCall() {
  PlainCall call = Call("N", 4, -5, 6);
  call.local_sip_name = "a";
  call.local_sip_server = "b";
  call.remote_sip_name = "c";
  call.remote_sip_server = "d";
  return call;
}

std::string Named(const std::string& name, int time = 0) {
  return Item("remote_display_name='" + name + "' born_tick='" + std::to_string(time) + "'");
}

const std::string kOne = Root("<item remote_display_name='A'/>");

const struct {
  std::string file;
  PlainCalls calls;
} kFilesOfOthers[] = {
    {kOne, {Call("A")}},
    {Root(""), {}},
    {Root("<item/>"), {Call("")}},
    {Root("<item remote_sip_server = 'd'\n duration=\"6\" x='7' remote_sip_name\t=\"c\" "
          "local_sip_server='b' forward_sip_name='9' remote_display_name='N' is_new='1' "
          "born_tick='-5' local_sip_name='a' type='4'\r\n/>"),
     {FullCall()}},
    {Root(Named("a", 1) + Named("b", 3) + Named("c", 1) + Named("d", 2)),
     {Call("b", 0, 3), Call("d", 0, 2), Call("a", 0, 1), Call("c", 0, 1)}},
    {"\xEF\xBB\xBF" + kHeader + kOne, {Call("A")}},
    {"<?xml version=\"1.1\" standalone=\"yes\"?>\r\n" + kOne, {Call("A")}},
    {kOne + std::string("\0<x", 3), {Call("A")}},
    {std::string(10000, ' ') + "\xEF\xBB\xBF\n" + kOne, {Call("A")}},
    {"\xEF\xBB\xBF" + std::string(10000, '\n') + "\xFF" + kHeader + kOne, {Call("A")}},
    {"<!DOCTYPE r [ <!ENTITY e '>'> ><x> ]><?x a>b ?><?xml version='1.0?>" + kOne, {Call("A")}},
    {Root("<!x [>]<?x <item> <item/> ?><item remote_display_name=\xC3&#65;<b&/>"),
     {Call("\uFFFD&#65;<b&")}},
    {Root("<call/><item type='1'/><old><item type='2'/></old><Item/><items/>"
          "<item type='3'>text<item type='4'/></item>"),
     {Call("", 1), Call("", 3)}},
    {"<x><y/></x>" + kOne + kOne, {Call("A")}},
    {"<calls><item/></calls>", {}},
    {Root(Repeat("<x>", 63) + Repeat("</x>", 63) + "<item/>"), {Call("")}},
    {Root(Item(Attributes(64))), {Call("")}},
};

TEST_F(HistoryFileTest, WrittenBySomebodyElseGivesTheCallsInIt) {
  for (const auto& [file, calls] : kFilesOfOthers) {
    EXPECT_EQ(Rewritten(file), FileText(calls)) << file;
  }
}

const std::map<int, Strings> kNumbers = {
    {0, {"", " 7", "-", "seven", "7x", "7.5", "0x7", "+-7", "7 ", "\xC3"}},
    {7, {"7", "007", "+7"}},
    {-5, {"-5", "-05"}},
    {INT_MAX, {"2147483647", "2147483648", std::string(4000, '9')}},
    {INT_MIN, {"-2147483648", "-2147483649"}},
};

const std::pair<std::string, std::string> kNames[] = {
    {"&lt;&gt;&amp;&quot;" + Repeat("&apos;", 9999) + "&#65;&#x42;&#xe9;&#x1F600;",
     "<>&\"" + Repeat("'", 9999) + "AB\u00E9\U0001F600"},
    {"&#0;&#1;&#xD800;&#xFFFE;&#99999999999999999999;", Repeat("\uFFFD", 5)},
    {"&foo; & b &#; &#65 &#x &", "&foo; & b &#; &#65 &#x &"},
    {"a<b\n\r\nc\xEF\xBF\xBE\xC3", "a<b\n\r\nc\uFFFD\uFFFD"}};

TEST_F(HistoryFileTest, KeepsNumbersWithinTheirLimitsAndWhatReferencesStandFor) {
  for (const auto& [number, texts] : kNumbers) {
    for (const std::string& text : texts) {
      const std::string item =
          Item("type='" + text + "' born_tick='" + text + "' duration='" + text + "'");
      EXPECT_EQ(Rewritten(Root(item)), FileText({Call("", number, number, number)})) << text;
    }
  }
  for (const auto& [text, name] : kNames) {
    EXPECT_EQ(Rewritten(Root(Named(text))), FileText({Call(name)})) << text;
  }
}

// The names of the calls that TinyXML finds in a document by itself.
PlainCalls CallsByTinyXml(const std::string& bytes) {
  TiXmlDocument document;
  document.Parse(bytes.c_str(), nullptr, TIXML_ENCODING_UTF8);
  TiXmlElement* const root = document.FirstChildElement("root_call_log");
  PlainCalls calls;
  if (document.Error() || root == nullptr) return calls;
  for (const TiXmlElement* item = root->FirstChildElement("item"); item != nullptr;
       item = item->NextSiblingElement("item")) {
    const char* const name = item->Attribute("remote_display_name");
    calls.push_back(Call(name != nullptr ? name : ""));
  }
  return calls;
}

const Strings kParts = List(
    "<?xml version='1.0'>", "<?xml version=\"1>0\">", "<?xml>", "<?xml version='1.0'",
    "<?XML encoding='>'>", "<?xml?>", "<?x>", "<?x y='>'", "<?x", "<?x?>", "<?>", "<!-- > -->",
    "<!-->", "<!--", "<!---->", "<!DOCTYPE r>", "<!DOCTYPE r", "<!DOCTYPE r [>", "<!DOCTYPE ]r>",
    "<!>", "<!x '>'>", "<![CDATA[]]>", "<![CDATA[a]]]]>", "<![CDATA[<x>&#]]>", "<![CDATA[a]>",
    "<![CDATA[", "</x>", "</x", "text", "<x a=1/>", "<x a= 1 b=>'</x>", "<x a=b/c/>", "<x a=1\"/>",
    "<x a=1'>", "<x a=", "<x a=1", "<x a=1 a=2/>", "<x a='1'b=2 c==d/>", "<x a=<y></x>",
    "<x a=2b='1'/>", "<x a=/>", "<item remote_display_name=&amp;&#65;=<\u00E9/>");

// Where each part ends shows in the calls that are read behind it, and in what is refused.
TEST_F(HistoryFileTest, IsReadAsTinyXmlReadsIt) {
  const std::string item = Named("A");
  for (const std::string& part : kParts) {
    for (const std::string& bytes :
         {part + Root(item), part + "<x></x>" + Root(item), Root(part + item), Root(item + part),
          Root(item) + part + "<x", Root(item) + "<x/>" + part + "<?y?>" + Root("")}) {
      EXPECT_EQ(Rewritten(bytes), FileText(CallsByTinyXml(bytes))) << bytes;
    }
  }
}

TEST_F(HistoryFileTest, WithTooManyCallsOfATypeKeepsTheNewest) {
  std::string items;
  PlainCalls kept;
  for (int i = 0; i < 250; ++i) {
    // The one that comes in last stays, however old it is.
    const int type = i % 2 == 0 ? 2 : 77;
    items += Item("type='" + std::to_string(type) + "' born_tick='" + std::to_string(-i) + "'");
    if (i < 198 || i >= 248) kept.push_back(Call("", type, -i));
  }
  EXPECT_EQ(Rewritten(Root(items)), FileText(kept));
  EXPECT_EQ(Names(2).size(), 100u);
  CallLogDetailData detail;  // they are in no view of their own
  EXPECT_EQ(Controller().GetLogDetailByClickAction(&detail, Action(77), 0), 0);
  EXPECT_EQ(Detail(0, 1).type, 77);
}

const std::string kOpen = "<root_call_log><item/>";

const Strings kInnards = List(  // behind a good item
    "</root>", "<a><b></a></b>", "<item>", "<item type='1'", "<item type=1\"/>", "<item type/>",
    "<item type='1/>", "<item type='1' type='2'/>", "<item / type='1'/>", "< type='1'/>",
    "<it<em/>", "<![CDATA[ ]>", Repeat("<x>", 64) + Repeat("</x>", 64),
    "<x" + Attributes(65) + "/>");

const Strings kWholes =
    List("", " \n\t", "call log", "</root_call_log>", kHeader + "<!-- nothing -->\n", kHeader,
         kOpen, "<!-- " + Root("<item/>"), "<?xml version='1.0'?><a v='x\xF0",
         kOpen + "<item\xE2\x82", kOpen + "\xF0\x9F", kOpen + "<item type='&#6",
         kOpen + "<![CDATA[", std::string(10000, ' '), std::string("\xFF\xFE<\0r\0o\0o\0t\0", 12),
         Repeat("<item>", 1000000), std::string(5000, '\n') + "call log" + Root("<item/>"),
         "<root_call_log" + Attributes(65) + "><item/></root_call_log>");

TEST_F(HistoryFileTest, ThatCannotBeLoadedLeavesAnEmptyHistoryAndIsReplaced) {
  Strings files = kWholes;
  for (const std::string& innards : kInnards) files.push_back(kOpen + innards + "</root_call_log>");
  for (const std::string& bytes : files) {
    SCOPED_TRACE(bytes.substr(0, 200));
    StartWith(bytes);
    EXPECT_EQ(Size(), 0);
    EXPECT_EQ(ReadFile(HistoryFile()), bytes) << "only a save changes the file";
    EXPECT_EQ(Rewritten(bytes), kHeader + "<root_call_log/>\n\n");
    ExpectNextSaveIsGood();
  }
}

// What is dropped in front of TinyXML must not join into something else for it: a reference, say,
// that swallows tags as far as the next semicolon.
TEST_F(HistoryFileTest, ThatIsLargeAndOddIsReadWithinSeconds) {
  constexpr int kMany = 100000;
  const std::string tag = "<b x=\"#65;<z" + Attributes(kMany) + "/>\"/><item/>";
  for (const std::string& bytes :
       {Root(Repeat("<a>&<!---->#</a>#65;", kMany) + "<item/>"),
        Root(Repeat("<a>&<?x?>#x</a>41;", kMany) + "<item/>"), Root("&<!---->#" + tag),
        Root("&<![CDATA[#]]>" + tag), Root(Repeat("&#", kMany) + "<item/>"),
        Repeat("<![>", kMany) + Repeat("<?x>", kMany) + Root("<item/>"),
        Root("<item remote_sip_name='" + Repeat("&#x", kMany) + "'/>"),
        "\xEF\xBB\xBF\xFF\n\xC3" + Root("\xC3<it\xFF"
                                        "em \xC3 \uFFFD type\x01='1' \xE2\x82/>\x80")}) {
    SCOPED_TRACE(bytes.substr(0, 100));
    const auto start = std::chrono::steady_clock::now();
    StartWith(bytes);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(Size(), 1);
  }
}

// A call's time ends there, the phone and its file system go on.
TEST_F(HistoryFileTest, OutlivesTheYear2038) {
  const std::time_t now = std::time_t{INT_MAX} + 60;
  platform->manualClock()->SetWall(now);
  for (const int time : {0, INT_MAX - 1, -1, INT_MAX, INT_MIN}) Add(1, std::to_string(time), time);
  EXPECT_EQ(Controller().SaveToFile(), 1);
  const timespec stamps[] = {{now, 0}, {now, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, HistoryFile().c_str(), stamps, 0), 0);
  PowerCycle();

  Strings rows;
  for (const std::string& name : Names(1)) {
    rows.push_back(name + ", " + Detail(1, static_cast<int>(rows.size())).time_text);
  }
  EXPECT_EQ(rows, (Strings{"2147483647, 2038-01-19 03:14:07", "2147483646, 2038-01-19 03:14:06",
                           "0, 1970-01-01 00:00:00", "-1, 1969-12-31 23:59:59",
                           "-2147483648, 1901-12-13 20:45:52"}));
}

TEST_F(HistoryFileTest, ThatIsNoRegularFileGivesAnEmptyHistoryAtOnce) {
  const fs::path file = HistoryFile();
  const std::function<void()> rows[] = {
      [&] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); },
      [&] { fs::create_symlink("/dev/zero", file); },
      [&] { WriteFile(file, "<root_call_log>"), fs::resize_file(file, 3'000'000'000); },
      [&] { WriteFile(file, "<root_call_log>"), fs::resize_file(file, 1'500'000'000); },
  };
  for (const auto& make : rows) {
    SCOPED_TRACE(&make - rows);
    fs::remove_all(file);
    make();
    const auto start = std::chrono::steady_clock::now();
    PowerCycle();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(Size(), 0);
  }
}

TEST_F(HistoryFileTest, CutOrDamagedAnywhereIsWholeOrEmptyAndSavedAgain) {
  PlainCalls calls;
  for (const char* name : {"Zo\u00EB", "a\"b'", "<&>", "", "\U0001F600", "Bo"}) {
    const int position = static_cast<int>(calls.size());
    calls.push_back(Call(name, 1 + position % 4, 1000 - position, position));
    calls.back().remote_sip_name = std::to_string(position);
  }
  const std::string good = FileText(calls);
  EXPECT_EQ(Rewritten(good), good);
  const std::size_t end = good.find_last_of('>') + 1;
  int tried = 0;
  for (std::size_t position = 0; position < good.size(); ++position) {
    StartWith(good.substr(0, position));
    EXPECT_EQ(Size(), position < end ? 0 : 6);
    if (position % 16 == 0) ExpectNextSaveIsGood();
    for (const char damage : std::string("\0<>\"'/& a\x80\xC3\xF0", 12)) {
      std::string bytes = good;
      bytes[position] = damage;
      StartWith(bytes);
      EXPECT_LE(Size(), 6);
      if (tried++ % 16 == 0) ExpectNextSaveIsGood();
      ASSERT_FALSE(HasFailure()) << position << " " << static_cast<int>(damage);
    }
  }
}

}  // namespace
}  // namespace desk
