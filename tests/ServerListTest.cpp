// Lists of server call logs: what becomes of a document, of a failure and of a change of mind, and
// how a list is read.
#include <functional>

#include "ServerTest.h"

namespace desk {
namespace {

using namespace NS_CALLLOG;
namespace fs = std::filesystem;

class ServerListTest : public ServerTest {
 protected:
  // Every entry of the list asked for last as "NAME|NUMBER|COUNTRY|TIME".
  static Strings Entries() {
    Strings entries;
    for (int i = 0;; ++i) {
      CallLogDetailData detail;
      if (!Logs().GetLogDetailByIndex(&detail, i)) return entries;
      entries.push_back(detail.display_name + "|" + detail.number + "|" + detail.country_code +
                        "|" + detail.time_text);
      EXPECT_EQ(detail.server + detail.duration_text + detail.image_path, "");
      EXPECT_EQ(detail.type, 0);
    }
  }
};

TEST_F(ServerListTest, FetchesAListOnce) {
  Serve("Missed", Document(Entry("1") + Entry("2")));
  SetSource(0, "/user/Missed");
  server.Misbehave("/user/Missed", {Kind::kHold, 0, {}});
  EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
  EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
  EXPECT_TRUE(Numbers().empty());
  server.Misbehave("/user/Missed", {});
  EXPECT_EQ(Settle(), Strings{"0 " + Url("/user/Missed")});
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  EXPECT_EQ(page.total, 2);
  EXPECT_EQ(Numbers(), (Strings{"1", "2"}));
  EXPECT_EQ(server.Requests("/user/Missed"), 1);
  const std::string shown =
      "http://***@127.0.0.1:" + std::to_string(server.port()) + "/user/Missed";
  const Strings journal = {
      "trace 2 CallLog: ExecDownload localPath[./tmp/BroadSoftCallLog.xml], remoteUrl[" + shown +
          "]",
      "trace 3 CBSCallLogModel::OnTaskActionCallback begin", "app 0x913 0 0 " + shown};
  EXPECT_EQ(TakeJournal({"trace 2", "trace 3 CBS", "app"}), journal);
  EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
  EXPECT_TRUE(Numbers().empty());
  EXPECT_EQ(Settle().size(), 1u);
  EXPECT_EQ(server.Requests("/user/Missed"), 2);
}

TEST_F(ServerListTest, Failures) {
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
      {"server error", misbehave({Kind::kStatus, 503, {}})},
      {"cut connection", misbehave({Kind::kCut, 0, {}})},
      {"stalled", misbehave({Kind::kStall, 0, {}})},
      {"endless", misbehave({Kind::kEndless, 0, {}})},
      {"too long", serve(Document(std::string(20000, ' ')))},
      {"endless redirect", misbehave({Kind::kRedirect, 0, "/Missed"})},
      {"local file in the way", [&] { fs::remove(local), fs::create_directories(local / "x"); }},
      {"no temporary directory", [&] { fs::remove_all(local.parent_path()); }},
      {"empty", serve("")},
      {"no XML", serve("Please sign in.")},
      {"cut document", serve("<Missed>" + Entry("3"))},
      {"mixed-up tags", serve("<Missed><a></b></Missed>")},
      {"no root", serve("<?xml version='1.0'?>\n<!-- nothing -->"), {}},
      {"HTML page", misbehave({Kind::kPage, 0, {}}), {}, BS_LIST_DOWNLOADING, "0 ", false},
      {"no network", [&] { desktop->networkUp = false; }, {"1", "2"}, BS_LIST_NO_NETWORK, ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Boot({10000, 10, 2, 60, 5});
    Serve("Missed", Document(Entry("1") + Entry("2")));
    SetSource(0, "/Missed");
    EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Missed")});
    EXPECT_TRUE(Logs().CancelDownload());
    row.harm();
    EXPECT_EQ(Ask(0), row.answer);
    EXPECT_EQ(Settle(), *row.lParam != '\0' ? Strings{row.lParam + Url("/Missed")} : Strings{});
    EXPECT_EQ(Numbers(), row.readable);

    server.Misbehave("/Missed", {});
    desktop->networkUp = true;
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
    std::string server, user, password, port;
    const char* told;  // lParam, empty: the transfer cannot be created
    std::string url;
  } kRows[] = {
      {"127.0.0.1/p", kUser, kPassword, port, "0 ", Url("/p")},
      {here + "/p", kUser, kPassword, "", "0 ", Url("/p")},
      {"http://127.0.0.1/a/../p", kUser, kPassword, port, "0 ", Url("/a/../p")},
      {"HTTP://127.0.0.1/p?a=/://b", kUser, kPassword, port, "0 ",
       "HTTP://anna@example.org:secret@:1@" + here + "/p?a=/://b"},
      {"127.0.0.1", "", "secret", port, "1 ", "http://" + here},
      {"127.0.0.1/p", "u", "", port, "1 ", "http://u:@" + here + "/p"},
      {"https://127.0.0.1/p", kUser, "", port, "1 ", "https://anna@example.org:@" + here + "/p"},
      {"127.0.0.1/p", "", "", "1", "1 ", "http://127.0.0.1:1/p"},
      {"ftp://127.0.0.1/p", kUser, kPassword, "", "", ""},
      {"file:///etc/passwd", "", "", "", "", ""},
      {"://", "", "", "", "", ""},
      {"/p", "", "", "", "", ""},
      {"127.0.0.1/p", "", "", "x", "", ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.server);
    BroadSoftConfigItem source;
    source.server = row.server;
    source.user_name = row.user;
    source.password = row.password;
    source.port = row.port;
    Logs().SetConfigDataByIndex(3, source);
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
  const struct {
    const char* query;
    const char* sent;
  } kRows[] = {{"", ""},
               {"Anna M", "?name=Anna M"},
               {"?name=Bob&x=\u00E9", "?name=Bob&x=\u00E9"},
               {"name=x", "?name=name=x"}};
  for (const auto& row : kRows) {
    EXPECT_EQ(Fetch(0, row.query), Strings{"0 " + Url("/Missed") + row.sent});
  }
  for (const auto& row : kRows) EXPECT_EQ(Ask(0, row.query), BS_LIST_OK);
  EXPECT_EQ(Ask(0, "?name=Anna M"), BS_LIST_OK);
  EXPECT_EQ(server.Requests("/Missed"), 4);
  // Two question marks are one too many for this server.
  EXPECT_EQ(Fetch(0, "?nam"), Strings{"1 " + Url("/Missed") + "?name=?nam"});
}

TEST_F(ServerListTest, TheSlowerOneKeepsItsEntries) {
  Serve("Slow", Document(Entry("slow")));
  Serve("Fast", Document(Entry("fast")));
  SetSource(0, "/Slow");
  SetSource(1, "/Fast");
  server.Misbehave("/Slow", {Kind::kStall, 0, {}});
  EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
  EXPECT_TRUE(server.WaitForRequests("/Slow", 1));
  EXPECT_EQ(Ask(1), BS_LIST_DOWNLOADING);
  EXPECT_EQ(Settle(1), Strings{"0 " + Url("/Fast")});
  server.Misbehave("/Slow", {});
  EXPECT_EQ(Settle(), Strings{"0 " + Url("/Slow")});
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  EXPECT_EQ(Numbers(), Strings{"slow"});
  EXPECT_EQ(Ask(1), BS_LIST_OK);
  EXPECT_EQ(Numbers(), Strings{"fast"});
}

// Both transfers are of one URL: the first is sent to "/Slow" and held there.
TEST_F(ServerListTest, AChangeOfMindWhileATransferRuns) {
  const auto cancel = [] { EXPECT_TRUE(Logs().CancelDownload()); };
  const auto cancelAndAsk = [&] {
    cancel();
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
  };
  const auto refresh = [this] { EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING); };
  const auto refreshOther = [this] { EXPECT_EQ(Ask(99, "", true), BS_LIST_NOT_CONFIGURED); };
  Serve("Missed", Document(Entry("new")));
  Serve("Other", Document(""));
  const struct {
    const char* what;
    std::function<void()> change;
    bool slowOneFails;
    Strings told;  // lParams, in order
    Strings readable;
    int next;  // answer to the next request
  } kRows[] = {
      {"cancel", cancel, false, {}, {}, 1},
      {"cancel of what fails", cancel, true, {}, {}, 1},
      {"cancel, ask", cancelAndAsk, false, {"0"}, {"new"}, 0},
      {"cancel, ask; the first fails", cancelAndAsk, true, {"0", "1"}, {"new"}, 1},
      {"refresh", refresh, false, {"0"}, {"new"}, 0},
      {"refresh; the first fails", refresh, true, {"0", "1"}, {"new"}, 1},
      {"refresh of nothing", refreshOther, false, {}, {}, 1},
      {"refresh of nothing; it fails", refreshOther, true, {}, {}, 1},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Boot({});
    SetSource(0, "/Missed");
    fs::remove(documents() / "Slow");
    if (!row.slowOneFails) Serve("Slow", Document(Entry("slow")));
    server.Misbehave("/Missed", {Kind::kRedirect, 0, "/Slow"});
    server.Misbehave("/Slow", {Kind::kHold, 0, {}});
    const int before = server.Requests("/Slow");
    EXPECT_EQ(Ask(0), BS_LIST_DOWNLOADING);
    EXPECT_TRUE(server.WaitForRequests("/Slow", before + 1));
    server.Misbehave("/Missed", {});
    row.change();
    Strings told = Settle(1);
    server.Misbehave("/Slow", {});
    for (const std::string& more : Settle()) told.push_back(more);
    Strings expected;
    for (const std::string& lParam : row.told) expected.push_back(lParam + " " + Url("/Missed"));
    EXPECT_EQ(told, expected);
    EXPECT_EQ(Numbers(), row.readable);
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
    EXPECT_EQ(desktop->loop.WaitForPost(std::chrono::seconds(ended ? 20 : 0)), ended);
    CBSCallLogController::ReleaseInstance();
    EXPECT_EQ(desktop->transfers.Running(), 0u);
    server.Misbehave("/Missed", {});
    desktop->RunDue();
    EXPECT_TRUE(Numbers().empty());
    EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Missed")});
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    CBSCallLogController::ReleaseInstance();
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
      {"\xEF\xBB\xBF<received>" + Entry("1") + "<callLogsEntry/></received>", {"|1||", "|||"}},
      {Document("<callLogsEntry><name/><countryCode></countryCode></callLogsEntry>"), {"|||"}},
      {Document(named("<!-- a -->An<!-- b -->na") + named("<![CDATA[A & <B>]]>") +
                named("A &amp; &#x42;&quot; &#0;&x;")),
       {"Anna|||", "A & <B>|||", "A & B\" " + r + "&x;|||"}},
      // Only direct children, and the first of each.
      {Document("<a>" + Entry("1") + "</a><callLogsEntry><a><name>no</name></a>" + Entry("no") +
                "<phoneNumber>2</phoneNumber><phoneNumber>no</phoneNumber></callLogsEntry>"
                "<callLogsentry/><callLogsEntry2/>"),
       {"|2||"}},
      {"<Missed/>", {}},
      {"<?xml version='1.0' encoding='iso-8859-1'?><a>" + named("Ren\xE9\x80") + "</a>",
       {"Ren\u00E9\u0080|||"}},
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
  desktop->config["BSCallLogAddCountryCode"] = 1;
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
  const std::string kNone = "00-00-0000 00:00:00";
  const std::pair<std::string, std::string> kRows[] = {
      {"2015-03-07T09:05:03", "03-07-2015 09:05:03"},
      {"2015-03-07T09:05:03.000+08:00", "03-07-2015 09:05:03"},
      {"2015-3-7T9:5:3", "03-07-2015 09:05:03"},
      {"2015-12-31T23:59", "12-31-2015 23:59:00"},
      {"2015-12-31 23:59:59", "12-31-2015 00:00:00"},
      {"2015- 3-+7T09", "03-07-2015 09:00:00"},
      {"2015", "00-00-2015 00:00:00"},
      {"", kNone},
      {"yesterday", kNone},
      {"-+1-2-3", kNone},
      {"-5--3-7T-1:0:0", "-03-07--0005 -01:00:00"},
      {"99999999999-1-2T3:4:5", "01-02-2147483647 03:04:05"},
      {"1-99999999999-" + std::string(10000, '9') + "T-" + std::string(10000, '9') + ":1:1",
       "2147483647-2147483647-0001 -2147483648:01:01"},
  };
  std::string entries;
  for (const auto& [stamp, shown] : kRows) {
    entries += "<callLogsEntry><time>" + stamp + "</time></callLogsEntry>";
  }
  Serve("Missed", Document(entries));
  SetSource(0, "/Missed");
  Fetch(0);
  EXPECT_EQ(Ask(0), BS_LIST_OK);
  ASSERT_EQ(page.items.size(), std::size(kRows));
  auto item = page.items.begin();
  for (const auto& [stamp, shown] : kRows) EXPECT_EQ((item++)->time_text, shown) << stamp;
}

TEST_F(ServerListTest, Pages) {
  std::string entries;
  for (int i = 0; i < 25; ++i) entries += Entry(std::to_string(i));
  Serve("Missed", Document(entries));
  SetSource(0, "/Missed");
  Fetch(0);
  const struct {
    int index, count, size;  // -1: refused
  } kRows[] = {{10, 10, 10}, {20, 10, 5}, {24, INT_MAX, 1}, {25, 10, 0}, {0, 0, -1}, {-1, 10, -1}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.index);
    page.Reset();
    page.total = -7;
    page.request_index = row.index;
    page.request_count = row.count;
    page.items.emplace_back().display_name = "appended to";
    Strings names = {"appended to"};
    for (int i = 0; i < row.size; ++i) names.push_back(std::to_string(row.index + i));
    EXPECT_EQ(Logs().GetLogListByClickAction(&page, "broadsoft_calllog_0", "", false),
              row.size < 0 ? BS_LIST_INVALID : BS_LIST_OK);
    EXPECT_EQ(page.total, row.size < 0 ? -7 : 25);
    for (const CallLogSimpleData& item : page.items) {
      ASSERT_FALSE(names.empty());
      EXPECT_EQ(item.display_name, names.front());
      EXPECT_EQ(item.type, 0);
      names.erase(names.begin());
    }
    EXPECT_TRUE(names.empty());
  }
  CallLogDetailData detail;
  detail.number = "untouched";
  for (const int index : {-1, 25, INT_MAX, INT_MIN, 0}) {
    EXPECT_FALSE(Logs().GetLogDetailByIndex(index == 0 ? nullptr : &detail, index));
    EXPECT_FALSE(Logs().AddToLocalDir(index) || Logs().AddToLocalBlackDir(index));
  }
  EXPECT_EQ(detail.number, "untouched");
}

TEST_F(ServerListTest, RequestsThatNameNoListChangeNothing) {
  EXPECT_FALSE(Logs().CancelDownload());
  Serve("Missed", Document(Entry("1")));
  SetSource(0, "/Missed");
  Fetch(0);
  desktop->networkUp = false;
  for (const char* action :
       {"", "broadsoft_calllog_6", "broadsoft_calllog_-1", "broadsoft_calllog_x",
        "OpenSubPage(call_log_0)", "broadsoft_calllog_1"}) {  // the last is without a server
    SCOPED_TRACE(action);
    const bool empty = *action == '\0';
    EXPECT_EQ(Logs().GetLogListByClickAction(&page, action, "q", empty),
              empty ? BS_LIST_INVALID : BS_LIST_NOT_CONFIGURED);
    EXPECT_EQ(Logs().GetLogListByClickAction(nullptr, action, "q", true), BS_LIST_INVALID);
    EXPECT_EQ(Numbers(), Strings{"1"});
  }
}

TEST_F(ServerListTest, TheListAskedForLastIsTheCurrentOne) {
  Serve("Missed", Document(Entry("1")));
  Serve("Placed", Document(Entry("2")));
  SetSource(0, "/Missed");
  SetSource(1, "/Placed");
  Fetch(0);
  desktop->networkUp = false;
  EXPECT_EQ(Ask(1), BS_LIST_NO_NETWORK);
  EXPECT_TRUE(Numbers().empty());
  EXPECT_FALSE(Logs().CancelDownload());
  EXPECT_EQ(Ask(0), BS_LIST_NO_NETWORK);
  EXPECT_EQ(Numbers(), Strings{"1"});
  desktop->networkUp = true;
  EXPECT_EQ(Ask(0), BS_LIST_OK);

  // Another URL, another list; the one of before stays, also across a reload.
  SetSource(0, "/Placed");
  EXPECT_EQ(Fetch(0), Strings{"0 " + Url("/Placed")});
  EXPECT_EQ(Numbers(), Strings{"2"});
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
