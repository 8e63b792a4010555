// Tests of the module's coming and going: what creates the controller, which messages its handler
// takes, and what a release leaves.
#include <functional>

#include "platform/EtlMsgHandler.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;

constexpr unsigned int kTimerMessage = 0x8113;
constexpr unsigned int kSaveTimer = 90010;
const Strings kRegister = {"register 0x8113-0x8113"};
const Strings kUnregister = {"unregister 0x8113-0x8113"};

class ControllerTest : public PhoneTest {
 protected:
  static int Handle(unsigned int message, unsigned int wParam) {
    ETL_MsgQueueHelper::msgObject msg;
    msg.message = message;
    msg.wParam = wParam;
    return CCallLogController::OnMessage(msg);
  }
};

TEST_F(ControllerTest, OnlyTheFirstUseReadsTheHistory) {
  const std::vector<std::function<void()>> uses = {
      [] { CCallLogController::GetInstance(); },
      [] { EXPECT_EQ(Add(3, "added"), 0); },
      [] { EXPECT_EQ(CallLog_UpdateLog(CallLogUpdateData()), 1); },
      [] { RemoveMissedDirtyByNumber(""); },
      [] { RemoveForwardDirtyByNumber(""); },
      [] { CallLog_GetLastNewInCall(); },
      [] { EXPECT_EQ(CallLog_GetLastOutCall(), "stored"); }};
  for (const auto& use : uses) {
    WriteFile(HistoryFile(),
              "<root_call_log><item type=\"1\" remote_sip_name=\"stored\"/></root_call_log>");
    use();
    EXPECT_EQ(TakeJournal({""}).front(), kRegister.front());
    const CCallLogController* const controller = CCallLogController::GetInstance();
    WriteFile(HistoryFile(), "<root_call_log/>");
    use();
    EXPECT_EQ(CCallLogController::GetInstance(), controller);
    EXPECT_EQ(Names(0).back(), "stored");
    EXPECT_EQ(TakeJournal({"register", "unregister"}), Strings());
    CCallLogController::ReleaseInstance();
    EXPECT_EQ(TakeJournal({""}), kUnregister);
  }
}

TEST_F(ControllerTest, WhatNeedsNoControllerCreatesNone) {
  for (int run = 0; run < 2; ++run) {
    RemoveMissedDirtyByNumber(nullptr), RemoveForwardDirtyByNumber(nullptr);
    EXPECT_EQ(Handle(kTimerMessage, kSaveTimer), 0);
    WaitForSave();
    CCallLogController::ReleaseInstance();
    EXPECT_EQ(TakeJournal({""}), Strings());
    EXPECT_FALSE(std::filesystem::exists(HistoryFile()));
    Add(1, "100");  // once more after a release with something to save
    CCallLogController::ReleaseInstance();
    TakeJournal({""});
  }
}

TEST_F(ControllerTest, TheHandlerTakesTheSaveTimersMessageOnly) {
  Add(1, "100");
  std::vector<int> results;
  platform->loop.SetObserver([&](const Message&, int result) { results.push_back(result); });
  for (const unsigned int message : {kTimerMessage - 1, kTimerMessage + 1}) {
    platform->loop.Send({message, kSaveTimer, 0, {}});  // does not reach the handler
    EXPECT_EQ(Handle(message, kSaveTimer), 0);
  }
  for (const auto timer : {kSaveTimer - 1, kSaveTimer + 1}) {
    platform->timers.Set(timer, Milliseconds(9));
  }
  platform->Advance(Milliseconds(4999));
  EXPECT_EQ(results, (std::vector<int>{0, 0}));
  platform->Advance(Milliseconds(1));
  platform->loop.Send({kTimerMessage, kSaveTimer, 0, {}});  // nothing is left to save
  EXPECT_EQ(results, (std::vector<int>{0, 0, 1, 0}));
}

TEST_F(ControllerTest, AReleaseForgetsWhatWasNotSavedAndWhatWasNew) {
  for (const int type : {4, 2}) Add(type, "saved");
  EXPECT_EQ(Controller().SaveToFile(), 1);
  EXPECT_EQ(Controller().SaveToFile(), 0);
  Add(2, "lost");
  CCallLogController::ReleaseInstance();
  TakeJournal({""});
  CCallLogController::GetInstance();
  WaitForSave();  // the timer of the lost change finds nothing to save
  EXPECT_EQ(TakeJournal({""}), kRegister);
  for (const int type : {4, 2}) Add(type, "added");
  EXPECT_EQ(platform->display.statuses[12] + platform->display.statuses[15], "1 Missed1 Forwarded");
  EXPECT_EQ(Names(0), (Strings{"saved", "saved", "added", "added"}));
}

}  // namespace
}  // namespace desk
