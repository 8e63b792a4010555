// The incremental search, which narrows what it found for the key before, and the tally of dialled
// numbers, which is made anew each time. How texts are compared is the platform's.
#include "CallLog/CallLogSearchHelper.h"

#include <algorithm>
#include <cctype>

#include "CallLog/RowRange.h"
#include "CallLogController.h"
#include "CallTypes.h"
#include "platform/CommonAPI.h"
#include "platform/EtlTrace.h"

using ETL_TraceHelper::etlTrace;

namespace NS_CALLLOG {
namespace {

using ItemData = CCallLogModel::ItemData;
using LogList = CCallLogModel::LogList;

constexpr int kMaxRecentRows = 10;

bool BeginsWith(const std::string& text, const std::string& key) {
  return CommonAPI_StringCompare(text, key, 0, static_cast<int>(key.size()), false) == 0;
}

template <class Row>
Row MakeRow(const std::string& name, const std::string& number) {
  Row row;
  row.display_name = name.empty() ? number : name;
  row.number = number;
  return row;
}

template <class Row>
Row MakeRow(const ItemData& hit) {
  return MakeRow<Row>(hit.remote_display_name, hit.remote_sip_name);
}

template <class Row>
Row MakeRow(const stTemp& entry) {
  return MakeRow<Row>(entry.display_name, entry.number);
}

// One row for each of the pointers in `entries` that is wanted.
template <class Row, class Entries>
void AppendRows(const Entries& entries, const RowRange& wanted, std::list<Row>* rows) {
  std::list<Row> page;
  int position = -1;
  for (const auto& entry : entries) {
    if (wanted.Contains(++position)) page.push_back(MakeRow<Row>(*entry));
  }
  rows->splice(rows->end(), page);
}

bool IsNameless(const ItemData* item) { return item->remote_display_name.empty(); }

// What inserting one by one comes to where every hit has a name: without one the order depends on
// who came first.
void SortHits(std::vector<const ItemData*>* hits) {
  const auto compare = [](const ItemData* a, const ItemData* b) {
    const int names = a->remote_display_name.compare(b->remote_display_name);
    return names != 0 ? names : a->remote_sip_name.compare(b->remote_sip_name);
  };
  std::stable_sort(hits->begin(), hits->end(),
                   [&](const ItemData* a, const ItemData* b) { return compare(a, b) < 0; });
  const auto same = [&](const ItemData* a, const ItemData* b) { return compare(a, b) == 0; };
  hits->erase(std::unique(hits->begin(), hits->end(), same), hits->end());
}

using Tally = std::list<std::unique_ptr<stTemp>>;

// Every dialled number once, the most dialled first; of equally many calls the last dialled first.
Tally TallyOutgoingCalls(const LogList& records) {
  Tally tally;
  for (const ItemData& item : records) {
    if (item.type != kOutgoing) continue;
    auto entry = std::find_if(tally.begin(), tally.end(), [&](const auto& other) {
      return other->number == item.remote_sip_name;
    });
    if (entry == tally.end()) {
      entry = tally.insert(tally.end(), std::make_unique<stTemp>());
      (*entry)->display_name = item.remote_display_name;
      (*entry)->number = item.remote_sip_name;
    }
    ++(*entry)->count;
  }
  tally.sort([](const auto& a, const auto& b) { return stTemp::CompareCal(a.get(), b.get()); });
  return tally;
}

void TraceCount(int count) {
  etlTrace(3, "--Call log search: search recent out count is %d", count);
}

}  // namespace

bool stTemp::CompareCal(const stTemp* a, const stTemp* b) {
  if (a == nullptr) return false;
  if (b == nullptr) return true;
  return a->count > b->count;
}

const LogList& CCallLogSearchHelper::MyStoredRecords() {
  static const LogList kNone;
  const CCallLogController* const controller = CCallLogController::GetInstance();
  const CCallLogModel* const model = controller != nullptr ? controller->m_pModel.get() : nullptr;
  return model != nullptr ? model->m_listLog : kNone;
}

void CCallLogSearchHelper::ResetKey() {
  m_strKey.clear();
  m_listResult.clear();
}

bool CCallLogSearchHelper::Search(CallLogSearchListData* result, const std::string& key) {
  if (key.empty()) {
    ResetKey();
    return false;
  }
  const std::string converted = CommonAPI_StringConvert(key, STRING_CONVERT_SEARCH_KEY);
  if (converted == m_strKey) return MyCopyResult(result, converted);
  if (MyIsSearchFromLast(converted)) return MySearchFromResult(result, converted);
  return MyReSearch(result, converted);
}

bool CCallLogSearchHelper::MyIsSearchFromLast(const std::string& key) const {
  return !m_strKey.empty() && key.compare(0, m_strKey.size(), m_strKey) == 0;
}

inline bool CCallLogSearchHelper::MyMatches(const ItemData& item, const std::string& key) const {
  if (m_nSearchType != SEARCH_TYPE_NUMBER) return BeginsWith(item.remote_display_name, key);
  return BeginsWith(item.remote_sip_name, key) || BeginsWith(item.key_string, key);
}

bool CCallLogSearchHelper::MyReSearch(CallLogSearchListData* result, const std::string& key) {
  if (result == nullptr || key.empty()) return false;
  ResetKey();
  const char first = key.front();
  const bool number =
      std::isdigit(static_cast<unsigned char>(first)) != 0 || first == '*' || first == '#';
  m_nSearchType = number ? SEARCH_TYPE_NUMBER : SEARCH_TYPE_NAME;
  std::vector<const ItemData*> matches;
  for (const ItemData& item : MyStoredRecords()) {
    if (MyMatches(item, key)) matches.push_back(&item);
  }
  if (std::none_of(matches.begin(), matches.end(), IsNameless)) {
    SortHits(&matches);
    m_listResult.swap(matches);
  } else {
    for (const ItemData* item : matches) MyInsert(item);
  }
  m_strKey = key;
  return MyCopyResult(result, key);
}

bool CCallLogSearchHelper::MyInsert(const ItemData* item) {
  if (item == nullptr) return false;
  auto place = m_listResult.begin();
  for (; place != m_listResult.end(); ++place) {
    const ItemData& hit = **place;
    int order = 0;
    if (!hit.remote_display_name.empty()) {
      order = hit.remote_display_name.compare(item->remote_display_name);
    }
    if (order == 0) order = hit.remote_sip_name.compare(item->remote_sip_name);
    if (order == 0) return false;
    if (order > 0) break;
  }
  m_listResult.insert(place, item);
  return true;
}

bool CCallLogSearchHelper::MyCopyResult(CallLogSearchListData* result,
                                        const std::string& key) const {
  if (result == nullptr || key.empty()) return false;
  const auto rows = RequestedRows(*result, static_cast<int>(m_listResult.size()));
  if (!rows) return false;
  AppendRows(m_listResult, *rows, &result->items);
  result->total = static_cast<int>(m_listResult.size());
  return true;
}

bool CCallLogSearchHelper::MySearchFromResult(CallLogSearchListData* result,
                                              const std::string& key) {
  if (result == nullptr || key.empty()) return false;
  const auto rows = RequestedRows(*result, static_cast<int>(m_listResult.size()));
  if (!rows) return false;
  m_strKey.clear();  // half narrowed, the hits would be those of no key
  const auto misses = std::remove_if(m_listResult.begin(), m_listResult.end(),
                                     [&](const ItemData* hit) { return !MyMatches(*hit, key); });
  m_listResult.erase(misses, m_listResult.end());
  m_strKey = key;
  AppendRows(m_listResult, *rows, &result->items);
  result->total = static_cast<int>(m_listResult.size());
  return true;
}

bool CCallLogSearchHelper::SearchRecentOutCall(CallLogSearchListData* result) {
  if (result == nullptr) return false;
  const Tally tally = TallyOutgoingCalls(MyStoredRecords());
  const int numbers = static_cast<int>(tally.size());
  const auto rows = RequestedRows(*result, numbers);
  if (!rows) return false;
  AppendRows(tally, *rows, &result->items);
  result->total = numbers;
  TraceCount(result->total);
  return true;
}

bool CCallLogSearchHelper::SearchRecentOutCall(SuperSearchListData* result) {
  if (result == nullptr) return false;
  const Tally tally = TallyOutgoingCalls(MyStoredRecords());
  auto rows = RequestedRows(*result, kMaxRecentRows);
  if (!rows) return false;
  rows->to = std::min(kMaxRecentRows, static_cast<int>(tally.size()));
  etlTrace(3, "--Call log search: max index is %d", rows->to);
  AppendRows(tally, *rows, &result->items);
  result->total = rows->to;
  TraceCount(result->total);
  return true;
}

}  // namespace NS_CALLLOG
