// What an attribute or a text is, and what a number.
#include "platform/TinyXmlHelper.h"

#include <tinyxml.h>

#include <charconv>
#include <climits>
#include <string_view>
#include <system_error>

namespace {

// A whole decimal number, clamped to int.
bool ParseDecimal(std::string_view text, int* value) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return false;
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, *value);
  if (stop != end || error == std::errc::invalid_argument) return false;
  if (error == std::errc::result_out_of_range) *value = text.front() == '-' ? INT_MIN : INT_MAX;
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
