// The singleton of the server call logs: it creates and forwards; what is done is the model's.
// Without a model every operation gives its failure value.
#include "BSCallLogController.h"

#include "BSCallLogModel.h"

namespace NS_CALLLOG {

CBSCallLogController* CBSCallLogController::m_pInst = nullptr;

CBSCallLogController::CBSCallLogController() = default;
CBSCallLogController::~CBSCallLogController() = default;

CBSCallLogController* CBSCallLogController::GetInstance() {
  if (m_pInst == nullptr) {
    m_pInst = new CBSCallLogController;
    m_pInst->MyInit();
  }
  return m_pInst;
}

void CBSCallLogController::ReleaseInstance() {
  if (m_pInst == nullptr) return;
  m_pInst->MyFinal();
  delete m_pInst;
  m_pInst = nullptr;
}

bool CBSCallLogController::MyInit() {
  if (m_pModel == nullptr) m_pModel = std::make_unique<CBSCallLogModel>();
  return m_pModel != nullptr;
}

bool CBSCallLogController::MyFinal() {
  m_pModel.reset();
  return true;
}

int CBSCallLogController::GetLogListByClickAction(CallLogSimpleListData* page,
                                                  const std::string& clickAction,
                                                  const std::string& query, bool refresh) {
  if (m_pModel == nullptr) return BS_LIST_FAILED;
  return m_pModel->GetLogListByClickAction(page, clickAction, query, refresh);
}

bool CBSCallLogController::GetLogDetailByIndex(CallLogDetailData* detail, int index) const {
  return m_pModel != nullptr && m_pModel->GetLogDetailByIndex(detail, index);
}

bool CBSCallLogController::CancelDownload() {
  return m_pModel != nullptr && m_pModel->CancelDownload();
}

bool CBSCallLogController::AddToLocalDir(int /*index*/) { return false; }

bool CBSCallLogController::AddToLocalBlackDir(int /*index*/) { return false; }

bool CBSCallLogController::IsBroadSoftCallLogConfigured() const {
  return m_pModel != nullptr && m_pModel->IsBroadSoftCallLogConfigured();
}

bool CBSCallLogController::IsItemConfigured(int index) const {
  return m_pModel != nullptr && m_pModel->IsItemConfigured(index);
}

int CBSCallLogController::GetTotalConfigurableItemCount() const {
  return m_pModel != nullptr ? m_pModel->GetTotalConfigurableItemCount() : -1;
}

std::string CBSCallLogController::GetConfiguredItemName(int index) const {
  return m_pModel != nullptr ? m_pModel->GetConfiguredItemName(index) : std::string();
}

const BroadSoftConfigItem* CBSCallLogController::GetConfigDataByIndex(int index) const {
  return m_pModel != nullptr ? m_pModel->GetConfigDataByIndex(index) : nullptr;
}

void CBSCallLogController::SetConfigDataByIndex(int index, const BroadSoftConfigItem& item) {
  if (m_pModel != nullptr) m_pModel->SetConfigDataByIndex(index, item);
}

std::string CBSCallLogController::GetBSCallLogDisplayName() {
  return m_pModel != nullptr ? m_pModel->GetBSCallLogDisplayName() : std::string();
}

bool CBSCallLogController::ReloadBSCallLogConfig() {
  return m_pModel != nullptr && m_pModel->ReloadBSCallLogConfig();
}

}  // namespace NS_CALLLOG
