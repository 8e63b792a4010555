// Attributes of the history file, in the order in which they are written. Opening the file, and
// where a record belongs, is the model's.
#include "HistoryDocument.h"

#include <cstdio>
#include <new>

#include "CommonUnits.h"
#include "TinyXmlHelper.h"
#include "XmlChars.h"

namespace NS_CALLLOG {
namespace {

using Document = rapidxml::xml_document<>;
using Node = rapidxml::xml_node<>;

// RapidXml keeps pointers: the value is copied into the document's pool, with its terminating NUL.
void AppendString(Document* document, Node* item, const char* name, const std::string& bytes) {
  const std::string text = ToXmlText(bytes);
  const char* const value = document->allocate_string(text.c_str(), text.size() + 1);
  item->append_attribute(document->allocate_attribute(name, value));
}

void AppendNumber(Document* document, Node* item, const char* name, int number) {
  char digits[261] = {};
  std::snprintf(digits, 260, "%d", number);
  item->append_attribute(document->allocate_attribute(name, document->allocate_string(digits)));
}

}  // namespace

Node* BuildHistoryRoot(Document* document) {
  const char* const header = document->allocate_string("xml version='1.0' encoding='utf-8'");
  document->append_node(document->allocate_node(rapidxml::node_pi, header));
  Node* const root = document->allocate_node(rapidxml::node_element, kHistoryRoot);
  document->append_node(root);
  return root;
}

void AppendHistoryItem(Document* document, Node* root, const CCallLogModel::ItemData& item) {
  Node* const node = document->allocate_node(rapidxml::node_element, kHistoryItem);
  AppendNumber(document, node, "type", item.type);
  AppendNumber(document, node, "born_tick", item.born_tick);
  AppendString(document, node, "local_sip_name", item.local_sip_name);
  AppendString(document, node, "local_sip_server", item.local_sip_server);
  AppendString(document, node, "remote_display_name", item.remote_display_name);
  AppendString(document, node, "remote_sip_name", item.remote_sip_name);
  AppendString(document, node, "remote_sip_server", item.remote_sip_server);
  AppendNumber(document, node, "duration", item.duration);
  root->append_node(node);
}

bool ReadHistoryItem(TiXmlElement* element, CCallLogModel::ItemData* item) {
  try {
    item->type = TinyXml_GetIntAttr(element, "type", 0);
    item->born_tick = TinyXml_GetIntAttr(element, "born_tick", 0);
    item->local_sip_name = TinyXml_GetStringAttr(element, "local_sip_name", "");
    item->local_sip_server = TinyXml_GetStringAttr(element, "local_sip_server", "");
    item->remote_sip_name = TinyXml_GetStringAttr(element, "remote_sip_name", "");
    item->remote_display_name = TinyXml_GetStringAttr(element, "remote_display_name", "");
    item->remote_sip_server = TinyXml_GetStringAttr(element, "remote_sip_server", "");
    item->key_string = CommonUnits_ToKeyString(item->remote_display_name);
    item->duration = TinyXml_GetIntAttr(element, "duration", 0);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace NS_CALLLOG
