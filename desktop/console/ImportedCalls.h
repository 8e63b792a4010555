// The calls that were brought in before: neither a second import nor one that was killed brings
// them in again, and what the user has removed stays removed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "desktop/cdr/CallRecords.h"

namespace desk {

// The calls that the history holds, and a file `imported_calls` beside its own: a hash a line for
// each record, the newest 100,000 in the order in which they came.
class ImportedCalls {
 public:
  // Of the phone that is on; `folder` holds the file.
  explicit ImportedCalls(const std::filesystem::path& folder);

  // Noted by an earlier import: two calls of one file may look the same.
  bool Has(const CdrCall& call) const;
  void Note(const CdrCall& call);
  // The history with the noted calls must have been saved before: who is killed in between finds
  // them there. False: errno tells why.
  bool Save() const;

 private:
  std::filesystem::path file_;
  std::set<std::string> inHistory_;
  std::vector<std::uint64_t> records_;
  std::unordered_set<std::uint64_t> known_;  // those of before
};

}  // namespace desk
