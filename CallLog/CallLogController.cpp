// The singleton of the local history: it turns click actions into call types and forwards; what is
// done is the model's. Without a model, and when memory runs out, every operation gives its failure
// value.
#include "CallLogController.h"

#include <new>

#include "CallLog/CallLogModel.h"
#include "CallLog/Failure.h"
#include "platform/CommonAPI.h"
#include "platform/Directory.h"
#include "platform/EtlMsgHandler.h"
#include "platform/TalkLogic.h"

namespace NS_CALLLOG {
namespace {

constexpr char kRedialAction[] = "OpenSubPage(call_log_2)";
constexpr int kDefaultAccount = -1;

// The call type that a click action names; negative when it names none.
int TypeOf(const std::string& action) {
  return CommonAPI_ParseIdByClickAction(action, "call_log_x");
}

using Model = CCallLogModel;

// What an operation of the model on the action's call type gives; 0 when there is no such type.
template <class Operation>
int AskForType(const std::unique_ptr<Model>& model, const std::string& action,
               const Operation& operation) {
  return OrFailure(0, [&]() -> int {
    const int type = TypeOf(action);
    return type < 0 || model == nullptr ? 0 : operation(*model, type);
  });
}

}  // namespace

CCallLogController* CCallLogController::m_pInst = nullptr;

CCallLogController::CCallLogController() = default;
CCallLogController::~CCallLogController() = default;

CCallLogController* CCallLogController::GetInstance() {
  if (m_pInst == nullptr) {
    m_pInst = new (std::nothrow) CCallLogController;
    if (m_pInst != nullptr && !OrFailure(false, [] { return m_pInst->MyInit(); })) {
      ReleaseInstance();
    }
  }
  return m_pInst;
}

void CCallLogController::ReleaseInstance() {
  if (m_pInst == nullptr) return;
  IgnoreFailure([] { m_pInst->MyFinal(); });
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
  if (msg.message != kTimerMessage || m_pInst == nullptr) return 0;
  return Ask(m_pInst->m_pModel, 0, &CCallLogModel::HandleTimeoutMessage, msg);
}

int CCallLogController::GetLogListByClickAction(CallLogSimpleListData* page,
                                                const std::string& action) const {
  return AskForType(m_pModel, action,
                    [&](Model& model, int type) { return model.GetLogListByType(page, type); });
}

int CCallLogController::GetLogDetailByClickAction(CallLogDetailData* detail,
                                                  const std::string& action, int row) const {
  return AskForType(m_pModel, action, [&](Model& model, int type) {
    return model.GetLogDetailByIndex(detail, type, row);
  });
}

int CCallLogController::RemoveLog(const std::string& action, int row) {
  return AskForType(m_pModel, action,
                    [&](Model& model, int type) { return model.RemoveLog(type, row); });
}

int CCallLogController::RemoveLogList(const std::string& action, const std::list<int>& rows) {
  return AskForType(m_pModel, action,
                    [&](Model& model, int type) { return model.RemoveLogList(type, rows); });
}

int CCallLogController::RemoveAllLogsByClickAction(const std::string& action) {
  return AskForType(m_pModel, action,
                    [](Model& model, int type) { return model.RemoveAllLogs(type); });
}

void CCallLogController::RedialNumberByClickAction(const std::string& action) {
  if (action != kRedialAction) return;
  IgnoreFailure([this] {
    const std::string number = GetLastOutCall();
    if (number.empty()) return;
    std::string name = Directory_GetContactNameByNumber(number.c_str());
    if (name.empty()) name = number;
    talkLogic_CallOut(number, name, m_pModel->GetLastOutCallAccounId());
  });
}

std::string CCallLogController::GetLastNewInCall() const {
  return Ask(m_pModel, std::string(), &Model::GetLastNewInCall);
}

std::string CCallLogController::GetLastOutCall() const {
  return Ask(m_pModel, std::string(), &Model::GetLastOutCall);
}

std::string CCallLogController::GetImagePathByType(int type) const {
  return Ask(m_pModel, std::string(), &Model::GetImagePathByType, type);
}

int CCallLogController::AddLog(const CallLogAddItemData& call) {
  return Ask(m_pModel, -1, &Model::AddLog, call);
}

int CCallLogController::UpdateLog(const CallLogUpdateData& contact) {
  return Ask(m_pModel, 0, &Model::UpdateLog, contact);
}

int CCallLogController::ResetLogContactName() {
  return Ask(m_pModel, 0, &Model::ResetLogContactName);
}

void CCallLogController::UpdateDispName(const std::list<SuperSearchItemData>& names) {
  Tell(m_pModel, &Model::UpdateDispName, names);
}

int CCallLogController::SaveToFile() { return Ask(m_pModel, 0, &Model::SaveToFile); }

int CCallLogController::Search(CallLogSearchListData* page, const std::string& key) {
  return Ask(m_pModel, 0, &Model::Search, page, key);
}

int CCallLogController::SearchRecentOutCall(CallLogSearchListData* page) const {
  return Ask(m_pModel, 0, [&](Model& model) { return model.SearchRecentOutCall(page); });
}

int CCallLogController::SearchRecentOutCall(SuperSearchListData* page) const {
  return Ask(m_pModel, 0, [&](Model& model) { return model.SearchRecentOutCall(page); });
}

int CCallLogController::GetMissedNotifyList(MissedNotifyListData* list) const {
  return Ask(m_pModel, 0, &Model::GetMissedNotifyList, list);
}

int CCallLogController::GetForwardedNotifyList(ForwardedNotifyList* list) const {
  return Ask(m_pModel, 0, &Model::GetForwardedNotifyList, list);
}

void CCallLogController::ResetMissedCall() { Tell(m_pModel, &Model::ResetMissedCall); }

void CCallLogController::ResetForwardedCall() { Tell(m_pModel, &Model::ResetForwardedCall); }

void CCallLogController::RemoveMissedDirtyByNumber(const std::string& number) {
  Tell(m_pModel, &Model::RemoveMissedDirtyByNumber, number);
}

void CCallLogController::RemoveForwardDirtyByNumber(const std::string& number) {
  Tell(m_pModel, &Model::RemoveForwardDirtyByNumber, number);
}

bool CCallLogController::GetContactDataByNumber(ContactGeneralItemData* contact,
                                                const std::string& number) const {
  return OrFailure(false,
                   [&] { return Directory_GetContactDataByNumber(contact, number.c_str()); });
}

bool CCallLogController::CallOut(const std::string& number, const std::string& name) {
  return OrFailure(false, [&] { return talkLogic_CallOut(number, name, kDefaultAccount); });
}

void CCallLogController::EnterTalkUI(const std::string& number) {
  IgnoreFailure([&] { talkLogic_EnterDialUI(number, kDefaultAccount, true); });
}

}  // namespace NS_CALLLOG
