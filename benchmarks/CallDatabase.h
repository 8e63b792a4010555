// The contestant that one would take instead: the call history in SQLite, with the same answers as
// the module's.
#pragma once

#include <array>
#include <list>
#include <string>
#include <vector>

#include "CallLogRecords.h"
#include "Data.h"
#include "Sqlite.h"

namespace bench {

enum class Storage {
  kMemory,
  kWal,      // a file; write-ahead log, synchronous NORMAL
  kJournal,  // a file; journal DELETE, synchronous FULL
};

inline constexpr Storage kStorages[] = {Storage::kMemory, Storage::kWal, Storage::kJournal};

const char* NameOf(Storage storage);  // of the contestant

// What a table is for decides its indexes: each work is measured on the ones that suit it.
enum class Purpose {
  kAdding,    // by type and time
  kLists,     // also by time alone
  kNames,     // by type and time, and by number
  kPrefixes,  // by number, key-pad form and name: finds what begins with a key, then sorts it
  kOrder,     // by name and number: walks the calls in the order of the answer
};

// All statements are prepared in the constructor; every change is one transaction. The number of
// calls of each type is kept beside the table: then no total is counted by SQL, and the cap costs
// one DELETE. Texts of time and the key-pad form of names come from the same platform as the
// module's.
class CallDatabase {
 public:
  // Replaces what was there.
  CallDatabase(Storage storage, Purpose purpose);

  void Add(const CallLogAddItemData& call);
  void AddAll(const std::vector<CallLogAddItemData>& calls);
  void RemoveNewest(int type);
  void ReplaceAll(const std::vector<CallLogAddItemData>& calls);
  // Every call of a party's number gets the party's name.
  void Rename(const std::list<SuperSearchItemData>& parties);

  void GetPage(CallLogSimpleListData* page, int type);
  void GetDetail(CallLogDetailData* detail, int type, int row);
  void Search(CallLogSearchListData* page, const std::string& key);
  void GetMostDialled(CallLogSearchListData* page);
  void GetMissed(MissedNotifyListData* list);

  // Opens a file that is there, and reads all its calls, newest first.
  static std::vector<CallLogAddItemData> ReadAll(Storage storage);

 private:
  void Insert(const CallLogAddItemData& call);

  Connection connection_;
  std::array<int, kTypes + 1> counts_{};  // by type; 0 for all
  Statement begin_, commit_, insert_, removeOldest_, removeNewest_, removeAll_, rename_;
  Statement page_, pageOfAll_, detail_;
  Statement byNumber_, byNumberTotal_, byName_, byNameTotal_, dialled_, dialledTotal_, missed_;
};

}  // namespace bench
