// The singleton of the local history: it turns click actions into call types and forwards; what is
// done is the model's. Without a model every operation gives its failure value.
#include "CallLogController.h"

#include "CallLogModel.h"
#include "CommonAPI.h"
#include "Directory.h"
#include "EtlMsgHandler.h"
#include "TalkLogic.h"

namespace NS_CALLLOG {
namespace {

constexpr char kRedialAction[] = "OpenSubPage(call_log_2)";
constexpr int kDefaultAccount = -1;

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

void CCallLogController::RedialNumberByClickAction(const std::string& action) {
  if (action != kRedialAction) return;
  const std::string number = GetLastOutCall();
  if (number.empty()) return;
  std::string name = Directory_GetContactNameByNumber(number.c_str());
  if (name.empty()) name = number;
  talkLogic_CallOut(number, name, m_pModel->GetLastOutCallAccounId());
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

int CCallLogController::ResetLogContactName() {
  return m_pModel != nullptr ? m_pModel->ResetLogContactName() : 0;
}

void CCallLogController::UpdateDispName(const std::list<SuperSearchItemData>& names) {
  if (m_pModel != nullptr) m_pModel->UpdateDispName(names);
}

int CCallLogController::SaveToFile() { return m_pModel != nullptr ? m_pModel->SaveToFile() : 0; }

int CCallLogController::Search(CallLogSearchListData* page, const std::string& key) {
  return m_pModel != nullptr ? m_pModel->Search(page, key) : 0;
}

int CCallLogController::SearchRecentOutCall(CallLogSearchListData* page) const {
  return m_pModel != nullptr ? m_pModel->SearchRecentOutCall(page) : 0;
}

int CCallLogController::SearchRecentOutCall(SuperSearchListData* page) const {
  return m_pModel != nullptr ? m_pModel->SearchRecentOutCall(page) : 0;
}

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

bool CCallLogController::GetContactDataByNumber(ContactGeneralItemData* contact,
                                                const std::string& number) const {
  return Directory_GetContactDataByNumber(contact, number.c_str());
}

bool CCallLogController::CallOut(const std::string& number, const std::string& name) {
  return talkLogic_CallOut(number, name, kDefaultAccount);
}

void CCallLogController::EnterTalkUI(const std::string& number) {
  talkLogic_EnterDialUI(number, kDefaultAccount, true);
}

}  // namespace NS_CALLLOG
