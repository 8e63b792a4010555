// The entry of every target, and the checks by other people's parsers.
#include "tests/fuzz/Fuzz.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  setenv("TZ", "UTC0", 1);
  GTEST_FLAG_SET(throw_on_failure, true);  // through nobody's catch: the process aborts there
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  desk::FuzzOne(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}

namespace desk {
namespace {

std::string Text(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

}  // namespace

std::optional<Items> StrictItems(const std::string& bytes, const std::string& root) {
  constexpr int kQuiet = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document(
      xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, kQuiet),
      xmlFreeDoc);
  const xmlNode* const top = xmlDocGetRootElement(document.get());
  if (top == nullptr || Text(top->name) != root) return std::nullopt;
  Items items;
  for (const xmlNode* node = top->children; node != nullptr; node = node->next) {
    if (node->type != XML_ELEMENT_NODE || Text(node->name) != "item") continue;
    items.emplace_back();
    for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
      xmlChar* const value = xmlNodeListGetString(document.get(), attribute->children, 1);
      items.back()[Text(attribute->name)] = value != nullptr ? Text(value) : "";
      xmlFree(value);
    }
  }
  return items;
}

bool IsPrintableText(const std::string& text) {
  const bool controls = std::any_of(text.begin(), text.end(), [](char c) {
    return c == '\x7F' || (static_cast<unsigned char>(c) < 0x20 && c != '\n');
  });
  return !controls && xmlCheckUTF8(reinterpret_cast<const xmlChar*>(text.c_str())) == 1;
}

}  // namespace desk
