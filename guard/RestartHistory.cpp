#include "guard/RestartHistory.h"

#include <new>

#include "CallLogController.h"

namespace NS_GUARD {

using NS_CALLLOG::CCallLogController;

int RestartHistory() {
  CCallLogController::ReleaseInstance();
  const auto* const history = CCallLogController::GetInstance();
  if (history == nullptr) return 0;
  CallLogSimpleListData page;
  page.request_count = 1;  // a page that asks for none is refused
  try {
    history->GetLogListByClickAction(&page, "OpenSubPage(call_log_0)");
  } catch (const std::bad_alloc&) {
  }
  return page.total;
}

}  // namespace NS_GUARD
