// How much of the stack the deepest operations take, on a full history: each runs on a stack that
// was painted before, and what has lost its paint was touched. That includes what the desktop
// platform, TinyXML and the C library take below the module.
#include <ucontext.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;
using NS_CALLLOG::CCallLogController;

// A fifth more than the deepest takes: reading a document as nested as one may be, on aarch64.
constexpr std::size_t kBound = 24 * 1024;
constexpr unsigned char kPaint = 0xA5;

const std::function<void()>* running = nullptr;

void Enter() { (*running)(); }

std::size_t StackOf(const std::function<void()>& work) {
  std::vector<unsigned char> stack(1024 * 1024, kPaint);
  ucontext_t here;
  ucontext_t there;
  getcontext(&there);
  there.uc_stack.ss_sp = stack.data();
  there.uc_stack.ss_size = stack.size();
  there.uc_link = &here;
  running = &work;
  makecontext(&there, Enter, 0);
  swapcontext(&here, &there);
  const auto deepest = std::find_if(stack.begin(), stack.end(), [](int b) { return b != kPaint; });
  return static_cast<std::size_t>(stack.end() - deepest);
}

class StackTest : public ServerTest {
 protected:
  static void Expect(const char* operation, const std::function<void()>& work) {
    const std::size_t bytes = StackOf(work);
    std::printf("  %6zu  %s\n", bytes, operation);
    EXPECT_LE(bytes, kBound) << operation;
  }
};

TEST_F(StackTest, TheDeepestCallsOfTheHistory) {
  platform->config["HistorySavedSwitch"] = 1;
  for (int i = 0; i < 400; ++i) Add(1 + i % 4, std::to_string(1000 + i), kNow - i);
  Expect("SaveToFile", [] { EXPECT_EQ(Controller().SaveToFile(), 1); });
  CCallLogController::ReleaseInstance();
  Expect("GetInstance, loads", [] { CCallLogController::GetInstance(); });
  Expect("CallLog_AddLog", [] { EXPECT_EQ(Add(4, "1001"), 0); });
  CCallLogController::ReleaseInstance();
  WriteFile(HistoryFile(), Repeat("<root_call_log>", 64) + Repeat("</root_call_log>", 64));
  Expect("GetInstance, loads a file nested 64 deep", [] { CCallLogController::GetInstance(); });
}

TEST_F(StackTest, TheDeepestCallsOfTheServerLists) {
  CallLog_RegisterMessage();
  Offer(0, "Missed", Document(Repeat(Entry("1001"), 100)));
  CBSCallLogController::ReleaseInstance();
  const Strings arrived = {"0 " + Url("/Missed")};
  Expect("GetInstance, loads the sources", [] { CBSCallLogController::GetInstance(); });
  Expect("GetLogListByClickAction, downloads", [&] { Ask(0); });
  Expect("a list that has arrived", [&] { EXPECT_EQ(Settle(), arrived); });
  Serve("Missed", Repeat("<Missed>", 64) + Repeat("</Missed>", 64));
  Ask(0, "", true);
  Expect("a list nested 64 deep", [&] { EXPECT_EQ(Settle(), arrived); });
  Expect("configuration message 0x28", [&] { platform->loop.Send({0x10007, 0x28, 0, {}}); });
}

}  // namespace
}  // namespace desk
