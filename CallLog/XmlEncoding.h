// Documents in the single-byte encodings that servers still send.
#pragma once

#include <string>

namespace NS_CALLLOG {

// Turns a document that declares ISO-8859-1 or windows-1252, both read as windows-1252, into UTF-8;
// leaves any other as it is, and one that is UTF-8 in spite of what it declares.
void DecodeSingleByteXml(std::string* document);

}  // namespace NS_CALLLOG
