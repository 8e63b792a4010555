// Transfers as a module meets them, against a server of our own.
#include <gtest/gtest.h>
#include <httplib.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "LogServer.h"
#include "PhoneTest.h"
#include "TaskAction.h"

namespace desk {
namespace {

using Kind = Behaviour::Kind;
using NS_TA::CNetworkFileAction;
namespace fs = std::filesystem;

constexpr char kUser[] = "anna@example.org";
constexpr char kPassword[] = "p@ss:1";
constexpr char kBefore[] = "what was there before";

// Keeps what every completion found, and destroys the action as a module does.
struct Receiver : NS_TA::CTaskActionCallbackBase {
  struct Completion {
    std::string remoteUrl;
    bool succeeded;
    std::string document;
  };

  void OnTaskActionCallback(NS_TA::CTaskAction* action) override {
    ASSERT_EQ(action->GetRequestType(), 2);
    auto* const transfer = static_cast<CNetworkFileAction*>(action);
    completions.push_back({transfer->GetFilePathRemote(), transfer->IsOperationSucceed(),
                           ReadFile(transfer->GetFilePath())});
    TaskAction_DestroyNetworkFileAction(transfer);
  }

  std::vector<Completion> completions;
};

class TransferTest : public testing::Test {
 protected:
  TransferTest() {
    setenv("http_proxy", "http://127.0.0.1:1", 1);  // nobody must ask it
    fs::create_directory(documents());
    fs::create_directory(folder());
    for (const char* name : {"Missed", "Placed"}) {
      WriteFile(documents() / (name + std::string(".xml")), DocumentOf(name));
    }
    WriteFile(local(), kBefore);
    server.Start();
    MakeDesktop({});
  }
  // The platform's thread must not find the rest of the test gone.
  ~TransferTest() override { desktop.reset(); }

  static std::string DocumentOf(const std::string& name) { return "<" + name + "/>\n"; }
  fs::path documents() const { return root.path() / "documents"; }
  fs::path folder() const { return root.path() / "local"; }
  fs::path local() const { return folder() / "log.xml"; }
  std::string UrlOf(const std::string& path, const std::string& host = "127.0.0.1") const {
    return std::string("http://") + kUser + ":" + kPassword + "@" + host + ":" +
           std::to_string(server.port()) + path;
  }
  static std::string Address(const LogServer& other, const std::string& host) {
    return "http://" + host + ":" + std::to_string(other.port());
  }

  void MakeDesktop(const TransferLimits& limits) {
    Profile profile;
    profile.limits = limits;
    desktop.reset();
    desktop = std::make_unique<Desktop>(profile, std::make_unique<ManualClock>(0));
    desktop->loop.SetWakeUp([this] {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++posts_;
      posted_.notify_all();
    });
  }

  // Until the platform has posted so many completions, none of which is delivered here.
  void WaitForPosts(int count) {
    std::unique_lock<std::mutex> lock(mutex_);
    ASSERT_TRUE(posted_.wait_for(lock, std::chrono::seconds(20), [&] { return posts_ >= count; }));
    posts_ -= count;
  }
  void Complete(int count) {
    WaitForPosts(count);
    desktop->RunDue();
  }

  CNetworkFileAction* Start(const std::string& url, NS_TA::CTaskActionCallbackBase* callback,
                            bool sync = false) {
    auto* const action = TaskAction_CreateNetworkFileAction(local().c_str(), url.c_str());
    action->SetRead(true);
    action->SetSync(sync);
    action->SetCallback(callback);
    EXPECT_TRUE(TaskAction_ExecAction(action));
    return action;
  }
  Receiver::Completion Fetch(const std::string& url) {
    Receiver receiver;
    Start(url, &receiver);
    Complete(1);
    if (receiver.completions.size() != 1) return {"no completion", false, ""};
    return receiver.completions.front();
  }

