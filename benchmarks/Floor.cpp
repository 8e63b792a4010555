#include "benchmarks/Floor.h"

#include <fcntl.h>
#include <tinyxml.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>

#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"

namespace bench {
namespace {

using Document = rapidxml::xml_document<>;
using Node = rapidxml::xml_node<>;

void Append(Document* document, Node* node, const char* name, const std::string& text) {
  node->append_attribute(
      document->allocate_attribute(name, document->allocate_string(text.c_str(), text.size() + 1)));
}

void Append(Document* document, Node* node, const char* name, int number) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%d", number);
  node->append_attribute(document->allocate_attribute(name, document->allocate_string(digits)));
}

}  // namespace

Records MakeRecords(const std::vector<CallLogAddItemData>& calls) {
  Records records;
  for (const CallLogAddItemData& call : calls) {
    Record& record = records.emplace_front();
    static_cast<CallLogAddItemData&>(record) = call;
    record.key_string = CommonUnits_ToKeyString(call.remote_display_name);
  }
  return records;
}

int Walk(const Records& records, int time) {
  int count = 0;
  for (const Record& record : records) count += record.born_tick <= time ? 1 : 0;
  return count;
}

int WalkTexts(const Records& records, const std::string& key) {
  const auto text = std::isdigit(static_cast<unsigned char>(key.front())) != 0
                        ? &Record::remote_sip_name
                        : &Record::remote_display_name;
  const int length = static_cast<int>(key.size());
  int count = 0;
  for (const Record& record : records) {
    if (CommonAPI_StringCompare(record.*text, key, 0, length, false) == 0) ++count;
  }
  return count;
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (write(file, bytes.data(), bytes.size()) < 0) std::perror(path.c_str());
  close(file);
}

bool ParseFile(const std::string& path) {
  TiXmlDocument document;
  return document.LoadFile(path);
}

bool ParseText(const std::string& text) {
  TiXmlDocument document;
  document.Parse(text.c_str());
  return !document.Error();
}

void SaveByStream(const std::string& path, const Records& records) {
  Document document;
  document.append_node(
      document.allocate_node(rapidxml::node_pi, "xml version='1.0' encoding='utf-8'"));
  Node* const root = document.allocate_node(rapidxml::node_element, "root_call_log");
  document.append_node(root);
  for (const Record& record : records) {
    Node* const node = document.allocate_node(rapidxml::node_element, "item");
    Append(&document, node, "type", record.type);
    Append(&document, node, "born_tick", record.born_tick);
    Append(&document, node, "local_sip_name", record.local_sip_name);
    Append(&document, node, "local_sip_server", record.local_sip_server);
    Append(&document, node, "remote_display_name", record.remote_display_name);
    Append(&document, node, "remote_sip_name", record.remote_sip_name);
    Append(&document, node, "remote_sip_server", record.remote_sip_server);
    Append(&document, node, "duration", record.duration);
    root->append_node(node);
  }
  std::ofstream file(path, std::ios::out | std::ios::trunc);
  file << document;
}

}  // namespace bench
