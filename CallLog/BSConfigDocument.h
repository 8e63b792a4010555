// The sources' file as a tree: the one place that knows its elements and attributes.
#pragma once

#include <string>

#include "CallLogRecords.h"

class TiXmlDocument;
class TiXmlElement;

namespace NS_CALLLOG {

inline constexpr char kSourcesRoot[] = "root_broadsoft_calllog";
inline constexpr char kDisplayNameAttribute[] = "display_name";
inline constexpr char kSourceItem[] = "item";

// Fills the empty `item` with the attributes that the element has.
void ReadSource(TiXmlElement* element, BroadSoftConfigItem* item);

// Append the root element to the document, or one source to the root; the root.
TiXmlElement* AppendSourcesRoot(TiXmlDocument* document, const std::string& displayName);
void AppendSource(TiXmlElement* root, const BroadSoftConfigItem& item);

}  // namespace NS_CALLLOG
