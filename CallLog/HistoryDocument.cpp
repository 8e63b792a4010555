// Attributes of the history file, in the order in which they are written. RapidXml prints record by
// record: its tree of all of them would take more memory than they do themselves.
#include "CallLog/HistoryDocument.h"

// A save runs on the UI thread, whose stack can be small; RapidXml would put 64 KB of its first
// memory block inside the document object.
#define RAPIDXML_STATIC_POOL_SIZE 4096
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>

#include <charconv>
#include <string_view>

#include "CallLog/Failure.h"
#include "CallLog/HistoryFormat.h"
#include "CallLog/KeyString.h"
#include "CallLog/XmlChars.h"
#include "platform/TinyXmlHelper.h"

namespace NS_CALLLOG {
namespace {

using ItemData = CCallLogModel::ItemData;
using LogList = CCallLogModel::LogList;

constexpr std::size_t kUsualLine = 256;       // bytes of one record
constexpr std::size_t kLongestNumber = 11;    // "-2147483648"
constexpr std::size_t kLongestReference = 6;  // "&quot;" for one character
constexpr std::size_t kAroundAttribute = 4;   // a blank, the equals sign, two quotes
constexpr std::size_t kBareItem = 8;          // "<item/>" and the line break

// One record as one line. RapidXml is handed names and values where they stand, with their sizes:
// they must live until the line is printed.
class HistoryLine {
 public:
  void AppendNumber(std::string_view name, int number);
  void AppendString(std::string_view name, const std::string& bytes);

  // Appends the line to `text` and begins the next.
  void PrintTo(std::string* text);

 private:
  void AppendAttribute(std::string_view name, std::string_view value);

  rapidxml::xml_document<> pool_;
  rapidxml::xml_node<> item_{rapidxml::node_element};
  std::string line_;
  std::size_t room_ = kBareItem;  // bytes that the line takes at most: the printer knows no end
};

void HistoryLine::AppendNumber(std::string_view name, int number) {
  char* const digits = pool_.allocate_string(nullptr, kLongestNumber);
  const char* const end = std::to_chars(digits, digits + kLongestNumber, number).ptr;
  AppendAttribute(name, {digits, static_cast<std::size_t>(end - digits)});
}

void HistoryLine::AppendString(std::string_view name, const std::string& bytes) {
  if (IsXmlText(bytes)) {
    AppendAttribute(name, bytes);
    return;
  }
  const std::string text = ToXmlText(bytes);
  AppendAttribute(name, {pool_.allocate_string(text.c_str(), text.size() + 1), text.size()});
}

void HistoryLine::AppendAttribute(std::string_view name, std::string_view value) {
  item_.append_attribute(
      pool_.allocate_attribute(name.data(), value.data(), name.size(), value.size()));
  room_ += name.size() + kLongestReference * value.size() + kAroundAttribute;
}

void HistoryLine::PrintTo(std::string* text) {
  item_.name(kHistoryItem, sizeof kHistoryItem - 1);
  if (line_.size() < room_) line_.resize(room_);
  char* const end = rapidxml::print(line_.data(), item_, 0);
  text->push_back('\t');
  text->append(line_.data(), end);
  item_.remove_all_attributes();
  pool_.clear();
  room_ = kBareItem;
}

}  // namespace

std::string PrintHistory(const LogList& records) {
  const std::string root = kHistoryRoot;
  std::string text = "<?xml version='1.0' encoding='utf-8' ?>\n";
  if (records.empty()) return text + "<" + root + "/>\n\n";
  text.reserve((records.size() + 1) * kUsualLine);
  text += "<" + root + ">\n";
  HistoryLine line;
  for (const ItemData& item : records) {
    line.AppendNumber(kHistoryType, item.type);
    line.AppendNumber("born_tick", item.born_tick);
    line.AppendString("local_sip_name", item.local_sip_name);
    line.AppendString("local_sip_server", item.local_sip_server);
    line.AppendString("remote_display_name", item.remote_display_name);
    line.AppendString("remote_sip_name", item.remote_sip_name);
    line.AppendString("remote_sip_server", item.remote_sip_server);
    line.AppendNumber("duration", item.duration);
    line.PrintTo(&text);
  }
  text += "</" + root + ">\n\n";
  return text;
}

bool ReadHistoryItem(TiXmlElement* element, ItemData* item) {
  return OrFailure(false, [&] {
    item->Reset();
    item->type = TinyXml_GetIntAttr(element, kHistoryType, 0);
    item->born_tick = TinyXml_GetIntAttr(element, "born_tick", 0);
    item->local_sip_name = TinyXml_GetStringAttr(element, "local_sip_name", "");
    item->local_sip_server = TinyXml_GetStringAttr(element, "local_sip_server", "");
    item->remote_sip_name = TinyXml_GetStringAttr(element, "remote_sip_name", "");
    item->remote_display_name = TinyXml_GetStringAttr(element, "remote_display_name", "");
    item->remote_sip_server = TinyXml_GetStringAttr(element, "remote_sip_server", "");
    item->key_string = KeyStringOf(item->remote_display_name);
    item->duration = TinyXml_GetIntAttr(element, "duration", 0);
    return true;
  });
}

}  // namespace NS_CALLLOG
