// Attributes of the sources' file, in the order in which they are written. Loading and saving the
// file is the model's.
#include "CallLog/BSConfigDocument.h"

#include <tinyxml.h>

#include <memory>

#include "CallLog/XmlChars.h"
#include "platform/TinyXmlHelper.h"

namespace NS_CALLLOG {
namespace {

struct SourceField {
  const char* attribute;
  std::string BroadSoftConfigItem::*member;
};

// In the order in which they are written.
constexpr SourceField kFields[] = {
    {"name", &BroadSoftConfigItem::name},         {"server", &BroadSoftConfigItem::server},
    {"port", &BroadSoftConfigItem::port},         {"user_name", &BroadSoftConfigItem::user_name},
    {"password", &BroadSoftConfigItem::password},
};

}  // namespace

void ReadSource(TiXmlElement* element, BroadSoftConfigItem* item) {
  for (const SourceField& field : kFields) {
    const std::string value = TinyXml_GetStringAttr(element, field.attribute, "");
    if (!value.empty()) item->*field.member = value;
  }
}

TiXmlElement* AppendSourcesRoot(TiXmlDocument* document, const std::string& displayName) {
  auto root = std::make_unique<TiXmlElement>(kSourcesRoot);
  root->SetAttribute(kDisplayNameAttribute, ToXmlText(displayName).c_str());
  return document->LinkEndChild(root.release())->ToElement();
}

void AppendSource(TiXmlElement* root, const BroadSoftConfigItem& item) {
  TiXmlElement element(kSourceItem);
  for (const SourceField& field : kFields) {
    element.SetAttribute(field.attribute, ToXmlText(item.*field.member).c_str());
  }
  root->InsertEndChild(element);
}

}  // namespace NS_CALLLOG
