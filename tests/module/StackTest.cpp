// How much of the stack each operation takes, on a full history: it runs on a stack that was
// painted before, and what has lost its paint was touched. That includes what the desktop platform,
// TinyXML and the C library take below the module.
#include <ucontext.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/Directory.h"
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
  static constexpr char kNumber[] = "1001";

  StackTest() {
    platform->config["HistorySavedSwitch"] = 1;
    for (int type = 1; type <= 4; ++type) {
      for (int i = 0; i < 100; ++i) Add(type, std::to_string(1000 + i), kNow - i);
    }
    EXPECT_EQ(Controller().SaveToFile(), 1);
    SetSource(0, "/Missed");
    Serve("Missed", Document(Repeat(Entry(kNumber), 100)));
    search.request_count = most.request_count = 500;
  }

  static void Expect(const char* operation, const std::function<void()>& work) {
    const std::size_t bytes = StackOf(work);
    std::printf("  %6zu  %s\n", bytes, operation);
    EXPECT_LE(bytes, kBound) << operation;
  }

  CallLogSearchListData search;
  SuperSearchListData most;
  CallLogDetailData detail;
};

TEST_F(StackTest, TheHistory) {
  page.request_count = 500;
  MissedNotifyListData missed;
  ForwardedNotifyList forwarded;
  CallLogUpdateData contact;
  contact.number_1 = kNumber;
  contact.display_name = "Zo\u00EB";
  ContactGeneralItemData entry;
  ETL_MsgQueueHelper::msgObject timer;
  timer.message = 0x8113;
  timer.wParam = 90010;

  CCallLogController::ReleaseInstance();
  Expect("GetInstance, loads", [] { CCallLogController::GetInstance(); });
  Expect("CallLog_AddLog", [] { Add(2, kNumber), Add(4, kNumber); });
  Expect("GetMissedNotifyList", [&] { Controller().GetMissedNotifyList(&missed); });
  Expect("GetForwardedNotifyList", [&] { Controller().GetForwardedNotifyList(&forwarded); });
  Expect("RemoveMissedDirtyByNumber", [] { RemoveMissedDirtyByNumber(kNumber); });
  Expect("RemoveForwardDirtyByNumber", [] { RemoveForwardDirtyByNumber(kNumber); });
  Expect("GetLogListByClickAction",
         [&] { Controller().GetLogListByClickAction(&page, Action(0)); });
  Expect("GetLogDetailByClickAction",
         [&] { Controller().GetLogDetailByClickAction(&detail, Action(0), 399); });
  Expect("CallLog_UpdateLog", [&] { CallLog_UpdateLog(contact); });
  Expect("UpdateDispName", [] { Controller().UpdateDispName({500, SuperSearchItemData()}); });
  Expect("CallLog_Search, digits", [&] { CallLog_Search(&search, "1"); });
  Expect("CallLog_Search, letters", [&] { CallLog_Search(&search, "z"); });
  Expect("CallLog_SearchRecentOutCall", [&] { CallLog_SearchRecentOutCall(&search); });
  Expect("CallLog_SuperSearchRecentOutCall", [&] { CallLog_SuperSearchRecentOutCall(&most); });
  Expect("CallLog_ResetLogContactName", [] { CallLog_ResetLogContactName(); });
  Expect("CallLog_GetLastNewInCall", [] { CallLog_GetLastNewInCall(); });
  Expect("CallLog_GetLastOutCall", [] { CallLog_GetLastOutCall(); });
  Expect("GetImagePathByType", [] { Controller().GetImagePathByType(4); });
  Expect("GetContactDataByNumber", [&] { Controller().GetContactDataByNumber(&entry, kNumber); });
  Expect("RedialNumberByClickAction", [] { Controller().RedialNumberByClickAction(Action(2)); });
  Expect("CallOut", [] { Controller().CallOut(kNumber, "Zo\u00EB"); });
  Expect("EnterTalkUI", [] { Controller().EnterTalkUI(kNumber); });
  Expect("OnMessage, saves", [&] { EXPECT_EQ(Controller().OnMessage(timer), 1); });
  Expect("RemoveLog", [] { Controller().RemoveLog(Action(0), 0); });
  Expect("RemoveLogList", [] { Controller().RemoveLogList(Action(0), {5, 300, 7, 5}); });
  Expect("SaveToFile", [] { EXPECT_EQ(Controller().SaveToFile(), 1); });
  Expect("RemoveAllLogsByClickAction", [] { Controller().RemoveAllLogsByClickAction(Action(0)); });
  Expect("ReleaseInstance", [] { CCallLogController::ReleaseInstance(); });
  WriteFile(HistoryFile(), Repeat("<root_call_log>", 64) + Repeat("</root_call_log>", 64));
  Expect("GetInstance, loads a file nested 64 deep", [] { CCallLogController::GetInstance(); });
}

TEST_F(StackTest, TheServerLists) {
  CallLog_RegisterMessage();
  const auto change = [this](unsigned int item) { platform->loop.Send({0x10007, item, 0, {}}); };

  CBSCallLogController::ReleaseInstance();
  Expect("GetInstance, loads the sources", [] { CBSCallLogController::GetInstance(); });
  Expect("CallLog_IsBroadSoftCallLogConfigured", [] { CallLog_IsBroadSoftCallLogConfigured(); });
  Expect("CallLog_GetBSCallLogDisplayName", [] { CallLog_GetBSCallLogDisplayName(); });
  Expect("GetConfiguredItemName", [] { Logs().GetConfiguredItemName(0); });
  Expect("GetConfigDataByIndex", [] { Logs().GetConfigDataByIndex(0); });
  Expect("SetConfigDataByIndex", [this] { SetSource(0, "/Missed"); });
  Expect("GetLogListByClickAction, downloads", [this] { Ask(0); });
  Expect("a list that has arrived",
         [this] { EXPECT_EQ(Settle(), Strings{"0 " + Url("/Missed")}); });
  Expect("GetLogListByClickAction", [this] { Ask(0); });
  Expect("GetLogDetailByIndex", [this] { EXPECT_TRUE(Logs().GetLogDetailByIndex(&detail, 99)); });
  Expect("CancelDownload", [] { EXPECT_TRUE(Logs().CancelDownload()); });
  Serve("Missed", Repeat("<Missed>", 64) + Repeat("</Missed>", 64));
  Ask(0);
  Expect("a list nested 64 deep", [this] { EXPECT_EQ(Settle(), Strings{"0 " + Url("/Missed")}); });
  Expect("ReloadBSCallLogConfig", [] { EXPECT_TRUE(Logs().ReloadBSCallLogConfig()); });
  Expect("configuration message 0x28", [&] { change(0x28); });
  Expect("configuration message 0x47", [&] { change(0x47); });
  Expect("ReleaseInstance", [] { CBSCallLogController::ReleaseInstance(); });
}

}  // namespace
}  // namespace desk
