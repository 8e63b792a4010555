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
};

TEST_F(ServerListTest, FetchesTwoAtOnceTheSlowerOneFirst) {
  Serve("Slow", Document(Entry("1") + Entry("2")));
  Serve("Fast", Document(Entry("fast")));
  SetSource(0, "/Slow");
  SetSource(1, "/Fast");
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

TEST_F(ServerListTest, AFailureLeavesTheListThatWasThere) {
  std::string nested;
  for (int i = 0; i < 1000; ++i) nested = "<a>" + nested + "</a>";
  std::string attributes;
  for (int i = 0; i < 100; ++i) attributes += " a" + std::to_string(i) + "=''";
  const fs::path local = root.path() / "tmp/BroadSoftCallLog.xml";
  const auto misbehave = [this](const Behaviour& how) {
    return [=] { server.Misbehave("/Missed", how); };
  };
  const auto serve = [this](const std::string& document) {
    return [=] { Serve("Missed", document); };
  };
  const struct {
    const char* what;
    std::function<void()> harm;
    Strings readable = {"1", "2"};  // as before
    int answer = BS_LIST_DOWNLOADING;
    const char* lParam = "1 ";  // empty: no message
    bool fetchedAgain = true;
  } kRows[] = {
      {"wrong password", misbehave({Kind::kStatus, 401, {}})},
      {"no document", [&] { fs::remove(documents() / "Missed"); }},
      {"cut connection", misbehave({Kind::kCut, 0, {}})},
      {"stalled", misbehave({Kind::kStall, 0, {}})},
      {"too long", serve(Document(std::string(20000, ' ')))},
      {"endless", misbehave({Kind::kEndless, 0, {}})},
      {"one tag with many attributes", serve("<a" + attributes + "/>")},
      {"endless redirect", misbehave({Kind::kRedirect, 0, "/Missed"})},
      {"local file in the way", [&] { fs::remove(local), fs::create_directories(local / "x"); }},
      {"no temporary directory", [&] { fs::remove_all(local.parent_path()); }},
      {"empty", serve("")},
      {"nested", serve(nested)},
      {"no XML", serve("Please sign in.")},
      {"cut document", serve("<Missed>" + Entry("3"))},
      {"open CDATA", serve("<![CDATA[" + Document(Entry("3")))},
      {"no root", serve("<?xml version='1.0'?>\n<!-- nothing -->"), {}},
      {"HTML page", misbehave({Kind::kPage, 0, {}}), {}, BS_LIST_DOWNLOADING, "0 ", false},
      {"no network", [&] { platform->networkUp = false; }, {"1", "2"}, BS_LIST_NO_NETWORK, ""},
  };
  TransferLimits limits;
  limits.max_bytes = 10000;
  limits.idle_seconds = 2;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Boot(limits);
    Serve("Missed", Document(Entry("1") + Entry("2")));
    SetSource(0, "/Missed");
    EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Missed")});
    EXPECT_TRUE(Logs().CancelDownload());
    row.harm();
    EXPECT_EQ(Ask(0), row.answer);
    EXPECT_EQ(Settle(), *row.lParam != '\0' ? Strings{row.lParam + Url("/Missed")} : Strings{});
    EXPECT_EQ(Numbers(), row.readable);

    server.Misbehave("/Missed", {});
    platform->networkUp = true;
    fs::create_directories(local.parent_path());
    fs::remove_all(local);
    Serve("Missed", Document(Entry("3")));
    const int before = server.Requests("/Missed");
    EXPECT_EQ(Ask(0), row.fetchedAgain ? BS_LIST_DOWNLOADING : BS_LIST_OK);
    EXPECT_EQ(Settle().size(), row.fetchedAgain ? 1u : 0u);
    EXPECT_EQ(server.Requests("/Missed") - before, row.fetchedAgain ? 1 : 0);
    EXPECT_EQ(Numbers(), row.fetchedAgain ? Strings{"3"} : row.readable);
  }
}

TEST_F(ServerListTest, ASourceMakesItsUrl) {
  Serve("p", Document(""));
  const std::string port = std::to_string(server.port());
  const std::string here = "127.0.0.1:" + port;
  const struct {
    BroadSoftConfigItem source;
    const char* told = "";  // lParam, empty: the transfer cannot be created
    std::string url = "";
  } kRows[] = {
      {MakeSource(here + "/p", "", kUser, kPassword), "0 ", Url("/p")},
      {MakeSource("HTTP://127.0.0.1/p?a=/://b", port, "u", "w:@"), "1 ",
       "HTTP://u:w:@@" + here + "/p?a=/://b"},
      {MakeSource("127.0.0.1", port, "", "secret"), "1 ", "http://" + here},
      {MakeSource("https://127.0.0.1/p", port, "u", ""), "1 ", "https://u:@" + here + "/p"},
      {MakeSource("file:///etc/passwd", "", "", "")},
      {MakeSource("://", "", "", "")},
      {MakeSource("127.0.0.1/p", "x", "", "")},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.source.server);
    Logs().SetConfigDataByIndex(3, row.source);
    const bool created = *row.told != '\0';
    for (const bool again : {false, true}) {  // a list that could not be started is ready to be
      EXPECT_EQ(Ask(3, "", !again), created ? BS_LIST_DOWNLOADING : BS_LIST_FAILED);
    }
    EXPECT_EQ(Settle(), created ? Strings{row.told + row.url} : Strings{});
  }
}

