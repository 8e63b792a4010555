// The search over the local history: incremental, by number, key-pad name or name; and the tally of
// the most dialled numbers.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CallLog/CallLogModel.h"
#include "CallLogRecords.h"

namespace NS_CALLLOG {

// One dialled number of the tally.
struct stTemp {
  std::string display_name;
  std::string number;
  int count;  // stored outgoing calls to it

  stTemp() { Reset(); }
  void Reset() {
    display_name.clear();
    number.clear();
    count = 0;
  }

  // Order of the tally: most dialled first.
  static bool CompareCal(const stTemp* a, const stTemp* b);
};

class CCallLogSearchHelper {
 public:
  bool Search(CallLogSearchListData* result, const std::string& key);
  bool SearchRecentOutCall(CallLogSearchListData* result);
  bool SearchRecentOutCall(SuperSearchListData* result);
  void ResetKey();

 private:
  using Hits = std::vector<const CCallLogModel::ItemData*>;

  enum SearchType { SEARCH_TYPE_NONE = 0, SEARCH_TYPE_NUMBER = 1, SEARCH_TYPE_NAME = 2 };

  // The store's records, through the controller; none without a controller or a model.
  static const CCallLogModel::LogList& MyStoredRecords();

  bool MyIsSearchFromLast(const std::string& key) const;
  bool MyReSearch(CallLogSearchListData* result, const std::string& key);
  bool MySearchFromResult(CallLogSearchListData* result, const std::string& key);
  bool MyCopyResult(CallLogSearchListData* result, const std::string& key) const;
  bool MyInsert(const CCallLogModel::ItemData* item);
  bool MyMatches(const CCallLogModel::ItemData& item, const std::string& key) const;

  // Hits of the last key, by name and number, each pair once. They point into the store, which
  // calls ResetKey() with every change.
  Hits m_listResult;
  std::string m_strKey;  // the last key as it was compared; empty when no search is held
  int m_nSearchType = SEARCH_TYPE_NONE;
};

}  // namespace NS_CALLLOG
