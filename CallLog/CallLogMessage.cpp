// The handler of the platform's configuration-change message.
#include "CallLog.h"
#include "CallLog/Failure.h"
#include "CallLogMessages.h"
#include "platform/EtlMsgHandler.h"
#include "platform/EtlTrace.h"
#include "platform/MenuTitle.h"

namespace NS_CALLLOG {
namespace {

constexpr unsigned int kRemovalItem = 0x47;
constexpr char kMenuAction[] = "OpenCallLogPage(broadsoft_calllog_list.xml)";
constexpr char kDefaultTitle[] = "Broadsoft CallLog";
constexpr char kRemovalAction[] = "OpenCallLogPage(local_contact_1)";

void SetMenuTitle() {
  auto* const titles = NS_MENU::CMenuTitleManager::GetInstance();
  if (titles == nullptr) return;
  const std::string name = CallLog_GetBSCallLogDisplayName();
  titles->SetTitle(kMenuAction, name.empty() ? kDefaultTitle : name);
}

void OnSourcesChanged(ETL_MsgQueueHelper::msgObject& msg) {
  ETL_TraceHelper::etlTrace(2, "CallLog: Receive MSG [ST_BS_CALLLOG]");
  auto* const controller = CBSCallLogController::GetInstance();
  if (controller != nullptr) controller->ReloadBSCallLogConfig();
  IgnoreFailure(SetMenuTitle);
  IgnoreFailure([] { EtlMsgHandler_NotifyApp(false, MSG_BS_CALLLOG_RELOADED, 0, 0); });
  msg.ReplyMessage(1);
}

// Whether the action names a call type at all is for the platform's parser to say.
void OnRemoval(const ETL_MsgQueueHelper::msgObject& msg) {
  ETL_TraceHelper::etlTrace(
      3, "CCallLogController::OnMessage [BROAD_MSG_CONFIG_CHANGE] wParam[0x%x]", msg.wParam);
  auto* const controller = CCallLogController::GetInstance();
  if (controller != nullptr) controller->RemoveAllLogsByClickAction(kRemovalAction);
}

}  // namespace

int OnCallLogMessage(ETL_MsgQueueHelper::msgObject& msg) {
  IgnoreFailure([&] {
    if (msg.wParam == ST_BS_CALLLOG) {
      OnSourcesChanged(msg);
    } else if (msg.wParam == kRemovalItem) {
      OnRemoval(msg);
    }
  });
  return 0;
}

}  // namespace NS_CALLLOG

int CallLog_RegisterMessage() {
  return NS_CALLLOG::OrFailure(0, [] {
    EtlMsgHandler_RegisterMsgHandle(BROAD_MSG_CONFIG_CHANGE, BROAD_MSG_CONFIG_CHANGE,
                                    NS_CALLLOG::OnCallLogMessage);
    return 1;
  });
}
