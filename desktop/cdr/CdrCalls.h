// Legs to calls: which legs belong together, and what the extension's phone made of them. Rows,
// text and layouts are left to CdrFile. The rules stand with ReadCallRecords().
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "CallLogRecords.h"
#include "desktop/cdr/CdrFile.h"

namespace desk {

class CdrCalls {
 public:
  CdrCalls(std::string extension, std::string server);

  // False: the extension has no channel in this leg.
  bool Add(const CdrLeg& leg);

  // The calls of all legs added, oldest first.
  std::vector<CallLogAddItemData> Take();

 private:
  // What is kept of a leg of the extension's: files are long.
  struct OwnLeg {
    std::size_t group;
    bool placed;    // by the extension; false: to it
    bool answered;  // by whoever was called, as the extension saw it
    int start;
    int duration;
    int billsec;
    std::string number;  // the other party's
    std::string name;
    std::string channel;  // placed legs only: those of one channel are one call
  };

  // Legs with an id in common. Groups that turn out to be one point to their root, whose flag
  // counts.
  struct Group {
    std::size_t parent;
    bool answered;
  };

  std::size_t NewGroup();
  std::size_t GroupOfId(const std::string& id);
  std::size_t GroupOf(const CdrLeg& leg);
  std::size_t Root(std::size_t group);
  CallLogAddItemData MakeCall(const OwnLeg& own) const;

  std::string extension_;
  std::string server_;
  std::vector<OwnLeg> legs_;
  std::vector<Group> groups_;
  std::unordered_map<std::string, std::size_t> groupOfId_;
};

}  // namespace desk
