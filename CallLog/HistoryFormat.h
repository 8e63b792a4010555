// The history file as the guard knows it, too: the names by which records are found in it, and how
// many the module keeps of them.
#pragma once

namespace NS_CALLLOG {

inline constexpr char kHistoryRoot[] = "root_call_log";
inline constexpr char kHistoryItem[] = "item";
inline constexpr char kHistoryType[] = "type";  // of an item: its call type
inline constexpr int kMaxRecordsPerType = 100;

}  // namespace NS_CALLLOG
