#include "CallLogController.h"

#include "CallLogModel.h"
#include "CommonAPI.h"
#include "EtlMsgHandler.h"

namespace NS_CALLLOG {
namespace {

constexpr unsigned int kTimerMessage = 0x8113;

// The call type that a click action names; negative when it names none.
int TypeOf(const std::string& action) {
  return CommonAPI_ParseIdByClickAction(action, "call_log_x");
}

}  // namespace

CCallLogController* CCallLogController::m_pInst = nullptr;

CCallLogController::CCallLogController() = default;
CCallLogController::~CCallLogController() = default;

CCallLogController* CCallLogController::GetInstance() {
  if (m_pInst == nullptr) {
    m_pInst = new CCallLogController;
    m_pInst->MyInit();
  }
  return m_pInst;
}

void CCallLogController::ReleaseInstance() {
  if (m_pInst == nullptr) return;
  m_pInst->MyFinal();
  delete m_pInst;
  m_pInst = nullptr;
}

bool CCallLogController::MyInit() {
  if (m_pModel == nullptr) m_pModel = std::make_unique<CCallLogModel>();
  EtlMsgHandler_RegisterMsgHandle(kTimerMessage, kTimerMessage, OnMessage);
  return m_pModel != nullptr;
}

bool CCallLogController::MyFinal() {
  m_pModel.reset();
  EtlMsgHandler_UnregisterMsgHandle(kTimerMessage, kTimerMessage, OnMessage);
  return m_pModel == nullptr;
}

int CCallLogController::OnMessage(ETL_MsgQueueHelper::msgObject& msg) {
  if (msg.message != kTimerMessage) return 0;
  if (m_pInst == nullptr || m_pInst->m_pModel == nullptr) return 0;
  return m_pInst->m_pModel->HandleTimeoutMessage(msg);
}

int CCallLogController::GetLogListByClickAction(CallLogSimpleListData* page,
                                                const std::string& action) const {
  const int type = TypeOf(action);
  if (type < 0 || m_pModel == nullptr) return 0;
  return m_pModel->GetLogListByType(page, type);
}

int CCallLogController::GetLogDetailByClickAction(CallLogDetailData* detail,
                                                  const std::string& action, int row) const {
  const int type = TypeOf(action);
  if (type < 0 || m_pModel == nullptr) return 0;
  return m_pModel->GetLogDetailByIndex(detail, type, row);
}

int CCallLogController::RemoveLog(const std::string& action, int row) {
  const int type = TypeOf(action);
  if (type < 0 || m_pModel == nullptr) return 0;
  return m_pModel->RemoveLog(type, row);
}

int CCallLogController::RemoveLogList(const std::string& action, const std::list<int>& rows) {
  const int type = TypeOf(action);
  if (type < 0 || m_pModel == nullptr) return 0;
  return m_pModel->RemoveLogList(type, rows);
}

int CCallLogController::RemoveAllLogsByClickAction(const std::string& action) {
  const int type = TypeOf(action);
  if (type < 0 || m_pModel == nullptr) return 0;
  return m_pModel->RemoveAllLogs(type);
}

std::string CCallLogController::GetLastNewInCall() const {
  return m_pModel != nullptr ? m_pModel->GetLastNewInCall() : std::string();
}

std::string CCallLogController::GetLastOutCall() const {
  return m_pModel != nullptr ? m_pModel->GetLastOutCall() : std::string();
}

std::string CCallLogController::GetImagePathByType(int type) const {
  return m_pModel != nullptr ? m_pModel->GetImagePathByType(type) : std::string();
}

int CCallLogController::AddLog(const CallLogAddItemData& call) {
  return m_pModel != nullptr ? m_pModel->AddLog(call) : -1;
}

int CCallLogController::UpdateLog(const CallLogUpdateData& contact) {
  return m_pModel != nullptr ? m_pModel->UpdateLog(contact) : 0;
}

int CCallLogController::SaveToFile() { return m_pModel != nullptr ? m_pModel->SaveToFile() : 0; }

int CCallLogController::GetMissedNotifyList(MissedNotifyListData* list) const {
  return m_pModel != nullptr ? m_pModel->GetMissedNotifyList(list) : 0;
}

int CCallLogController::GetForwardedNotifyList(ForwardedNotifyList* list) const {
  return m_pModel != nullptr ? m_pModel->GetForwardedNotifyList(list) : 0;
}

void CCallLogController::ResetMissedCall() {
  if (m_pModel != nullptr) m_pModel->ResetMissedCall();
}

void CCallLogController::ResetForwardedCall() {
  if (m_pModel != nullptr) m_pModel->ResetForwardedCall();
}

void CCallLogController::RemoveMissedDirtyByNumber(const std::string& number) {
  if (m_pModel != nullptr) m_pModel->RemoveMissedDirtyByNumber(number);
}

void CCallLogController::RemoveForwardDirtyByNumber(const std::string& number) {
  if (m_pModel != nullptr) m_pModel->RemoveForwardDirtyByNumber(number);
}

}  // namespace NS_CALLLOG
