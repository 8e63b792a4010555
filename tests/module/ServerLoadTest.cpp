// Server call logs under load: many transfers at once, and documents as large as a server likes.
#include <sys/prctl.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <random>

#include "tests/support/HeapInUse.h"
#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using namespace NS_CALLLOG;

class ServerLoadTest : public ServerTest {
 protected:
  // The process's data that are looked at while `work` runs, in kB: what the kernel finds
  // referenced since it was told to forget. What a file backs counts for other processes, too.
  static int Touched(const std::function<void()>& work) {
    std::ofstream("/proc/self/clear_refs") << 1;
    work();
    std::ifstream maps("/proc/self/smaps");
    int sum = 0;
    bool data = false;
    for (std::string word; maps >> word;) {
      int size = 0;
      const bool permissions = word.size() == 4 && word.find_first_not_of("-rwxps") == word.npos;
      if (permissions) data = word == "rw-p";
      if (word == "Referenced:" && maps >> size && data) sum += size;
    }
    return sum;
  }
};

TEST_F(ServerLoadTest, FiftyTransfersAtOnce) {
  constexpr int kSources = 5;
  constexpr int kLists = 50;
  constexpr int kRounds = 20;
  constexpr std::size_t kSlack = 1 << 20;  // all rounds' lists take ten times as much
  std::mt19937 random(1);
  std::size_t before = 0;
  const auto select = [this](int list) {
    SetSource(list % kSources, "/" + std::to_string(list));
    return list % kSources;
  };
  const auto entries = [](int round, int list) {
    const std::string own = std::to_string(round) + "-" + std::to_string(list);
    return Strings(static_cast<std::size_t>(50 + list), own);
  };
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    for (int list = 0; list < kLists; ++list) {
      const std::string path = "/" + std::to_string(list);
      server.Misbehave(path, {Kind::kHold, 0, {}});
      EXPECT_EQ(Ask(select(list), "", list == 0), BS_LIST_DOWNLOADING);
    }
    EXPECT_EQ(platform->transfers.Running(), static_cast<std::size_t>(kLists));
    Strings expected;
    for (int list = 0; list < kLists; ++list) {
      const std::string name = std::to_string(list);
      EXPECT_TRUE(server.WaitForRequests("/" + name, round + 1));
      std::string document;
      for (const std::string& number : entries(round, list)) document += Entry(number);
      document = Document(document);
      std::filesystem::remove(documents() / name);
      const auto luck = random() % 4;  // 0: it is not there
      if (luck > 0) Serve(name, luck == 1 ? document.substr(0, document.size() / 2) : document);
      expected.push_back((luck > 1 ? "0 " : "1 ") + Url("/" + name));
      server.Misbehave("/" + name, {});
    }
    Strings told = Settle();
    std::sort(told.begin(), told.end());
    for (int list = 0; list < kLists; ++list) {
      const std::string& outcome = expected[static_cast<std::size_t>(list)];
      EXPECT_TRUE(std::binary_search(told.begin(), told.end(), outcome)) << outcome;
      const bool loaded = outcome.front() == '0';
      platform->networkUp = loaded;  // a failed one must not be fetched again
      EXPECT_EQ(Ask(select(list)), loaded ? BS_LIST_OK : BS_LIST_NO_NETWORK);
      EXPECT_EQ(Numbers(), loaded ? entries(round, list) : Strings{});
    }
    EXPECT_EQ(told.size(), expected.size());
    platform->networkUp = true;
    ExpectNothingLeft();
    platform->journal.Clear();
    page.Reset();
    EXPECT_EQ(Ask(kSources + 1, "", true), BS_LIST_NOT_CONFIGURED);
    if (round == 1) before = HeapInUse();
  }
  EXPECT_LT(HeapInUse(), before + kSlack);
}

TEST_F(ServerLoadTest, APageLooksAtItsRowsOnly) {
  prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);  // small pages: fine measure
  Boot({64 << 20, 10, 60, 300, 5});
  const auto touched = [this](int source, int first, int count) {
    page.Reset();
    page.request_index = first;
    page.request_count = count;
    const std::string action = "broadsoft_calllog_" + std::to_string(source);
    return Touched([&] { Logs().GetLogListByClickAction(&page, action, "", false); });
  };
  for (const int source : {0, 1}) {
    const int count = source == 0 ? 100 : 100000;
    std::string entries;
    for (int i = 0; i < count; ++i) entries += Entry(std::to_string(i));
    const std::string name = std::to_string(count);
    Serve(name, Document(entries));
    SetSource(source, "/" + name);
    EXPECT_EQ(Fetch(source), Strings{"0 " + Url("/" + name)});
    EXPECT_EQ(Ask(source), BS_LIST_OK);
    EXPECT_EQ(page.total, count);
  }
  const int idle = Touched([] {});
  if (idle == 0) GTEST_SKIP() << "this kernel does not tell which memory is looked at";
  const int ofFew = touched(0, 0, 10) - idle;
  const int last = touched(1, 99990, 10) - idle;
  EXPECT_EQ(page.items.back().display_name, "99999");
  const int first = touched(1, 0, 10) - idle;
  EXPECT_EQ(page.items.back().display_name, "9");
  const int all = touched(1, 0, 100000) - idle;
  EXPECT_LT(std::max(first, last) - ofFew, all / 100);
}

TEST_F(ServerLoadTest, RefusesWhatIsTooMuch) {
  constexpr std::size_t kBytes = 10 << 20;
  const std::string nested = Repeat("<a >", kBytes / 8) + Repeat("</a>", kBytes / 8);
  const std::string attribute = "<a a='" + Repeat("&#x41;", kBytes / 6) + "'/>";
  std::string attributes = "<a";
  for (int i = 0; attributes.size() < kBytes; ++i) attributes += " a" + std::to_string(i) + "=''";
  const struct {
    const char* what;
    std::string document;
    Behaviour behaviour;
    bool raised;  // the platform's limit
    int lParam;
  } kRows[] = {
      {"nested", nested, {}, false, 1},
      {"nested", nested, {}, true, 1},
      {"one attribute", attribute, {}, false, 1},
      {"one attribute", attribute, {}, true, 0},  // harmless
      {"many attributes", attributes + "/>", {}, true, 1},
      {"endless", "", {Kind::kEndless, 0, {}}, false, 1},
      {"endless", "", {Kind::kEndless, 0, {}}, true, 1},
  };
  Serve("Missed", Document(Entry("1")));
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Boot(row.raised ? TransferLimits{16 << 20, 10, 60, 300, 5} : TransferLimits());
    Serve("Big", row.document);
    SetSource(0, "/Big");
    SetSource(1, "/Missed");
    server.Misbehave("/Big", row.behaviour);
    EXPECT_EQ(Fetch(0), Strings{std::to_string(row.lParam) + " " + Url("/Big")});
    EXPECT_TRUE(Numbers().empty());
    server.Misbehave("/Big", {});
    EXPECT_EQ(Fetch(1), Strings{"0 " + Url("/Missed")});
    EXPECT_EQ(Numbers(), Strings{"1"});
  }
}

}  // namespace
}  // namespace desk
