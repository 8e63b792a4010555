// The module, through its exported interface; pages, and the answers of all contestants as text.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "CallLog.h"
#include "benchmarks/Case.h"
#include "benchmarks/Data.h"

namespace bench {

inline constexpr char kHistoryFile[] = "config/data/call_data.xml";

NS_CALLLOG::CCallLogController& Module();

// The module anew, with these calls and nothing else; nothing is saved.
void StartModule(const std::vector<CallLogAddItemData>& calls);

// The click action that opens the list of `type`.
std::string Action(int type);

std::string Text(const CallLogSimpleListData& page);
std::string Text(const CallLogSearchListData& page);
std::string Text(const CallLogDetailData& detail);
std::string Text(const MissedNotifyListData& list);

// The list of all calls.
std::string ModuleRows();

// The page, asked for ten rows from `row` on.
template <class Page>
Page* Request(Page* page, int row) {
  page->request_index = row;
  page->request_count = kPage;
  return page;
}

// A work that only reads, again and again: `fill` is given an empty page; what it holds after the
// last run is the answer.
template <class Page, class Fill>
Operation Reading(Fill fill, std::function<void()> restore = {}) {
  const auto page = std::make_shared<Page>();
  return {[page, fill = std::move(fill)] {
            page->Reset();
            fill(page.get());
          },
          [page] { return Text(*page); }, std::move(restore)};
}

}  // namespace bench