  std::vector<std::string> Folder() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  TemporaryDirectory root;
  LogServer server{{documents(), kUser, kPassword, 0}};
  std::unique_ptr<Desktop> desktop;

 private:
  std::mutex mutex_;
  std::condition_variable posted_;
  int posts_ = 0;
};

using Names = std::vector<std::string>;

TEST_F(TransferTest, FetchesADocument) {
  const std::string path = "/v2.0/user/anna@example.org/directories/CallLogs/Missed";
  fs::remove(local());
  const auto completion = Fetch(UrlOf(path + "?name=Anna M"));
  EXPECT_EQ(completion.remoteUrl, UrlOf(path + "?name=Anna M"));
  EXPECT_TRUE(completion.succeeded);
  EXPECT_EQ(completion.document, DocumentOf("Missed"));
  EXPECT_EQ(server.Requests(path), 1);
  EXPECT_EQ(Folder(), Names{"log.xml"});
  struct stat status = {};
  ASSERT_EQ(lstat(local().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0600));
}

TEST_F(TransferTest, FollowsNoLink) {
  WriteFile(root.path() / "victim", kBefore);
  fs::remove(local());
  fs::create_symlink(root.path() / "victim", local());
  EXPECT_TRUE(Fetch(UrlOf("/Missed")).succeeded);
  EXPECT_FALSE(fs::is_symlink(local()));
  EXPECT_EQ(ReadFile(local()), DocumentOf("Missed"));
  EXPECT_EQ(ReadFile(root.path() / "victim"), kBefore);
}

TEST_F(TransferTest, FailsForManyReasons) {
  WriteFile(root.path() / "secret", "a file of the phone");
  WriteFile(documents() / "Big", std::string(2000, ' '));
  WriteFile(documents() / "Full", std::string(1000, ' '));
  LogServer other({documents(), kUser, kPassword, 0});
  other.Start();
  LogServer closed({documents(), kUser, kPassword, 0});
  closed.Start();
  closed.Stop();
  const std::string file = "file://" + (root.path() / "secret").string();
  const TransferLimits usual{1000, 10, 15, 60, 5};
  const struct {
    const char* path;
    Behaviour behaviour;
    TransferLimits limits;
    const char* error;  // empty: it succeeds
  } kRows[] = {
      {"/Missed", {Kind::kStatus, 401, {}}, usual, "status 401"},
      {"/Missed", {Kind::kStatus, 500, {}}, usual, "status 500"},
      {"/None", {}, usual, "status 404"},
      {"/Missed", {Kind::kCut, 0, {}}, usual, "Transferred a partial file"},
      {"/Full", {}, usual, ""},
      {"/Big", {}, usual, "the document is too long"},
      {"/Missed", {Kind::kEndless, 0, {}}, {100000, 10, 15, 60, 5}, "the document is too long"},
      {"/Missed", {Kind::kStall, 0, {}}, {1000, 10, 1, 60, 5}, "no byte for 1 s"},
      {"/Missed", {Kind::kHold, 0, {}}, {1000, 10, 1, 60, 5}, "no byte for 1 s"},
      {"/Missed", {Kind::kHold, 0, {}}, {1000, 10, 15, 1, 5}, "Timeout was reached"},
      {"/Missed", {Kind::kPage, 0, {}}, usual, ""},
      {"/a", {Kind::kRedirect, 0, "/Missed"}, usual, ""},
      {"/a", {Kind::kRedirect, 0, "/Missed"}, {1000, 10, 15, 60, 0}, "Number of redirects hit"},
      {"/Missed", {Kind::kRedirect, 0, "/Missed"}, usual, "Number of redirects hit"},
      {"/Missed", {Kind::kRedirect, 0, file}, usual, "Unsupported protocol"},
      {"/Missed", {Kind::kRedirect, 0, "ftp://127.0.0.1:1/"}, usual, "Unsupported protocol"},
      {"/Missed", {Kind::kRedirect, 0, Address(closed, "127.0.0.1")}, usual, "Couldn't connect"},
      // The other server knows the same user, but must not be told.
      {"/a", {Kind::kRedirect, 0, Address(other, "localhost") + "/Missed"}, usual, "status 401"},
      {"/a", {Kind::kRedirect, 0, Address(other, "127.0.0.1") + "/Missed"}, usual, "status 401"},
      {"/a", {Kind::kRedirect, 0, Address(server, "localhost") + "/Missed"}, usual, "status 401"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.path + std::string(" ") + row.error + " " + row.behaviour.location);
    const bool succeeds = *row.error == '\0';
    MakeDesktop(row.limits);
    WriteFile(local(), kBefore);
    server.Misbehave(row.path, row.behaviour);
    const auto completion = Fetch(UrlOf(row.path));
    server.Misbehave(row.path, {});
    EXPECT_EQ(completion.succeeded, succeeds);
    EXPECT_EQ(completion.document == kBefore, !succeeds);
    EXPECT_EQ(Folder(), Names{"log.xml"});
    const auto trace = desktop->journal.LinesOf({"trace"});
    EXPECT_EQ(trace.size(), succeeds ? 0u : 1u);
    for (const std::string& line : trace) {
      EXPECT_NE(line.find("failed: " + std::string(row.error)), line.npos) << line;
      EXPECT_EQ(line.find(kPassword), line.npos) << line;
    }
  }
}

TEST_F(TransferTest, FollowsFiveRedirects) {
  for (const char* step : {"/1", "/2", "/3", "/4"}) {
    server.Misbehave(step,
                     {Kind::kRedirect, 0, "/" + std::string(1, static_cast<char>(step[1] + 1))});
  }
  server.Misbehave("/5", {Kind::kRedirect, 0, "/Missed"});
  EXPECT_TRUE(Fetch(UrlOf("/1")).succeeded);
  server.Misbehave("/Missed", {Kind::kRedirect, 0, "/Placed"});
  EXPECT_FALSE(Fetch(UrlOf("/1")).succeeded);
  EXPECT_EQ(server.Requests("/Placed"), 0);
}

TEST_F(TransferTest, FailsWhenTheFileCannotBePlaced) {
  fs::remove(local());
  fs::create_directories(local() / "in the way");
  EXPECT_FALSE(Fetch(UrlOf("/Missed")).succeeded);
  EXPECT_EQ(Folder(), Names{"log.xml"});
  fs::remove_all(folder());
  EXPECT_FALSE(Fetch(UrlOf("/Missed")).succeeded);
}

TEST_F(TransferTest, RefusesAnUncertifiedServer) {
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
  const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -60);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>("localhost"), -1, -1, 0);
  X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
  X509_set_pubkey(certificate.get(), key.get());
  X509_sign(certificate.get(), key.get(), EVP_sha256());
  httplib::SSLServer secure(certificate.get(), key.get());
  const int port = secure.bind_to_any_port("127.0.0.1");
  secure.Get("/", [](const httplib::Request&, httplib::Response&) { ADD_FAILURE(); });
  std::thread serving([&] { secure.listen_after_bind(); });
  EXPECT_FALSE(Fetch("https://localhost:" + std::to_string(port) + "/").succeeded);
  const auto trace = desktop->journal.LinesOf({"trace"});
  ASSERT_EQ(trace.size(), 1u);
  EXPECT_NE(trace.front().find("certificate"), std::string::npos) << trace.front();
  secure.stop();
  serving.join();
}

