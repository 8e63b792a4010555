// The rows that a page's request stands for.
#pragma once

#include <optional>

#include "platform/CommonAPI.h"

namespace NS_CALLLOG {

struct RowRange {
  int from = -1;  // first row
  int to = -1;    // row behind the last

  bool Contains(int row) const { return row >= from && row < to; }
};

// What the platform makes of the page's request against `total` rows; nothing when it refuses it.
template <class Page>
std::optional<RowRange> RequestedRows(const Page& page, int total) {
  RowRange rows;
  if (!CommonAPI_GetFromAndToIndex(&rows.from, &rows.to, page.request_index, page.request_count,
                                   total)) {
    return std::nullopt;
  }
  return rows;
}

}  // namespace NS_CALLLOG
