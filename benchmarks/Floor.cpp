#include "benchmarks/Floor.h"

#include <fcntl.h>
#include <tinyxml.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <rapidxml/rapidxml_print.hpp>

#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"

namespace bench {
namespace {

using Node = rapidxml::xml_node<>;

void Append(Tree* tree, Node* node, const char* name, const std::string& text) {
  node->append_attribute(
      tree->allocate_attribute(name, tree->allocate_string(text.c_str(), text.size() + 1)));
}

void Append(Tree* tree, Node* node, const char* name, int number) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%d", number);
  node->append_attribute(tree->allocate_attribute(name, tree->allocate_string(digits)));
}

bool BeginsWith(const std::string& text, const std::string& key) {
  return CommonAPI_StringCompare(text, key, 0, static_cast<int>(key.size()), false) == 0;
}

bool IsBefore(const Record* a, const Record* b) {
  const int names = a->remote_display_name.compare(b->remote_display_name);
  return names != 0 ? names < 0 : a->remote_sip_name < b->remote_sip_name;
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

std::vector<const Record*> WalkAndSort(const Records& records, const std::string& key) {
  const bool number = std::isdigit(static_cast<unsigned char>(key.front())) != 0;
  std::vector<const Record*> hits;
  for (const Record& record : records) {
    if (number ? BeginsWith(record.remote_sip_name, key) || BeginsWith(record.key_string, key)
               : BeginsWith(record.remote_display_name, key)) {
      hits.push_back(&record);
    }
  }
  std::sort(hits.begin(), hits.end(), IsBefore);
  return hits;
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

std::unique_ptr<Tree> MakeTree(const Records& records) {
  auto tree = std::make_unique<Tree>();
  tree->append_node(tree->allocate_node(rapidxml::node_pi, "xml version='1.0' encoding='utf-8'"));
  Node* const root = tree->allocate_node(rapidxml::node_element, "root_call_log");
  tree->append_node(root);
  for (const Record& record : records) {
    Node* const node = tree->allocate_node(rapidxml::node_element, "item");
    Append(tree.get(), node, "type", record.type);
    Append(tree.get(), node, "born_tick", record.born_tick);
    Append(tree.get(), node, "local_sip_name", record.local_sip_name);
    Append(tree.get(), node, "local_sip_server", record.local_sip_server);
    Append(tree.get(), node, "remote_display_name", record.remote_display_name);
    Append(tree.get(), node, "remote_sip_name", record.remote_sip_name);
    Append(tree.get(), node, "remote_sip_server", record.remote_sip_server);
    Append(tree.get(), node, "duration", record.duration);
    root->append_node(node);
  }
  return tree;
}

void PrintTree(const std::string& path, const Tree& tree, std::size_t size) {
  std::string text;
  text.reserve(size);
  rapidxml::print(std::back_inserter(text), tree);
  WriteBytes(path, text);
}

void SaveByStream(const std::string& path, const Records& records) {
  std::ofstream file(path, std::ios::out | std::ios::trunc);
  file << *MakeTree(records);
}

}  // namespace bench
