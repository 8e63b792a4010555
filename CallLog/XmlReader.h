// The one way in which the module reads an XML file. It stands in front of TinyXML, which does harm
// when it is handed what nobody has checked: it recurses per element, searches attributes one by
// one, and steps over a cut UTF-8 character and past its buffer.
#pragma once

#include <string>

class TiXmlDocument;

namespace NS_CALLLOG {

// Loads the file at `path` into the new `document`. False when it cannot be loaded: no regular
// file, not readable, out of memory, not well-formed, or beyond the limits of PlainXml.h. A
// document without a root element can be loaded. Its elements, attributes and texts are those that
// TinyXML finds by itself, CDATA and attributes without quotes included. Beyond that a document
// type may have a bracketed part, a processing instruction a ">" in front of its "?>"; comments
// part no text, and an ampersand that begins no reference is kept. Text arrives as UTF-8, also from
// a document that declares ISO-8859-1 or windows-1252. Malformed UTF-8 and characters that XML
// forbids arrive as U+FFFD.
bool LoadXmlFile(TiXmlDocument* document, const std::string& path);

// Its two steps, for whoever needs the bytes as well; out of memory they throw. The first is false
// for a file that cannot be read, errno telling why, and with errno 0 for what is no XML: no
// regular file, one of 2 GiB or more, one with anything but blanks in the blocks of 4096 bytes
// before its first "<"; such blocks of blanks are left out of `bytes`.
bool ReadXmlFile(const std::string& path, std::string* bytes);
bool ParseXml(TiXmlDocument* document, std::string bytes);

}  // namespace NS_CALLLOG
