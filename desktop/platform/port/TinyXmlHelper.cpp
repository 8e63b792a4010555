// What an attribute or a text is, and what a number.
#include "platform/TinyXmlHelper.h"

#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>

namespace {

// A whole decimal number, clamped to int.
bool ParseDecimal(const char* text, int* value) {
  char* end = nullptr;
  const long number = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || std::isspace(static_cast<unsigned char>(*text))) return false;
  *value = static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
  return true;
}

}  // namespace

int TinyXml_GetIntAttr(TiXmlElement* element, const char* name, int fallback) {
  const char* text = element != nullptr ? element->Attribute(name) : nullptr;
  int value = 0;
  return text != nullptr && ParseDecimal(text, &value) ? value : fallback;
}

std::string TinyXml_GetStringAttr(TiXmlElement* element, const char* name, const char* fallback) {
  const char* text = element != nullptr ? element->Attribute(name) : nullptr;
  return text != nullptr ? text : fallback;
}

std::string TinyXml_GetElemText(TiXmlElement* element, const char* fallback) {
  if (element == nullptr) return fallback;
  // GetText() looks at the first child only; a comment there hides the text behind it.
  std::string text;
  for (TiXmlNode* node = element->FirstChild(); node != nullptr; node = node->NextSibling()) {
    if (node->ToText() != nullptr) text += node->Value();
  }
  return text.empty() ? fallback : text;
}
