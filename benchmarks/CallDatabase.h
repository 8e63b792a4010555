// The contestant that one would take instead: the call history in SQLite, with the same answers as
// the module's. What fails throws: a contestant that does less than its work must not win.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <list>
#include <string>
#include <vector>

#include "CallLogRecords.h"
#include "benchmarks/Case.h"

namespace bench {

// By the contestants' names: in memory; or in a file, whose changes survive a power cut.
inline constexpr const char* kStorages[] = {kMemory, kFile};

// A list that is asked for pages.
struct PagedQuery {
  // `calls` is what stands behind FROM; its parameters begin with ?3.
  PagedQuery(const SQLite::Database& database, const std::string& columns, const std::string& calls,
             const std::string& order);

  SQLite::Statement rows;  // ?1 of them at most, from ?2 on
  SQLite::Statement total;
};

// All statements are prepared in the constructor; every change is one transaction. Texts of time
// and the key-pad form of names come from the same platform as the module's.
class CallDatabase {
 public:
  // Replaces what was there.
  CallDatabase(const std::string& storage, const std::vector<CallLogAddItemData>& calls);

  void Add(const CallLogAddItemData& call);
  void ReplaceAll(const std::vector<CallLogAddItemData>& calls);
  // Every call of a party's number gets the party's name.
  void Rename(const std::list<SuperSearchItemData>& parties);

  void GetPage(CallLogSimpleListData* page, int type);
  void GetDetail(CallLogDetailData* detail, int type, int row);
  void Search(CallLogSearchListData* page, const std::string& key);
  void GetMostDialled(CallLogSearchListData* page);
  void GetMissed(MissedNotifyListData* list);

  // Opens the file that is there, and reads all its calls, newest first.
  static std::vector<CallLogAddItemData> ReadFile();

 private:
  void Insert(const CallLogAddItemData& call);

  SQLite::Database database_;
  SQLite::Statement begin_, commit_, insert_, removeBeyondCap_, removeAll_, rename_;
  PagedQuery ofType_, ofAll_, byNumber_, byName_, dialled_;
  SQLite::Statement detail_, missed_;
};

}  // namespace bench
