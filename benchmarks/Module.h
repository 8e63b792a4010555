// The module, through its exported interface, and the answers of all contestants as text.
#pragma once

#include <string>
#include <vector>

#include "CallLog.h"

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

// The first page, or the first `count` rows, of the list of `type`.
std::string ModuleRows(int type, int count);

}  // namespace bench
