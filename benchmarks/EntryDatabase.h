// A server's call log in SQLite, in memory: what the module keeps of it.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <string>

#include "CallLogRecords.h"

namespace bench {

class EntryDatabase {
 public:
  EntryDatabase();

  // Parses the file with TinyXML and inserts its entries, in one transaction.
  void Load(const std::string& path);
  void Clear();
  void GetPage(CallLogSimpleListData* page);

 private:
  SQLite::Database database_;
  SQLite::Statement insert_, page_;
  int count_ = 0;
};

}  // namespace bench
