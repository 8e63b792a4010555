// What the tests of the server call logs share: a log server on 127.0.0.1, the phone's sources at
// it, and the way to wait for what the module makes of their documents. Whatever a test does, no
// action, no file and no password may be left where it does not belong.
#pragma once

#include <climits>

#include "desktop/platform/Text.h"
#include "desktop/server/LogServer.h"
#include "tests/support/PhoneTest.h"

namespace desk {

class ServerTest : public virtual PhoneTest {
 protected:
  using Kind = Behaviour::Kind;
  static constexpr char kUser[] = "anna@example.org";
  static constexpr char kPassword[] = "secret@:1";

  ServerTest() {
    std::filesystem::create_directory(documents());
    server.Start();
    Boot({});
  }
  ~ServerTest() override { NS_CALLLOG::CBSCallLogController::ReleaseInstance(); }
  void TearDown() override { ExpectNothingLeft(); }

  // Another phone on the same files.
  void Boot(const TransferLimits& limits) {
    ExpectNothingLeft();
    NS_CALLLOG::CBSCallLogController::ReleaseInstance();
    platform.reset();
    Profile profile;
    profile.config = {{"BDDirectoryShowSwitch", 1}};
    profile.limits = limits;
    platform = std::make_unique<Platform>(profile, std::make_unique<ManualClock>(kNow));
    platform->trace.SetFile(root.path() / "trace.log");
    platform->trace.SetLevel(3);
  }

  void ExpectNothingLeft() {
    constexpr unsigned int kMoreThanEver = 2000;
    for (const auto& entry : std::filesystem::directory_iterator(root.path() / "tmp")) {
      EXPECT_EQ(entry.path().filename(), "BroadSoftCallLog.xml");
    }
    if (platform == nullptr) return;
    EXPECT_EQ(platform->transfers.Running(), 0u);
    for (unsigned int id = 0; id < kMoreThanEver; ++id) {
      EXPECT_EQ(platform->transfers.FindEnded(id), nullptr) << id;
    }
    Strings output = platform->journal.Lines();
    output.push_back(ReadFile(root.path() / "trace.log"));
    for (const std::string& text : output) EXPECT_EQ(text.find("secret"), text.npos) << text;
  }

  static NS_CALLLOG::CBSCallLogController& Logs() {
    return *NS_CALLLOG::CBSCallLogController::GetInstance();
  }

  std::filesystem::path documents() const { return root.path() / "documents"; }
  void Serve(const std::string& name, const std::string& document) {
    WriteFile(documents() / name, document);
  }
  static std::string Document(const std::string& entries) {
    return "<?xml version=\"1.0\"?>\n<Missed xmlns=\"http://example.org/\">" + entries +
           "</Missed>\n";
  }
  static std::string Entry(const std::string& number) {
    return "<callLogsEntry><phoneNumber>" + number + "</phoneNumber></callLogsEntry>";
  }

  std::string Url(const std::string& path) const {
    return std::string("http://") + kUser + ":" + kPassword +
           "@127.0.0.1:" + std::to_string(server.port()) + path;
  }
  static BroadSoftConfigItem MakeSource(const std::string& where, const std::string& port,
                                        const std::string& user, const std::string& password) {
    BroadSoftConfigItem source;
    source.server = where;
    source.port = port;
    source.user_name = user;
    source.password = password;
    return source;
  }
  void SetSource(int index, const std::string& path) {
    const std::string port = std::to_string(server.port());
    Logs().SetConfigDataByIndex(index, MakeSource("127.0.0.1" + path, port, kUser, kPassword));
  }
  // A document, and a source for it.
  void Offer(int index, const std::string& name, const std::string& document) {
    Serve(name, document);
    SetSource(index, "/" + name);
  }

  // Asks for all rows, which are in `page` then.
  int Ask(int source, const std::string& query = {}, bool refresh = false) {
    page.Reset();
    page.request_count = INT_MAX;
    return Logs().GetLogListByClickAction(
        &page, "OpenCallLogPage(broadsoft_calllog_" + std::to_string(source) + ")", query, refresh);
  }
  // The numbers of all entries of the list asked for last.
  static Strings Numbers() {
    Strings numbers;
    CallLogDetailData detail;
    for (int i = 0; Logs().GetLogDetailByIndex(&detail, i); ++i) numbers.push_back(detail.number);
    return numbers;
  }

  // False when it takes too long.
  bool WaitForPost() { return platform->loop.WaitForPost(std::chrono::seconds(60)); }
  // Lets transfers end until no more than `running` are left. What the application was told, each
  // as "LPARAM URL".
  Strings Settle(std::size_t running = 0) {
    while (platform->transfers.Running() > running && WaitForPost()) platform->RunDue();
    EXPECT_EQ(platform->transfers.Running(), running);
    Strings told;
    for (const Message& message : platform->loop.TakeAppMessages()) {
      EXPECT_EQ(message.message, 0x913u);
      EXPECT_EQ(message.wParam, 0u);
      const std::string url = CString(message.extra);
      EXPECT_EQ(message.extra.size(), url.size() + 1);
      told.push_back(std::to_string(message.lParam) + " " + url);
    }
    return told;
  }
  // Asks for a list that is not there yet and waits for it.
  Strings Fetch(int source, const std::string& query = {}) {
    EXPECT_EQ(Ask(source, query), NS_CALLLOG::BS_LIST_DOWNLOADING);
    return Settle();
  }

  CallLogSimpleListData page;
  LogServer server{{documents(), kUser, kPassword, 0}};
};

}  // namespace desk