TEST_F(TransferTest, EachCompletionFindsItsOwnDocument) {
  Receiver receiver;
  Start(UrlOf("/Missed"), &receiver);
  Start(UrlOf("/Placed"), &receiver);
  Start(UrlOf("/None"), &receiver);
  WaitForPosts(3);
  EXPECT_EQ(ReadFile(local()), kBefore);
  EXPECT_EQ(desktop->transfers.Running(), 3u);
  desktop->RunDue();
  ASSERT_EQ(receiver.completions.size(), 3u);
  for (const auto& completion : receiver.completions) {
    const std::string name = completion.remoteUrl.substr(completion.remoteUrl.rfind('/') + 1);
    EXPECT_EQ(completion.succeeded, name != "None");
    if (!completion.succeeded) continue;
    EXPECT_EQ(completion.document, DocumentOf(name));
  }
  EXPECT_EQ(Folder(), Names{"log.xml"});
  EXPECT_EQ(desktop->transfers.Running(), 0u);
}

TEST_F(TransferTest, RunsFiftyAtOnce) {
  constexpr int kCount = 50;
  Receiver receiver;
  server.Misbehave("/Missed", {Kind::kHold, 0, {}});
  for (int i = 0; i < kCount; ++i) Start(UrlOf("/Missed"), &receiver);
  EXPECT_TRUE(server.WaitForRequests("/Missed", kCount));
  server.Misbehave("/Missed", {});
  Complete(kCount);
  EXPECT_EQ(receiver.completions.size(), static_cast<std::size_t>(kCount));
  for (const auto& completion : receiver.completions) EXPECT_TRUE(completion.succeeded);
}

