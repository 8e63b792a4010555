// The exported functions: each obtains its controller and forwards. The controllers turn whatever
// goes wrong into a result.
#include "CallLog.h"
#include "CallLog/Failure.h"

using NS_CALLLOG::CBSCallLogController;
using NS_CALLLOG::CCallLogController;

int CallLog_AddLog(const CallLogAddItemData& call) {
  auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->AddLog(call) : -1;
}

int CallLog_UpdateLog(const CallLogUpdateData& contact) {
  auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->UpdateLog(contact) : 0;
}

int CallLog_ResetLogContactName() {
  auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->ResetLogContactName() : 0;
}

int CallLog_Search(CallLogSearchListData* page, const std::string& key) {
  auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->Search(page, key) : 0;
}

int CallLog_SearchRecentOutCall(CallLogSearchListData* page) {
  const auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->SearchRecentOutCall(page) : 0;
}

int CallLog_SuperSearchRecentOutCall(SuperSearchListData* page) {
  const auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->SearchRecentOutCall(page) : 0;
}

std::string CallLog_GetLastNewInCall() {
  const auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->GetLastNewInCall() : std::string();
}

std::string CallLog_GetLastOutCall() {
  const auto* const controller = CCallLogController::GetInstance();
  return controller != nullptr ? controller->GetLastOutCall() : std::string();
}

int CallLog_IsBroadSoftCallLogConfigured() {
  const auto* const controller = CBSCallLogController::GetInstance();
  return controller != nullptr && controller->IsBroadSoftCallLogConfigured() ? 1 : 0;
}

int CallLog_IsOtherLocalCallLogConfigured() { return CallLog_IsBroadSoftCallLogConfigured(); }

std::string CallLog_GetBSCallLogDisplayName() {
  auto* const controller = CBSCallLogController::GetInstance();
  return controller != nullptr ? controller->GetBSCallLogDisplayName() : std::string();
}

void RemoveMissedDirtyByNumber(const char* number) {
  if (number == nullptr) return;
  auto* const controller = CCallLogController::GetInstance();
  if (controller == nullptr) return;
  NS_CALLLOG::IgnoreFailure([&] { controller->RemoveMissedDirtyByNumber(number); });
}

void RemoveForwardDirtyByNumber(const char* number) {
  if (number == nullptr) return;
  auto* const controller = CCallLogController::GetInstance();
  if (controller == nullptr) return;
  NS_CALLLOG::IgnoreFailure([&] { controller->RemoveForwardDirtyByNumber(number); });
}