TEST_F(ServerListTest, AQueryIsAListOfItsOwn) {
  Serve("Missed", Document(Entry("1")));
  SetSource(0, "/Missed");
  for (const char* query : {"", "Anna M", "?name=Bob&x=\u00E9"}) {
    const std::string sent = *query == 'A' ? "?name=Anna M" : query;
    EXPECT_EQ(Fetch(0, query), Strings{"0 " + Url("/Missed") + sent});
    EXPECT_EQ(Ask(0, sent), BS_LIST_OK);
  }
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  EXPECT_EQ(server.Requests("/Missed"), 3);
}

// Both transfers are of one URL: the first is sent to "/Slow" and held there.
TEST_F(ServerListTest, ACancelledOrRefreshedListTakesNoOlderDocument) {
  Serve("Missed", Document(Entry("new")));
  enum Mind { kCancels, kCancelsAndAsks, kRefreshes, kRefreshesNothing };
  const struct {
    const char* what;
    Mind mind;
    bool slowOneFails;
    Strings told;  // lParams, in order
    int next;      // answer to the next request
  } kRows[] = {
      {"cancel", kCancels, false, {}, BS_LIST_DOWNLOADING},
      {"cancel; it fails", kCancels, true, {}, BS_LIST_DOWNLOADING},
      {"cancel, ask", kCancelsAndAsks, false, {"0 "}, BS_LIST_OK},
      {"cancel, ask; it fails", kCancelsAndAsks, true, {"0 ", "1 "}, BS_LIST_DOWNLOADING},
      {"refresh", kRefreshes, false, {"0 "}, BS_LIST_OK},
      {"refresh; it fails", kRefreshes, true, {"0 ", "1 "}, BS_LIST_DOWNLOADING},
      {"refresh of nothing; it fails", kRefreshesNothing, true, {}, BS_LIST_DOWNLOADING},
  };
  int before = 0;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Boot({});
    SetSource(0, "/Missed");
    fs::remove(documents() / "Slow");
    if (!row.slowOneFails) Serve("Slow", Document(Entry("slow")));
    server.Misbehave("/Missed", {Kind::kRedirect, 0, "/Slow"});
    server.Misbehave("/Slow", {Kind::kHold, 0, {}});
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(server.WaitForRequests("/Slow", ++before));
    server.Misbehave("/Missed", {});
    if (row.mind == kCancels || row.mind == kCancelsAndAsks) Logs().CancelDownload();
    const bool asks = row.mind == kCancelsAndAsks || row.mind == kRefreshes;
    if (asks) Ask(0, "", row.mind == kRefreshes);
    if (row.mind == kRefreshesNothing) Ask(99, "", true);
    Strings told = Settle(1);
    server.Misbehave("/Slow", {});
    for (const std::string& more : Settle()) told.push_back(more);
    Strings expected = row.told;
    for (std::string& lParam : expected) lParam += Url("/Missed");
    EXPECT_EQ(told, expected);
    EXPECT_EQ(Numbers(), asks ? Strings{"new"} : Strings{});
    EXPECT_EQ(Ask(0), row.next);
    Settle();
  }
}

