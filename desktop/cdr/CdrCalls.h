// Legs to calls: which legs belong together, and what the extension's phone made of them. Rows,
// text and layouts are left to CdrFile. The rules stand with ReadCallRecords().
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "desktop/cdr/CallRecords.h"
#include "desktop/cdr/CdrFile.h"

namespace desk {

class CdrCalls {
 public:
  CdrCalls(std::string extension, std::string server);

  // False: the extension has no channel in this leg.
  bool Add(const CdrLeg& leg);

  // The calls of all legs added, the newest hundred of each type, oldest first; at the end, once.
  std::vector<CdrCall> Take();
  // How many were older.
  std::size_t older() const { return older_; }
  // The ten that most legs have, when none has the extension.
  std::vector<std::string> OtherExtensions() const;

 private:
  // What is kept of a leg of the extension's: files are long.
  struct OwnLeg {
    std::size_t row;
    std::uint64_t record;
    bool placed;    // by the extension; false: to it
    bool answered;  // by whoever was called, as the extension saw it
    int start;
    int duration;
    int billsec;
    std::string number;  // the other party's
    std::string name;
    std::string channel;  // placed legs only: those of one channel are one call
  };

  // Legs with an id in common.
  struct Group {
    std::size_t firstRow;
    bool answered;
    std::vector<std::uint64_t> ids;
    std::vector<OwnLeg> legs;
  };
  using Groups = std::list<Group>;
  using Place = std::pair<int, std::size_t>;  // start and row of a call's first leg
  using Calls = std::map<Place, CdrCall>;

  void CountOther(std::string_view name);
  Groups::iterator GroupOf(const CdrLeg& leg);
  Groups::iterator Join(Groups::iterator group, Groups::iterator other);
  void Finish();  // the oldest group
  CdrCall MakeCall(const OwnLeg& own) const;
  void Keep(const Place& place, CdrCall call);

  std::string extension_;
  std::string server_;
  std::size_t rows_ = 0;
  Groups groups_;  // by their first rows
  std::unordered_map<std::uint64_t, Groups::iterator> groupOfId_;
  std::map<int, Calls> kept_;  // by type
  std::size_t older_ = 0;
  bool found_ = false;                                      // a leg of the extension's
  std::map<std::string, std::size_t, std::less<>> others_;  // legs of other extensions until then
};

}  // namespace desk
