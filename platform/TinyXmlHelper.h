// Attribute and text helpers over TinyXML elements. Any thread. Values are what a file or a server
// holds: any text, any length, must not throw but for want of memory.
#pragma once

#include <string>

class TiXmlElement;

// The attribute's value as an int. `fallback` when the element is null, lacks the attribute, or the
// value is no decimal number; a number beyond int gives the nearest int.
int TinyXml_GetIntAttr(TiXmlElement* element, const char* name, int fallback);

// The attribute's value; `fallback` when the element is null or lacks the attribute.
std::string TinyXml_GetStringAttr(TiXmlElement* element, const char* name, const char* fallback);

// The text inside the element, of all its text and CDATA nodes; `fallback` when the element is null
// or holds no text.
std::string TinyXml_GetElemText(TiXmlElement* element, const char* fallback);
