// What nothing of this kind can be much below: a walk over the calls, a sort, a parse, a print, a
// write; and the straightforward way to save, which the module's is compared with.
#pragma once

#include <list>
#include <memory>
#include <rapidxml/rapidxml.hpp>
#include <string>
#include <vector>

#include "CallLogRecords.h"

namespace bench {

// The strings and numbers that the module keeps of a call, each record on its own, newest first.
struct Record : CallLogAddItemData {
  std::string key_string;
  bool is_new = true;
};
using Records = std::list<Record>;

Records MakeRecords(const std::vector<CallLogAddItemData>& calls);

// Number of the calls that are not newer than `time`: one comparison each.
int Walk(const Records& records, int time);

// The calls whose name, or number or key-pad form when the key is a number, begins with `key`, by
// name and number: the comparisons of texts that this takes, the platform's and std::string's.
std::vector<const Record*> WalkAndSort(const Records& records, const std::string& key);

// One open, write and close.
void WriteBytes(const std::string& path, const std::string& bytes);

// As TinyXML does it by default. False when it cannot.
bool ParseFile(const std::string& path);

// The history file as a tree of RapidXml, with a copy of each text.
using Tree = rapidxml::xml_document<>;
std::unique_ptr<Tree> MakeTree(const Records& records);

// The tree by RapidXml's printer, into room for `size` bytes, and in one write.
void PrintTree(const std::string& path, const Tree& tree, std::size_t size);

// A tree, and its stream operator.
void SaveByStream(const std::string& path, const Records& records);

}  // namespace bench
