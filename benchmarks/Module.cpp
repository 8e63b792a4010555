#include "benchmarks/Module.h"

#include <filesystem>

namespace bench {

using NS_CALLLOG::CCallLogController;

CCallLogController& Module() { return *CCallLogController::GetInstance(); }

void StartModule(const std::vector<CallLogAddItemData>& calls) {
  CCallLogController::ReleaseInstance();
  std::filesystem::remove(kHistoryFile);
  for (const CallLogAddItemData& call : calls) Module().AddLog(call);
}

std::string Action(int type) { return "OpenSubPage(call_log_" + std::to_string(type) + ")"; }

std::string Text(const CallLogSimpleListData& page) {
  std::string text = std::to_string(page.total) + "\n";
  for (const CallLogSimpleData& row : page.items) {
    text += row.display_name + "|" + row.time_text + "|" + std::to_string(row.type) + "\n";
  }
  return text;
}

std::string Text(const CallLogSearchListData& page) {
  std::string text = std::to_string(page.total) + "\n";
  for (const CallLogSearchData& row : page.items)
    text += row.display_name + "|" + row.number + "\n";
  return text;
}

std::string Text(const CallLogDetailData& detail) {
  return detail.display_name + "|" + detail.number + "|" + detail.server + "|" + detail.time_text +
         "|" + detail.duration_text + "|" + detail.image_path + "|" + std::to_string(detail.type);
}

std::string Text(const MissedNotifyListData& list) {
  std::string text;
  for (const MissedCallData& row : list.items) {
    text += row.display_name + "|" + row.number + "|" + std::to_string(row.count) + "\n";
  }
  return text;
}

std::string ModuleRows() {
  CallLogSimpleListData page;
  page.request_count = kCalls;
  Module().GetLogListByClickAction(&page, Action(0));
  return Text(page);
}

}  // namespace bench
