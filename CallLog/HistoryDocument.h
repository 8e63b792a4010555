// The history file: the one place that knows its elements and attributes. Opening the file, and
// where a record belongs, is the model's.
#pragma once

#include <string>

#include "CallLogModel.h"

class TiXmlElement;

namespace NS_CALLLOG {

inline constexpr char kHistoryRoot[] = "root_call_log";
inline constexpr char kHistoryItem[] = "item";

// The text of the file that holds these records.
std::string PrintHistory(const CCallLogModel::LogList& records);

// The stored fields of one record from an element of the file, whatever its values are. No record
// when there is no memory for them.
CCallLogModel::LogList ReadHistoryItem(TiXmlElement* element);

}  // namespace NS_CALLLOG
