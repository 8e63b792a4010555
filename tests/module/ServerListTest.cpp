// Lists of server call logs: what becomes of a document, of a failure and of a change of mind, and
// how a list is read.
#include <functional>

#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using namespace NS_CALLLOG;
namespace fs = std::filesystem;

class ServerListTest : public ServerTest {
 protected:
  // Every entry of the list asked for last as "NAME|NUMBER|COUNTRY|TIME".
  static Strings Entries() {
    Strings entries;
    CallLogDetailData detail;
    for (int i = 0; Logs().GetLogDetailByIndex(&detail, i); ++i) {
      entries.push_back(detail.display_name + "|" + detail.number + "|" + detail.country_code +
                        "|" + detail.time_text);
    }
    return entries;
  }

  struct Harm {
    const char* what;
    std::function<void(ServerListTest*)> act;
    Strings readable = kTwo;  // as before
    int answer = BS_LIST_DOWNLOADING;
    const char* lParam = "1 ";  // empty: no message
    int next = BS_LIST_DOWNLOADING;
  };
  static const Harm kHarms[];
  static const std::pair<std::string, Strings> kDocuments[];
  static inline const Strings kTwo = {"1", "2"};

  static std::function<void(ServerListTest*)> Serving(const std::string& document) {
    return [document](ServerListTest* test) { test->Serve("Missed", document); };
  }
  fs::path Local() const { return root.path() / "tmp/BroadSoftCallLog.xml"; }
  // A transfer that the server holds back, under another URL than the next one.
  void AskSlowly(bool succeeds) {
    fs::remove(documents() / "Slow");
    if (succeeds) Serve("Slow", Document(Entry("slow")));
    server.Misbehave("/Missed", {Kind::kRedirect, 0, "/Slow"});
    server.Misbehave("/Slow", {Kind::kHold, 0, {}});
    const int before = server.Requests("/Slow");
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(server.WaitForRequests("/Slow", before + 1));
    server.Misbehave("/Missed", {});
  }
  // All is well again, and another list is there.
  void Mend() {
    server.Misbehave("/Missed", {});
    platform->networkUp = true;
    fs::create_directories(Local().parent_path());
    fs::remove_all(Local());
    Serve("Missed", Document(Entry("3")));
  }
};

