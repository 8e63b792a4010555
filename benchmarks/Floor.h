// What nothing of this kind can be much below: a walk over the calls, a parse, a write; and the
// straightforward way to save, which the module's is compared with.
#pragma once

#include <list>
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

// Number of the calls whose number (when the key is one) or name begins with `key`: one comparison
// of texts each.
int WalkTexts(const Records& records, const std::string& key);

// One open, write and close.
void WriteBytes(const std::string& path, const std::string& bytes);

// As TinyXML does it by default: from the file, or from a text in memory. False when it cannot.
bool ParseFile(const std::string& path);
bool ParseText(const std::string& text);

// The history file by RapidXml's tree, with a copy of each text, and its stream operator.
void SaveByStream(const std::string& path, const Records& records);

}  // namespace bench
