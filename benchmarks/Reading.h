// Works that only read: they fill a page again and again.
#pragma once

#include <memory>
#include <utility>

#include "benchmarks/Case.h"
#include "benchmarks/Data.h"
#include "benchmarks/Module.h"

namespace bench {

// `fill` is given an empty page; what it holds after the last run is the answer.
template <class Page, class Fill>
Operation Reading(Fill fill) {
  const auto page = std::make_shared<Page>();
  Operation operation;
  operation.run = [page, fill = std::move(fill)]() mutable {
    page->Reset();
    fill(page.get());
  };
  operation.answer = [page] { return Text(*page); };
  return operation;
}

// The page, asked for ten rows from `row` on.
template <class Page>
Page* Request(Page* page, int row) {
  page->request_index = row;
  page->request_count = kPage;
  return page;
}

}  // namespace bench