TEST_F(ServerListTest, TheEndOfTheControllerEndsItsTransfers) {
  Serve("Missed", Document(Entry("1")));
  SetSource(0, "/Missed");
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

TEST_F(ServerListTest, ReadsDocumentsOfAllKinds) {
  const std::string r = "\uFFFD";
  const auto named = [](const std::string& name) {
    return "<callLogsEntry><name>" + name + "</name></callLogsEntry>";
  };
  const std::pair<std::string, Strings> kRows[] = {
      {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a --><Placed xmlns=\"http://h/\">"
       "<callLogsEntry a='1'><countryCode>49</countryCode><phoneNumber>+49 (0)30/1</phoneNumber>"
       "<name>Anna</name><time>2015-03-07T09:05:03.120-05:00</time></callLogsEntry></Placed>",
       {"Anna|+49 (0)30/1|49|03-07-2015 09:05:03"}},
      {"\xEF\xBB\xBF<received>" + Entry("1") +
           "<callLogsEntry/><callLogsEntry><name/>"
           "<countryCode></countryCode></callLogsEntry></received>",
       {"|1||", "|||", "|||"}},
      {Document(named("<!-- a -->An<!-- b -->na") + named("<![CDATA[A & <B>]]>") +
                named("A &amp; &#x42;&quot; &#0;&x;")),
       {"Anna|||", "A & <B>|||", "A & B\" " + r + "&x;|||"}},
      // Blanks are condensed in text, and stay in CDATA.
      {"<?xml version='1.0'><a>" + Entry(" 1  \n 2 ") + Entry("<![CDATA[ 12  3\n]]>") +
           Entry(" a  b <![CDATA[ ]] &lt;\xC3\x01]]]> <c/> d ") + "</a>",
       {"|1 2||", "| 12  3\n||", "|a b  ]] &lt;" + r + r + "]d||"}},
      // Only direct children, and the first of each.
      {Document("<a>" + Entry("1") + "</a><callLogsEntry><a><name>no</name></a>" + Entry("no") +
                "<phoneNumber>2</phoneNumber><phoneNumber>no</phoneNumber></callLogsEntry>"
                "<callLogsentry/><callLogsEntry2/>"),
       {"|2||"}},
      {"<Missed/>", {}},
      {"<?xml version='1.0' encoding='iso-8859-1'?><a>" + named("Ren\xE9\x80") + "</a>",
       {"Ren\u00E9\u20AC|||"}},
      {"<?XML encoding=\"Latin1\"><a>" + named("\x93\xE9\x90\x94 \u00E9") + "</a>",
       {"\u201C\u00E9" + r + "\u201D \u00C3\u00A9|||"}},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>" + named("Ren\u00E9 \u20AC\x01\uFFFF") +
           "</a>" + std::string(9, '\0'),
       {"Ren\u00E9 \u20AC" + r + r + "|||"}},
      {"<?xml version='1.0' encoding=\"windows-1252\"?><a>" + named("\x80\xE9\x81\x9F") + "</a>",
       {"\u20AC\u00E9" + r + "\u0178|||"}},
      {Document(named("\xE9") + named("\xF0\x9F\x98") + named("Zo\u00EB") + named("\xC3\"") +
                named("\xED\xA0\x80") + named(std::string("a\0b\x01", 4))),
       {r + "|||", r + r + r + "|||", "Zo\u00EB|||", r + "\"|||", r + r + r + "|||",
        "a" + r + "b" + r + "|||"}},
      {"\xFF" + Document("\xE9<callLogsEntry\x80>\xC3<name \xFF>A</name>\xF0</callLogsEntry>\xE2"),
       {"A|||"}},
  };
  SetSource(0, "/Missed");
  platform->config["BSCallLogAddCountryCode"] = 1;
  for (const auto& [document, entries] : kRows) {
    SCOPED_TRACE(document);
    Serve("Missed", document);
    EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
    EXPECT_EQ(Settle(), Strings{"0 " + Url("/Missed")});
    EXPECT_EQ(Entries(), entries);
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    EXPECT_EQ(page.total, static_cast<int>(entries.size()));
  }
}

TEST_F(ServerListTest, ReadsTimeStamps) {
  const std::pair<std::string, std::string> kRows[] = {
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
  std::string entries;
  Strings expected;
  for (const auto& [stamp, shown] : kRows) {
    entries += "<callLogsEntry><time>" + stamp + "</time></callLogsEntry>";
    expected.push_back("|||" + shown);
  }
  Serve("Missed", Document(entries));
  SetSource(0, "/Missed");
  Fetch(0);
  EXPECT_EQ(Entries(), expected);
}

TEST_F(ServerListTest, APageKeepsItsRowsAndGetsThoseAskedFor) {
  Serve("Missed", Document(Entry("1") + Entry("2") + Entry("3")));
  SetSource(0, "/Missed");
  Fetch(0);
  const auto ask = [this](int first, int count) {
    page.Reset();
    page.total = -7;
    page.request_index = first;
    page.request_count = count;
    page.items.emplace_back();
    const int answer = Logs().GetLogListByClickAction(&page, "broadsoft_calllog_0", "", false);
    std::string text = std::to_string(answer) + ", " + std::to_string(page.total) + ":";
    for (const CallLogSimpleData& item : page.items) text += item.display_name + " ";
    return text;
  };
  const std::string shown = std::to_string(BS_LIST_OK) + ", 3: ";
  const std::string refused = std::to_string(BS_LIST_INVALID) + ", -7: ";
  EXPECT_EQ(ask(0, 2), shown + "1 2 ");
  EXPECT_EQ(ask(1, INT_MAX), shown + "2 3 ");
  EXPECT_EQ(ask(3, 1), shown);
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
  Serve("Missed", Document(Entry("1")));
  Serve("Placed", Document(Entry("2")));
  SetSource(0, "/Missed");
  SetSource(1, "/Placed");
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
  platform->networkUp = true;

  // Another URL, another list; the one of before stays, also across a reload.
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
