// The history file as a tree: the one place that knows its elements and attributes.
#pragma once

// A save runs on the UI thread, whose stack can be small; RapidXml would put 64 KB of its first
// memory block inside the document object.
#define RAPIDXML_STATIC_POOL_SIZE 4096
#include <rapidxml/rapidxml.hpp>

#include "CallLogModel.h"

class TiXmlElement;

namespace NS_CALLLOG {

inline constexpr char kHistoryRoot[] = "root_call_log";
inline constexpr char kHistoryItem[] = "item";

// Puts the processing instruction and the root element into the empty `document`; the root.
rapidxml::xml_node<>* BuildHistoryRoot(rapidxml::xml_document<>* document);

// Appends one record to the root. The document keeps copies of its own.
void AppendHistoryItem(rapidxml::xml_document<>* document, rapidxml::xml_node<>* root,
                       const CCallLogModel::ItemData& item);

// Fills the stored fields of the reset `item` from an element of the file, whatever its values are.
// False when there is no memory for them.
bool ReadHistoryItem(TiXmlElement* element, CCallLogModel::ItemData* item);

}  // namespace NS_CALLLOG
