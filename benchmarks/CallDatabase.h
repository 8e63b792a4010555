// The contestant that one would take instead: the call history in SQLite, with the same answers as
// the module's.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "CallLogRecords.h"
#include "benchmarks/Data.h"
#include "benchmarks/Sqlite.h"

namespace bench {

enum class Storage {
  kMemory,
  kWal,      // a file; write-ahead log, synchronous NORMAL
  kJournal,  // a file; journal DELETE, synchronous FULL
};

inline constexpr Storage kStorages[] = {Storage::kMemory, Storage::kWal, Storage::kJournal};

const char* NameOf(Storage storage);  // of the contestant

enum class Indexes {
  kUsual,   // by type and time, and by time
  kSearch,  // also by number, key-pad form and name, at the cost of every add
};

// All statements are prepared in the constructor; every change is one transaction. Texts of time
// and the key-pad form of names come from the same platform as the module's.
class CallDatabase {
 public:
  // Replaces what was there.
  explicit CallDatabase(Storage storage, Indexes indexes = Indexes::kUsual);

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
  Statement begin_, commit_, insert_, removeBeyondCap_, removeNewest_, removeAll_, rename_;
  Statement page_, total_, pageOfAll_, totalOfAll_, detail_;
  Statement byNumber_, byNumberTotal_, byName_, byNameTotal_, dialled_, dialledTotal_, missed_;
};

}  // namespace bench
