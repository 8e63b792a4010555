// The singleton of the server call logs: it creates and forwards; what is done is the model's.
// Without a model, and when memory runs out, every operation gives its failure value.
#include "BSCallLogController.h"

#include <new>

#include "CallLog/BSCallLogModel.h"
#include "CallLog/Failure.h"

namespace NS_CALLLOG {

namespace {

using Model = CBSCallLogModel;

}  // namespace

CBSCallLogController* CBSCallLogController::m_pInst = nullptr;

CBSCallLogController::CBSCallLogController() = default;
CBSCallLogController::~CBSCallLogController() = default;

CBSCallLogController* CBSCallLogController::GetInstance() {
  if (m_pInst == nullptr) {
    m_pInst = new (std::nothrow) CBSCallLogController;
    if (m_pInst != nullptr && !OrFailure(false, [] { return m_pInst->MyInit(); })) {
      ReleaseInstance();
    }
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
  return Ask<int>(m_pModel, BS_LIST_FAILED, &Model::GetLogListByClickAction, page, clickAction,
                  query, refresh);
}

bool CBSCallLogController::GetLogDetailByIndex(CallLogDetailData* detail, int index) const {
  return Ask(m_pModel, false, &Model::GetLogDetailByIndex, detail, index);
}

bool CBSCallLogController::CancelDownload() { return Ask(m_pModel, false, &Model::CancelDownload); }

bool CBSCallLogController::AddToLocalDir(int /*index*/) { return false; }

bool CBSCallLogController::AddToLocalBlackDir(int /*index*/) { return false; }

bool CBSCallLogController::IsBroadSoftCallLogConfigured() const {
  return Ask(m_pModel, false, &Model::IsBroadSoftCallLogConfigured);
}

bool CBSCallLogController::IsItemConfigured(int index) const {
  return Ask(m_pModel, false, &Model::IsItemConfigured, index);
}

int CBSCallLogController::GetTotalConfigurableItemCount() const {
  return Ask(m_pModel, -1, &Model::GetTotalConfigurableItemCount);
}

std::string CBSCallLogController::GetConfiguredItemName(int index) const {
  return Ask(m_pModel, std::string(), &Model::GetConfiguredItemName, index);
}

BroadSoftConfigItem* CBSCallLogController::GetConfigDataByIndex(int index) const {
  return Ask<BroadSoftConfigItem*>(m_pModel, nullptr, &Model::GetConfigDataByIndex, index);
}

void CBSCallLogController::SetConfigDataByIndex(int index, const BroadSoftConfigItem& item) {
  Tell(m_pModel, &Model::SetConfigDataByIndex, index, item);
}

std::string CBSCallLogController::GetBSCallLogDisplayName() {
  return Ask(m_pModel, std::string(), &Model::GetBSCallLogDisplayName);
}

bool CBSCallLogController::ReloadBSCallLogConfig() {
  return Ask(m_pModel, false, &Model::ReloadBSCallLogConfig);
}

}  // namespace NS_CALLLOG