TEST_F(TransferTest, ASynchronousOneCompletesFromTheLoopAsWell) {
  Receiver receiver;
  CNetworkFileAction* const action = Start(UrlOf("/Missed"), &receiver, true);
  EXPECT_EQ(server.Requests("/Missed"), 1);
  EXPECT_TRUE(receiver.completions.empty());
  EXPECT_FALSE(action->IsOperationSucceed());
  desktop->RunDue();
  ASSERT_EQ(receiver.completions.size(), 1u);
  EXPECT_TRUE(receiver.completions.front().succeeded);
}

TEST_F(TransferTest, NobodyHearsOfWhatWasDestroyed) {
  const struct {
    const char* what;
    bool destroysTheAction;  // otherwise its receiver
    bool waits;              // its completion is posted already
  } kRows[] = {
      {"an action that runs", true, false},
      {"an action that has ended", true, true},
      {"the receiver of one that runs", false, false},
      {"the receiver of one that has ended", false, true},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    auto receiver = std::make_unique<Receiver>();
    const int before = server.Requests("/Missed");
    if (!row.waits) server.Misbehave("/Missed", {Kind::kStall, 0, {}});
    CNetworkFileAction* const action = Start(UrlOf("/Missed"), receiver.get());
    ASSERT_TRUE(server.WaitForRequests("/Missed", before + 1));
    if (row.waits) WaitForPosts(1);
    if (row.destroysTheAction) {
      TaskAction_DestroyNetworkFileAction(action);
    } else {
      receiver.reset();
    }
    // By the time of another one's end, the thread has dropped the first.
    EXPECT_EQ(Fetch(UrlOf("/Placed")).document, DocumentOf("Placed"));
    EXPECT_EQ(Folder(), Names{"log.xml"});
    server.Misbehave("/Missed", {});
    EXPECT_EQ(desktop->transfers.Running(), 0u);
    EXPECT_TRUE(receiver == nullptr || receiver->completions.empty());
  }
}

TEST_F(TransferTest, AnActionNeedsNeitherReceiverNorDestruction) {
  auto* const action = TaskAction_CreateNetworkFileAction(local().c_str(), UrlOf("/None").c_str());
  EXPECT_TRUE(TaskAction_ExecAction(action));
  Complete(1);
  EXPECT_FALSE(action->IsOperationSucceed());
  EXPECT_EQ(Folder(), Names{"log.xml"});
  EXPECT_EQ(ReadFile(local()), kBefore);

  Receiver stranger;
  ETL_MsgQueueHelper::msgObject message;
  message.message = TransferService::kEndedMessage;
  message.wParam = static_cast<Transfer*>(action)->id;
  EXPECT_FALSE(stranger.TryThreadMessage(message));
}