TEST_F(ServerListTest, FetchesTwoAtOnceTheSlowerOneFirst) {
  Offer(0, "Slow", Document(Entry("1") + Entry("2")));
  Offer(1, "Fast", Document(Entry("fast")));
  for (const bool again : {false, true}) {
    server.Misbehave("/Slow", {Kind::kStall, 0, {}});
    EXPECT_EQ(Ask(0, "", again), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(server.WaitForRequests("/Slow", again ? 2 : 1));
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(Numbers().empty());
    EXPECT_EQ(Ask(1), BS_LIST_DOWNLOADING);
    EXPECT_EQ(Settle(1), Strings{"0 " + Url("/Fast")});
    server.Misbehave("/Slow", {});
    EXPECT_EQ(Settle(), Strings{"0 " + Url("/Slow")});
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    EXPECT_EQ(page.total, 2);
    EXPECT_EQ(Numbers(), (Strings{"1", "2"}));
    EXPECT_EQ(Ask(1), BS_LIST_OK);
    EXPECT_EQ(Numbers(), Strings{"fast"});
    EXPECT_EQ(server.Requests("/Slow"), again ? 2 : 1);
  }
}

// Why transfers fail is TransferTest's.
const ServerListTest::Harm ServerListTest::kHarms[] = {
    {"cut connection",
     [](auto* t) {
       t->server.Misbehave("/Missed", {Kind::kCut, 0, {}});
     }},
    {"local file in the way",
     [](auto* t) { fs::remove(t->Local()), fs::create_directories(t->Local() / "x"); }},
    {"no temporary directory", [](auto* t) { fs::remove_all(t->Local().parent_path()); }},
    {"empty", Serving("")},
    {"nested", Serving(Repeat("<a>", 1000) + Repeat("</a>", 1000))},
    {"no XML", Serving("Please sign in.")},
    {"cut document", Serving("<Missed>" + Entry("3"))},
    {"open CDATA", Serving("<![CDATA[" + Document(Entry("3")))},
    {"no root", Serving("<?xml version='1.0'?>\n<!-- nothing -->"), {}},
    {"another root", Serving("<html/>"), {}, BS_LIST_DOWNLOADING, "0 ", BS_LIST_OK},
    {"no network", [](auto* t) { t->platform->networkUp = false; }, kTwo, BS_LIST_NO_NETWORK, ""}};

TEST_F(ServerListTest, AFailureLeavesTheListThatWasThere) {
  for (const Harm& harm : kHarms) {
    SCOPED_TRACE(harm.what);
    Boot({});
    Offer(0, "Missed", Document(Entry("1") + Entry("2")));
    EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Missed")});
    EXPECT_TRUE(Logs().CancelDownload());
    harm.act(this);
    EXPECT_EQ(Ask(0), harm.answer);
    EXPECT_EQ(Settle(), *harm.lParam != '\0' ? Strings{harm.lParam + Url("/Missed")} : Strings{});
    EXPECT_EQ(Numbers(), harm.readable);
    Mend();
    EXPECT_EQ(Ask(0), harm.next);
    Settle();
    EXPECT_EQ(Numbers(), harm.next == BS_LIST_OK ? harm.readable : Strings{"3"});
  }
}

TEST_F(ServerListTest, ASourceMakesItsUrl) {
  Serve("p", Document(""));
  const std::string port = std::to_string(server.port());
  const std::string here = "127.0.0.1:" + port;
  const std::pair<BroadSoftConfigItem, Strings> kRows[] = {
      {MakeSource(here + "/p", "", kUser, kPassword), {"0 " + Url("/p")}},
      {MakeSource("HTTP://127.0.0.1/p?a=/://b", port, "u", "w:@"),
       {"1 HTTP://u:w:@@" + here + "/p?a=/://b"}},
      {MakeSource("127.0.0.1", port, "", "secret"), {"1 http://" + here}},
      {MakeSource("https://127.0.0.1/p", port, "u", ""), {"1 https://u:@" + here + "/p"}},
      {MakeSource("file:///etc/passwd", "", "", ""), {}},  // the transfer cannot be created
      {MakeSource("://", "", "", ""), {}},
      {MakeSource("127.0.0.1/p", "x", "", ""), {}},
  };
  for (const auto& [source, told] : kRows) {
    SCOPED_TRACE(source.server);
    Logs().SetConfigDataByIndex(3, source);
    for (const bool again : {false, true}) {  // a list that could not be started is ready to be
      EXPECT_EQ(Ask(3, "", !again), told.empty() ? BS_LIST_FAILED : BS_LIST_DOWNLOADING);
    }
    EXPECT_EQ(Settle(), told);
  }
}

TEST_F(ServerListTest, AQueryIsAListOfItsOwn) {
  Offer(0, "Missed", Document(Entry("1")));
  for (const char* query : {"", "Anna M", "?name=Bob&x=\u00E9"}) {
    const std::string sent = *query == 'A' ? "?name=Anna M" : query;
    EXPECT_EQ(Fetch(0, query), Strings{"0 " + Url("/Missed") + sent});
    EXPECT_EQ(Ask(0, sent), BS_LIST_OK);
  }
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  EXPECT_EQ(server.Requests("/Missed"), 3);
  EXPECT_EQ(Fetch(0, "?x").at(0).substr(2), Url("/Missed") + "?name=?x");
}

enum Mind { kCancels, kCancelsAndAsks, kRefreshes, kRefreshesNothing };

const struct {
  const char* what;
  Mind mind;
  bool slowOneFails;
  const char* told;  // lParams, in order
  int next;          // answer to the next request
} kMinds[] = {
    {"cancel", kCancels, false, "", BS_LIST_DOWNLOADING},
    {"cancel; it fails", kCancels, true, "", BS_LIST_DOWNLOADING},
    {"cancel, ask", kCancelsAndAsks, false, "0", BS_LIST_OK},
    {"cancel, ask; it fails", kCancelsAndAsks, true, "01", BS_LIST_DOWNLOADING},
    {"refresh", kRefreshes, false, "0", BS_LIST_OK},
    {"refresh; it fails", kRefreshes, true, "01", BS_LIST_DOWNLOADING},
    {"refresh of nothing; it fails", kRefreshesNothing, true, "", BS_LIST_DOWNLOADING},
};

TEST_F(ServerListTest, ACancelledOrRefreshedListTakesNoOlderDocument) {
  Serve("Missed", Document(Entry("new")));
  for (const auto& row : kMinds) {
    SCOPED_TRACE(row.what);
    Boot({});
    SetSource(0, "/Missed");
    AskSlowly(!row.slowOneFails);
    if (row.mind == kCancels || row.mind == kCancelsAndAsks) Logs().CancelDownload();
    const bool asks = row.mind == kCancelsAndAsks || row.mind == kRefreshes;
    if (asks) Ask(0, "", row.mind == kRefreshes);
    if (row.mind == kRefreshesNothing) Ask(99, "", true);
    Strings told = Settle(1);
    server.Misbehave("/Slow", {});
    told = told + Settle();
    Strings expected;
    for (const char lParam : std::string(row.told))
      expected.push_back(lParam + (" " + Url("/Missed")));
    EXPECT_EQ(told, expected);
    EXPECT_EQ(Numbers(), asks ? Strings{"new"} : Strings{});
    EXPECT_EQ(Ask(0), row.next);
    Settle();
  }
}

TEST_F(ServerListTest, TheEndOfTheControllerEndsItsTransfers) {
  Offer(0, "Missed", Document(Entry("1")));
  for (const bool ended : {false, true}) {
    if (!ended) server.Misbehave("/Missed", {Kind::kStall, 0, {}});
    const int before = server.Requests("/Missed");
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(server.WaitForRequests("/Missed", before + 1));
    EXPECT_EQ(platform->loop.WaitForPost(std::chrono::seconds(ended ? 20 : 0)), ended);
    CBSCallLogController::ReleaseInstance();
    EXPECT_EQ(platform->transfers.Running(), 0u);
    server.Misbehave("/Missed", {});
    platform->RunDue();
    EXPECT_TRUE(Numbers().empty());
    EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Missed")});
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    CBSCallLogController::ReleaseInstance();
  }
}

std::string Named(const std::string& name) {
  return "<callLogsEntry><name>" + name + "</name></callLogsEntry>";
}
const std::string kBad = "\uFFFD";

const std::pair<std::string, Strings> ServerListTest::kDocuments[] = {
    {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a --><Placed xmlns=\"http://h/\">"
     "<callLogsEntry a='1'><countryCode>49</countryCode><phoneNumber>+49 (0)30/1</phoneNumber>"
     "<name>Anna</name><time>2015-03-07T09:05:03.120-05:00</time></callLogsEntry></Placed>",
     {"Anna|+49 (0)30/1|49|03-07-2015 09:05:03"}},
    {"\xEF\xBB\xBF<received>" + Entry("1") +
         "<callLogsEntry/><callLogsEntry><name/>"
         "<countryCode></countryCode></callLogsEntry></received>",
     {"|1||", "|||", "|||"}},
    {Document(Named("<!-- a -->An<!-- b -->na") + Named("<![CDATA[A & <B>]]>") +
              Named("A &amp; &#x42;&quot; &#0;&x;")),
     {"Anna|||", "A & <B>|||", "A & B\" " + kBad + "&x;|||"}},
    // Blanks are condensed in text, and stay in CDATA.
    {"<?xml version='1.0'><a>" + Entry(" 1  \n 2 ") + Entry("<![CDATA[ 12  3\n]]>") +
         Entry(" a  b <![CDATA[ ]] &lt;\xC3\x01]]]> <c/> d ") + "</a>",
     {"|1 2||", "| 12  3\n||", "|a b  ]] &lt;" + kBad + kBad + "]d||"}},
    // Only direct children, and the first of each.
    {Document("<a>" + Entry("1") + "</a><callLogsEntry><a><name>no</name></a>" + Entry("no") +
              "<phoneNumber>2</phoneNumber><phoneNumber>no</phoneNumber></callLogsEntry>"
              "<callLogsentry/><callLogsEntry2/>"),
     {"|2||"}},
    {"<Missed/>", {}},
    {"<?xml version='1.0' encoding='iso-8859-1'?><a>" + Named("\xA0Ren\xE9\x80") + "</a>",
     {"\u00A0Ren\u00E9\u20AC|||"}},
    {"<?XML encoding=\"Latin1\"><a>" + Named("\x93\xE9\x90\x94 \u00E9") + "</a>",
     {"\u201C\u00E9" + kBad + "\u201D \u00C3\u00A9|||"}},
    {"<?xml version='1.0' encoding='ISO-8859-1'?><a>" + Named("Ren\u00E9 \u20AC\x01\uFFFF") +
         "</a>" + std::string(9, '\0'),
     {"Ren\u00E9 \u20AC" + kBad + kBad + "|||"}},
    {"<?xml version='1.0' encoding=\"windows-1252\"?><a>" + Named("\x80\xE9\x81\x9F") + "</a>",
     {"\u20AC\u00E9" + kBad + "\u0178|||"}},
    {Document(Named("\xE9") + Named("\xF0\x9F\x98") + Named("Zo\u00EB") + Named("\xC3\"") +
              Named("\xED\xA0\x80") + Named(std::string("a\0b\x01", 4))),
     {kBad + "|||", kBad + kBad + kBad + "|||", "Zo\u00EB|||", kBad + "\"|||",
      kBad + kBad + kBad + "|||", "a" + kBad + "b" + kBad + "|||"}},
    {"\xFF" + Document("\xE9<callLogsEntry\x80>\xC3<name \xFF>A</name>\xF0</callLogsEntry>\xE2"),
     {"A|||"}},
};

TEST_F(ServerListTest, ReadsDocumentsOfAllKinds) {
  SetSource(0, "/Missed");
  platform->config["BSCallLogAddCountryCode"] = 1;
  for (const auto& [document, entries] : kDocuments) {
    SCOPED_TRACE(document);
    Serve("Missed", document);
    EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
    EXPECT_EQ(Settle(), Strings{"0 " + Url("/Missed")});
    EXPECT_EQ(Entries(), entries);
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    EXPECT_EQ(page.total, static_cast<int>(entries.size()));
  }
}

const std::pair<std::string, std::string> kStamps[] = {
    {"2015-03-07T09:05:03.000+08:00", "03-07-2015 09:05:03"},
    {"2015-3-7T9:5:3", "03-07-2015 09:05:03"},
    {"2015-12-31 23:59:59", "12-31-2015 00:00:00"},
    {"2015- 3-+7T09", "03-07-2015 09:00:00"},
    {"", "00-00-0000 00:00:00"},
    {"-+1-2-3", "00-00-0000 00:00:00"},
    {"-5--3-7T-1:0:0", "-03-07--0005 -01:00:00"},
    {"1-99999999999-" + std::string(10000, '9') + "T-" + std::string(10000, '9') + ":1:1",
     "2147483647-2147483647-0001 -2147483648:01:01"},
};

TEST_F(ServerListTest, ReadsTimeStamps) {
  std::string entries;
  Strings expected;
  for (const auto& [stamp, shown] : kStamps) {
    entries += "<callLogsEntry><time>" + stamp + "</time></callLogsEntry>";
    expected.push_back("|||" + shown);
  }
  Offer(0, "Missed", Document(entries));
  Fetch(0);
  EXPECT_EQ(Entries(), expected);
}

TEST_F(ServerListTest, APageKeepsItsRowsAndGetsThoseAskedFor) {
  Offer(0, "Missed", Document(Entry("1") + Entry("2") + Entry("3")));
  Fetch(0);
  const auto ask = [this](int first, int count) {
    page.Reset();
    page.request_index = first;
    page.request_count = count;
    page.items.emplace_back();
    const int answer = Logs().GetLogListByClickAction(&page, "broadsoft_calllog_0", "", false);
    std::string text = std::to_string(answer) + ", " + std::to_string(page.total) + ":";
    for (const CallLogSimpleData& item : page.items) text += item.display_name + " ";
    return text;
  };
  const std::string shown = std::to_string(BS_LIST_OK) + ", 3: ";
  const std::string refused = std::to_string(BS_LIST_INVALID) + ", 0: ";
  EXPECT_EQ(ask(0, 2) + ask(1, INT_MAX) + ask(3, 1), shown + "1 2 " + shown + "2 3 " + shown);
  EXPECT_EQ(ask(0, 0) + ask(-1, 2), refused + refused);
  CallLogDetailData detail;
  for (const int index : {-1, 3, INT_MAX, INT_MIN}) {
    EXPECT_FALSE(Logs().GetLogDetailByIndex(&detail, index));
    EXPECT_FALSE(Logs().AddToLocalDir(index) || Logs().AddToLocalBlackDir(index));
  }
  EXPECT_FALSE(Logs().GetLogDetailByIndex(nullptr, 0));
}

TEST_F(ServerListTest, TheListAskedForLastIsTheCurrentOne) {
  EXPECT_FALSE(Logs().CancelDownload());
  Offer(0, "Missed", Document(Entry("1")));
  Offer(1, "Placed", Document(Entry("2")));
  Fetch(0);
  // Requests that name no list change nothing; the last is for a source without a server.
  for (const char* action : {"", "broadsoft_calllog_6", "broadsoft_calllog_-1",
                             "OpenSubPage(call_log_0)", "broadsoft_calllog_2"}) {
    EXPECT_EQ(Logs().GetLogListByClickAction(&page, action, "q", *action == '\0'),
              *action == '\0' ? BS_LIST_INVALID : BS_LIST_NOT_CONFIGURED);
    EXPECT_EQ(Logs().GetLogListByClickAction(nullptr, action, "q", true), BS_LIST_INVALID);
    EXPECT_EQ(Numbers(), Strings{"1"});
  }
  platform->networkUp = false;
  EXPECT_EQ(Ask(1), BS_LIST_NO_NETWORK);
  EXPECT_TRUE(Numbers().empty());
  EXPECT_FALSE(Logs().CancelDownload());
  EXPECT_EQ(Ask(0), BS_LIST_NO_NETWORK);
  EXPECT_EQ(Numbers(), Strings{"1"});
}

TEST_F(ServerListTest, AListStaysWithItsUrlUntilItIsCancelled) {
  Offer(0, "Missed", Document(Entry("1")));
  Offer(1, "Placed", Document(Entry("2")));
  Fetch(0);

  SetSource(0, "/Placed");
  EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Placed")});
  SetSource(0, "/Missed");
  EXPECT_TRUE(Logs().ReloadBSCallLogConfig());
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  EXPECT_EQ(Ask(1), BS_LIST_OK);
  EXPECT_EQ(server.Requests("/Missed") + server.Requests("/Placed"), 2);

  // Cancelled, it can be read until the next document is there.
  EXPECT_TRUE(Logs().CancelDownload());
  EXPECT_EQ(Numbers(), Strings{"2"});
  Serve("Placed", Document(Entry("3")));
  EXPECT_EQ(Fetch(1), Strings{"0 " + Url("/Placed")});
  EXPECT_EQ(Numbers(), Strings{"3"});
}

}  // namespace
}  // namespace desk
