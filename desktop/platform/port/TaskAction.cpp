// The task-action functions: what a module sees of the transfers of Transfer.h.
#include "platform/TaskAction.h"

#include "desktop/platform/Quietly.h"
#include "desktop/platform/transfer/Transfer.h"
#include "platform/EtlMsgHandler.h"

using desk::Transfer;
using desk::TransferService;

namespace NS_TA {

CTaskActionCallbackBase::~CTaskActionCallbackBase() {
  if (TransferService* const service = TransferService::Current()) service->Detach(this);
}

bool CTaskActionCallbackBase::TryThreadMessage(ETL_MsgQueueHelper::msgObject& msg) {
  const TransferService* const service = TransferService::Current();
  if (msg.message != TransferService::kEndedMessage || service == nullptr) return false;
  Transfer* const transfer = service->FindEnded(msg.wParam);
  if (transfer == nullptr || transfer->callback != this) return false;
  OnTaskActionCallback(transfer);
  return true;
}

// Every action is a Transfer: the service alone makes them.

void CTaskAction::SetRead(bool read) { static_cast<Transfer*>(this)->read = read; }

void CTaskAction::SetSync(bool sync) { static_cast<Transfer*>(this)->sync = sync; }

void CTaskAction::SetCallback(CTaskActionCallbackBase* callback) {
  static_cast<Transfer*>(this)->callback = callback;
}

int CTaskAction::GetRequestType() const {
  constexpr int kNetworkFile = 2;
  return kNetworkFile;
}

bool CTaskAction::IsOperationSucceed() const {
  return static_cast<const Transfer*>(this)->state == Transfer::State::kSucceeded;
}

std::string CFileAction::GetFilePath() const {
  return static_cast<const Transfer*>(this)->localPath;
}

std::string CNetworkFileAction::GetFilePathRemote() const {
  return static_cast<const Transfer*>(this)->remoteUrl;
}

}  // namespace NS_TA

NS_TA::CNetworkFileAction* TaskAction_CreateNetworkFileAction(const char* localPath,
                                                              const char* remoteUrl) {
  TransferService* const service = TransferService::Current();
  return service != nullptr ? service->Create(localPath, remoteUrl) : nullptr;
}

bool TaskAction_ExecAction(NS_TA::CTaskAction* action) {
  TransferService* const service = TransferService::Current();
  if (service == nullptr || action == nullptr) return false;
  bool started = false;
  desk::Quietly([&] { started = service->Start(*static_cast<Transfer*>(action)); });
  return started;
}

void TaskAction_DestroyNetworkFileAction(NS_TA::CNetworkFileAction* action) {
  if (TransferService* const service = TransferService::Current()) service->Destroy(action);
}