TEST_F(TransferTest, ThePlatformStopsWhatRuns) {
  Receiver receiver;
  for (const bool stops : {false, true}) {
    server.Misbehave("/Missed", {Kind::kStall, 0, {}});
    const int before = server.Requests("/Missed");
    CNetworkFileAction* const action = Start(UrlOf("/Missed"), &receiver);
    Start(UrlOf("/Placed"), &receiver);
    WaitForPosts(1);
    ASSERT_TRUE(server.WaitForRequests("/Missed", before + 1));
    if (stops) {
      desktop.reset();
    } else {
      desktop->PowerCycle();
      desktop->RunDue();
    }
    TaskAction_DestroyNetworkFileAction(action);
  }
  EXPECT_TRUE(receiver.completions.empty());
  EXPECT_EQ(Folder(), Names{"log.xml"});
  EXPECT_EQ(ReadFile(local()), kBefore);
  EXPECT_EQ(TaskAction_CreateNetworkFileAction("log.xml", "http://h/"), nullptr);
}

TEST_F(TransferTest, RefusesWhatItCannotDo) {
  const std::string url = UrlOf("/Missed");
  EXPECT_EQ(TaskAction_CreateNetworkFileAction(nullptr, url.c_str()), nullptr);
  EXPECT_EQ(TaskAction_CreateNetworkFileAction("", url.c_str()), nullptr);
  EXPECT_EQ(TaskAction_CreateNetworkFileAction("log.xml", nullptr), nullptr);
  EXPECT_EQ(TaskAction_CreateNetworkFileAction("log.xml", "file:///etc/passwd"), nullptr);
  EXPECT_FALSE(TaskAction_ExecAction(nullptr));
  TaskAction_DestroyNetworkFileAction(nullptr);

  auto* const upload = TaskAction_CreateNetworkFileAction(local().c_str(), url.c_str());
  upload->SetRead(false);
  EXPECT_FALSE(TaskAction_ExecAction(upload));
  TaskAction_DestroyNetworkFileAction(upload);

  Receiver receiver;
  CNetworkFileAction* const action = Start(url, &receiver);
  EXPECT_FALSE(TaskAction_ExecAction(action));
  ETL_MsgQueueHelper::msgObject message;
  EXPECT_FALSE(receiver.TryThreadMessage(message));
  message.message = TransferService::kEndedMessage;
  message.wParam = static_cast<Transfer*>(action)->id;
  EXPECT_FALSE(receiver.TryThreadMessage(message));
  Complete(1);
  EXPECT_EQ(receiver.completions.size(), 1u);
}

TEST(LogServerTest, ReadsHowToBehave) {
  const struct {
    const char* text;
    Behaviour behaviour;
  } kRows[] = {
      {"404", {Kind::kStatus, 404, {}}},
      {"delay:5", {Kind::kDelay, 5, {}}},
      {"cut", {Kind::kCut, 0, {}}},
      {"redirect:http://h:1/", {Kind::kRedirect, 0, "http://h:1/"}},
  };
  for (const auto& row : kRows) {
    const Behaviour behaviour = ParseBehaviour(row.text);
    EXPECT_EQ(behaviour.kind, row.behaviour.kind) << row.text;
    EXPECT_EQ(behaviour.number, row.behaviour.number) << row.text;
    EXPECT_EQ(behaviour.location, row.behaviour.location) << row.text;
  }
  for (const char* text :
       {"", "200", "404x", "600", "delay", "delay:-1", "redirect", "redirect:"}) {
    EXPECT_THROW(ParseBehaviour(text), std::invalid_argument) << text;
  }
}

TEST_F(TransferTest, AServerSaysWhyItCannotStart) {
  LogServer second({documents(), "", "", server.port()});
  EXPECT_THROW(second.Start(), std::runtime_error);
  LogServer homeless({root.path() / "none", "", "", 0});
  EXPECT_THROW(homeless.Start(), std::runtime_error);
}

}  // namespace
}  // namespace desk
