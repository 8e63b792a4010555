// The document that a server sends. Whatever it is, its list is there or it is not; rows and
// details of one that is there agree, and none lies beyond the total.
#include "desktop/platform/transfer/Transfer.h"
#include "platform/TaskAction.h"
#include "tests/fuzz/Fuzz.h"

// The transfers of this program: each has succeeded when it starts, with the document that is in
// place. They stand before those of the platform's library.
static desk::Transfer transfer;

NS_TA::CNetworkFileAction* TaskAction_CreateNetworkFileAction(const char* localPath,
                                                              const char* remoteUrl) {
  transfer.localPath = localPath;
  transfer.remoteUrl = remoteUrl;
  return &transfer;
}

bool TaskAction_ExecAction(NS_TA::CTaskAction* /*action*/) {
  transfer.state = desk::Transfer::State::kSucceeded;
  return true;
}

void TaskAction_DestroyNetworkFileAction(NS_TA::CNetworkFileAction* /*action*/) {}

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

CBSCallLogController& Lists() { return *CBSCallLogController::GetInstance(); }

class ServerPhone : public FuzzPhone {
 public:
  ServerPhone() {
    BroadSoftConfigItem source;
    source.name = source.server = "server.example.org";
    Lists().SetConfigDataByIndex(0, source);
  }

  // False when it cannot be loaded.
  bool Load(const std::string& document) {
    platform->journal.Clear();
    WriteFile("tmp/BroadSoftCallLog.xml", document);
    EXPECT_EQ(Ask(true), NS_CALLLOG::BS_LIST_DOWNLOADING);
    transfer.callback->OnTaskActionCallback(&transfer);
    return platform->loop.TakeAppMessages().at(0).lParam == 0;
  }
  int Ask(bool refresh) {
    page.Reset();
    page.request_count = 1'000'000;
    return Lists().GetLogListByClickAction(&page, "OpenSubPage(broadsoft_calllog_0)", "", refresh);
  }

  CallLogSimpleListData page;
};

}  // namespace

void FuzzOne(const std::string& input) {
  static ServerPhone phone;
  if (!phone.Load(input)) return;
  EXPECT_EQ(phone.Ask(false), NS_CALLLOG::BS_LIST_OK);
  int index = 0;
  CallLogDetailData call;
  for (const CallLogSimpleData& row : phone.page.items) {
    EXPECT_TRUE(Lists().GetLogDetailByIndex(&call, index++));
    EXPECT_EQ(row.display_name, call.display_name.empty() ? call.number : call.display_name);
    EXPECT_EQ(row.time_text, call.time_text);
  }
  EXPECT_EQ(phone.page.total, index);
  EXPECT_FALSE(Lists().GetLogDetailByIndex(&call, index));
}

}  // namespace desk
