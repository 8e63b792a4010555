// The copy of a document that TinyXML is handed, so that it sees nothing that nobody has checked.
#pragma once

#include <string>

namespace NS_CALLLOG {

// Most levels of elements, and most attributes of one element, that a document may have.
inline constexpr int kMaxXmlDepth = 64;
inline constexpr int kMaxXmlAttributes = 64;

// Turns the bytes of a document into what TinyXML can be handed safely: UTF-8, elements, attributes
// and text alone, within the limits. False when the document cannot be loaded. `plain` is empty
// when there is nothing for TinyXML to read.
bool ToPlainXml(const std::string& bytes, std::string* plain);

}  // namespace NS_CALLLOG
