// The history file's text, and the attributes of a record in it. Opening the file, and where a
// record belongs, is the model's.
#pragma once

#include <string>

#include "CallLog/CallLogModel.h"

class TiXmlElement;

namespace NS_CALLLOG {

// The text of the file that holds these records.
std::string PrintHistory(const CCallLogModel::LogList& records);

// Fills `item` with the record that stands in an element of the file, whatever its values are.
// False when that fails.
bool ReadHistoryItem(TiXmlElement* element, CCallLogModel::ItemData* item);

}  // namespace NS_CALLLOG
