// A desk phone's life of many calls, quickly: the random events of ModelDriver, and between them
// server lists from a real server and changes of the configuration. Now and then the phone is
// emptied as its user would empty it, and must take no more memory than after the first thousand
// calls.
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "tests/support/HeapInUse.h"
#include "tests/support/ModelDriver.h"
#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using namespace NS_CALLLOG;

int wantedCalls = 1000000;
std::ofstream curve;  // the memory taken, if it is open

// What of the process's memory is in RAM.
std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

struct Memory {
  std::size_t heap = 0;      // in use, as the calls left it
  std::size_t emptied = 0;   // in use, without calls, server lists and traces
  std::size_t resident = 0;  // all that the process takes
};

class SoakTest : public ServerTest, public ModelDriver {
 protected:
  SoakTest() { platform->trace.SetLevel(0); }

  void Run() {
    curve << "calls,heap,emptied,resident\n";
    Begin(20261007, 50000);  // a phone stays on for long
    CallLog_RegisterMessage();
    const int interval = std::max(1000, wantedCalls / 100);
    for (int next = 1000; calls() < wantedCalls && !HasFailure();) {
      Step();
      if (OneIn(150)) ChangeSources();
      if (OneIn(150)) ReadServerList();
      if (calls() < std::min(next, wantedCalls)) continue;
      Measure();
      next = calls() - calls() % interval + interval;
    }
    std::cout << calls() << " calls, " << downloads_ << " server lists\n";
  }

 private:
  void Restart() override {
    CBSCallLogController::ReleaseInstance();
    ModelDriver::Restart();
    CallLog_RegisterMessage();
    lists_.clear();
    CheckSources();
  }

  // One source gets another name and document; at times the configuration is read anew.
  void ChangeSources() {
    const int index = Below(static_cast<int>(sources_.size()));
    auto& source = sources_[static_cast<std::size_t>(index)];
    source = MakeSource("127.0.0.1/" + std::to_string(Below(4)), std::to_string(server.port()),
                        kUser, kPassword);
    if (OneIn(2)) source.name = "Office";
    Logs().SetConfigDataByIndex(index, source);
    platform->config["BDDirectoryShowSwitch"] = Below(2);
    if (OneIn(4)) ReadAnew();
    CheckSources();
  }

  void ReadAnew() {
    EXPECT_EQ(platform->loop.Send({0x10007, 0x28, 0, {}}), 1);
    const auto told = platform->loop.TakeAppMessages();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told.front().message, 0x914u);
  }

  void CheckSources() {
    bool any = false;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      const BroadSoftConfigItem& source = *Logs().GetConfigDataByIndex(static_cast<int>(i));
      EXPECT_EQ(source.name + " " + source.server + " " + source.password,
                sources_[i].name + " " + sources_[i].server + " " + sources_[i].password);
      any = any || !source.name.empty();
    }
    const bool shown = any && platform->config["BDDirectoryShowSwitch"] == 1;
    EXPECT_EQ(CallLog_IsBroadSoftCallLogConfigured(), shown ? 1 : 0);
  }

  // Gives the server another document to answer with, or lets it fail; the document's numbers.
  Strings ServeOther(const std::string& path, bool fails) {
    Strings numbers;
    std::string entries;
    for (int i = Below(40); i > 0; --i) {
      numbers.push_back(std::to_string(Below(1000000)));
      entries += Entry(numbers.back());
    }
    Serve(path.substr(1), Document(entries));
    const Behaviour failure{OneIn(2) ? Kind::kCut : Kind::kStatus, 500, {}};
    server.Misbehave(path, fails ? failure : Behaviour());
    return numbers;
  }

  // Opens the list of a source and waits for it, unless the user cancels.
  void ReadServerList() {
    const int index = Below(static_cast<int>(sources_.size()));
    const std::string& address = sources_[static_cast<std::size_t>(index)].server;
    if (address.empty()) return;
    const std::string path = address.substr(address.find('/'));
    const std::string query = OneIn(3) ? "?name=Bo" : "";
    const std::string url = Url(path) + query;
    const bool fails = OneIn(6);
    const Strings numbers = ServeOther(path, fails);
    const bool refresh = OneIn(4);
    if (refresh) lists_.clear();
    platform->networkUp = !OneIn(10);
    const int result = Ask(index, query, refresh);
    if (!platform->networkUp) {
      EXPECT_EQ(result, BS_LIST_NO_NETWORK);
    } else if (lists_.count(url) > 0) {
      EXPECT_EQ(result, BS_LIST_OK);
      EXPECT_EQ(page.items.size(), lists_[url].size());
    } else {
      EXPECT_EQ(result, BS_LIST_DOWNLOADING);
      AwaitList(url, fails, numbers);
    }
    EXPECT_TRUE(lists_.count(url) == 0 || Numbers() == lists_[url]);
  }

  void AwaitList(const std::string& url, bool fails, const Strings& numbers) {
    ++downloads_;
    const bool cancelled = OneIn(6);
    EXPECT_EQ(cancelled, cancelled && Logs().CancelDownload());
    EXPECT_EQ(Settle(), cancelled ? Strings{} : Strings{(fails ? "1 " : "0 ") + url});
    if (!cancelled && !fails) lists_[url] = numbers;
  }

  // The user removes every call and leaves the server lists; nobody keeps what was traced.
  void Empty() {
    Controller().RemoveAllLogsByClickAction(Action(0));
    model_.RemoveAll(0);
    EXPECT_EQ(Controller().SaveToFile(), model_.Save());
    EXPECT_EQ(Ask(-1, "", true), BS_LIST_NOT_CONFIGURED);
    lists_.clear();
    platform->journal.Clear();
    model_ = PlainModel(model_);  // without the room that it needed for more calls
  }

  // Beyond these bounds, it grows. The log server's threads, which take what they need when they
  // serve for the first time, stay within them.
  void Measure() {
    constexpr std::size_t kHeapSlack = 96 * 1024;
    constexpr std::size_t kResidentSlack = 8 * 1024 * 1024;
    Memory now;
    now.heap = HeapInUse();
    Empty();
    now.emptied = HeapInUse();
    now.resident = ResidentBytes();
    if (first_.heap == 0) first_ = now;
    EXPECT_LT(now.emptied, first_.emptied + kHeapSlack) << "after " << calls() << " calls";
    if (!IsSanitized()) {
      EXPECT_LT(now.resident, first_.resident + kResidentSlack) << "after " << calls() << " calls";
    }
    curve << calls() << ',' << now.heap << ',' << now.emptied << ',' << now.resident << std::endl;
  }

  std::vector<BroadSoftConfigItem> sources_{6};  // as they must be
  std::map<std::string, Strings> lists_;         // numbers of the lists in memory, by URL
  int downloads_ = 0;
  Memory first_;
};

TEST_F(SoakTest, TakesNoMoreMemoryThanAtFirst) { Run(); }

}  // namespace
}  // namespace desk

// calllog_soak [CALLS [CURVE]]: how many calls, and a file for the memory that they took (CSV).
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1) desk::wantedCalls = std::atoi(argv[1]);
  if (argc > 2) desk::curve.open(argv[2]);
  if (desk::wantedCalls > 0 && desk::curve) return RUN_ALL_TESTS();
  std::cerr << "usage: calllog_soak [CALLS [CURVE]]\n";
  return 1;
}
