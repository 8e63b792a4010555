// The desktop platform's own promises: the message loop, timers on a moved clock, what is written
// out.
#include <climits>
#include <thread>

#include "desktop/platform/Text.h"
#include "platform/CommonAPI.h"
#include "platform/EtlMsgHandler.h"
#include "platform/EtlTrace.h"
#include "platform/ThreadTimer.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

Strings handled;

int Note(ETL_MsgQueueHelper::msgObject& msg) {
  handled.push_back(Format("%x %u %d", msg.message, msg.wParam, msg.lParam));
  return 0;
}

int ReplyAndLeave(ETL_MsgQueueHelper::msgObject& msg) {
  handled.push_back("leaves");
  msg.ReplyMessage(5);
  msg.ReplyMessage(6);
  EtlMsgHandler_UnregisterMsgHandle(10, 20, ReplyAndLeave);
  EtlMsgHandler_UnregisterMsgHandle(15, 15, Note);
  return 0;
}

class PlatformTest : public PhoneTest {
 protected:
  PlatformTest() { handled.clear(); }
  static Strings TakeHandled() { return std::exchange(handled, {}); }
};

TEST_F(PlatformTest, HandlersAreFoundByRangeAndRemovedByRangeAndFunction) {
  EXPECT_FALSE(EtlMsgHandler_RegisterMsgHandle(2, 1, Note));
  EXPECT_FALSE(EtlMsgHandler_RegisterMsgHandle(1, 2, nullptr));
  EXPECT_TRUE(EtlMsgHandler_RegisterMsgHandle(10, 20, ReplyAndLeave));
  EXPECT_FALSE(EtlMsgHandler_RegisterMsgHandle(10, 20, ReplyAndLeave));
  EXPECT_TRUE(EtlMsgHandler_RegisterMsgHandle(15, 15, Note));
  EXPECT_TRUE(EtlMsgHandler_RegisterMsgHandle(20, 30, Note));
  EXPECT_FALSE(EtlMsgHandler_UnregisterMsgHandle(20, 31, Note));
  EXPECT_EQ(platform->loop.Send({15, 1, -1, {}}), 5) << "the first reply counts";
  EXPECT_EQ(TakeHandled(), Strings{"leaves"}) << "one handler removed itself and the next";
  EXPECT_EQ(platform->loop.Send({15, 1, -1, {}}), std::nullopt);
  platform->loop.Send({30, 1, -1, {}});
  platform->loop.Send({31, 1, -1, {}});
  EXPECT_EQ(TakeHandled(), Strings{"1e 1 -1"});
}

TEST_F(PlatformTest, PostsOfAnyThreadAreDeliveredOnTheLoopsThread) {
  constexpr unsigned int kEach = 500;
  EtlMsgHandler_RegisterMsgHandle(1, 4, Note);
  std::vector<std::thread> threads;
  for (unsigned int message = 1; message <= 4; ++message) {
    threads.emplace_back([&, message] {
      for (unsigned int i = 0; i < kEach; ++i) platform->loop.Post({message, i, 0, {}});
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(TakeHandled().empty());
  EXPECT_TRUE(platform->loop.WaitForPost(Milliseconds(0)));
  EXPECT_EQ(platform->loop.Deliver(), 4 * kEach);
  EXPECT_EQ(TakeHandled().size(), 4 * kEach);
}

TEST_F(PlatformTest, OnlyTheNewestOfWhatNobodyTakesIsKept) {
  constexpr int kMessages = 1000;
  constexpr int kLines = static_cast<int>(Journal::kCapacity);
  for (int i = 0; i < kLines + kMessages; ++i) EtlMsgHandler_NotifyApp(false, 1, 0, i);
  const std::vector<Message> told = platform->loop.TakeAppMessages();
  ASSERT_EQ(told.size(), std::size_t{kMessages});
  EXPECT_EQ(told.front().lParam, kLines);
  const Strings lines = platform->journal.Lines();
  ASSERT_EQ(lines.size(), std::size_t{kLines});
  EXPECT_EQ(lines.front(), Format("app 0x1 0 %d", kMessages));
}

TEST_F(PlatformTest, TimersFireOnceInTheOrderOfTheirTimes) {
  EtlMsgHandler_RegisterMsgHandle(0x8113, 0x8113, Note);
  timerSetThreadTimer(1, 300);
  timerSetThreadTimer(2, 100);
  timerSetThreadTimer(3, 200);
  timerSetThreadTimer(1, 50);  // starts anew
  EXPECT_TRUE(timerKillThreadTimer(3));
  EXPECT_FALSE(timerKillThreadTimer(3));
  platform->Advance(Milliseconds(99));
  EXPECT_EQ(TakeHandled(), Strings{"8113 1 0"});
  platform->Advance(Milliseconds(1));
  EXPECT_EQ(TakeHandled(), Strings{"8113 2 0"});
  platform->Advance(std::chrono::hours(24));
  EXPECT_TRUE(TakeHandled().empty());
  EXPECT_EQ(platform->clock().Wall(), kNow + 24 * 3600);
}

TEST_F(PlatformTest, AFileOfTraceHoldsNeitherPasswordsNorControls) {
  platform->trace.SetLevel(2);
  ASSERT_TRUE(platform->trace.SetFile(root.path() / "trace"));
  const struct {
    int level;
    const char* text;
  } rows[] = {
      {2, "[http://anna@example.org:p@ss:1@h:8080/user/anna@example.org/Missed] twice"},
      {2, "http://u:p@h/p and https://u:p@h"},
      {2, "http://anna@h:p@ss/anna@h"},
      {2, "http://anna@h:p/anna@h/p"},
      {2, "http://anna@h:p@johanna@h/p"},
      {2, "name \x1B[31m\xC3\xE2\x80\xAE\n[2] forged"},
      {3, "too fine"},
      {1, "no://credentials/here@all http://anna:se/cr@et@h/x"},
  };
  for (const auto& row : rows) ETL_TraceHelper::etlTrace(row.level, "%s", row.text);
  EXPECT_EQ(ReadFile(root.path() / "trace"),
            "[2] [http://***@h:8080/user/anna@example.org/Missed] twice\n"
            "[2] http://***@h\n"
            "[2] http://***@h\n"
            "[2] http://***@h/p\n"
            "[2] http://***@h/p\n"
            "[2] name \\x1B[31m\\xC3\\xE2\\x80\\xAE\\x0A[2] forged\n"
            "[1] no://***@h/x\n");
}

TEST_F(PlatformTest, PagesStayWithinInt) {
  const struct {
    int index, count, from, to;  // from -1: refused
  } pages[] = {{0, 1, 0, 1},
               {399, 5, 399, 404},
               {INT_MAX, 1, INT_MAX, INT_MAX},
               {5, INT_MAX, 5, INT_MAX},
               {-1, 5, -1, -1},
               {0, 0, -1, -1},
               {0, INT_MIN, -1, -1}};
  for (const auto& page : pages) {
    int from = -1;
    int to = -1;
    EXPECT_EQ(CommonAPI_GetFromAndToIndex(&from, &to, page.index, page.count, 100), page.from >= 0);
    EXPECT_EQ(from, page.from);
    EXPECT_EQ(to, page.to);
  }
}

}  // namespace
}  // namespace desk
