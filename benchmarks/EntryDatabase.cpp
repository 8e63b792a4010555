#include "benchmarks/EntryDatabase.h"

#include <tinyxml.h>

#include "platform/TinyXmlHelper.h"

namespace bench {
namespace {

SQLite::Database Create() {
  SQLite::Database database(":memory:", SQLite::OPEN_READWRITE);
  database.exec(
      "CREATE TABLE entries (position INTEGER PRIMARY KEY, name TEXT NOT NULL,"
      " number TEXT NOT NULL, time TEXT NOT NULL, country TEXT NOT NULL)");
  return database;
}

// "2026-10-07T09:00:12.618Z" as "10-07-2026 09:00:12".
std::string DisplayTime(const std::string& time) {
  return time.substr(5, 5) + "-" + time.substr(0, 4) + " " + time.substr(11, 8);
}

}  // namespace

EntryDatabase::EntryDatabase()
    : database_(Create()),
      insert_(database_, "INSERT INTO entries VALUES (?,?,?,?,?)"),
      page_(database_,
            "SELECT name, number, time FROM entries WHERE position >= ?"
            " ORDER BY position LIMIT ?") {}

void EntryDatabase::Load(const std::string& path) {
  TiXmlDocument document;
  document.LoadFile(path);
  SQLite::Transaction transaction(database_);
  for (TiXmlElement* entry = document.RootElement()->FirstChildElement("callLogsEntry");
       entry != nullptr; entry = entry->NextSiblingElement("callLogsEntry")) {
    const auto text = [entry](const char* name) {
      return TinyXml_GetElemText(entry->FirstChildElement(name), "");
    };
    SQLite::bind(insert_, count_++, text("name"), text("phoneNumber"), DisplayTime(text("time")),
                 text("countryCode"));
    insert_.exec();
    insert_.reset();
  }
  transaction.commit();
}

void EntryDatabase::Clear() {
  database_.exec("DELETE FROM entries");
  count_ = 0;
}

void EntryDatabase::GetPage(CallLogSimpleListData* page) {
  SQLite::bind(page_, page->request_index, page->request_count);
  while (page_.executeStep()) {
    CallLogSimpleData& row = page->items.emplace_back();
    row.display_name = page_.getColumn(0).getString();
    if (row.display_name.empty()) row.display_name = page_.getColumn(1).getString();
    row.time_text = page_.getColumn(2).getString();
  }
  page_.reset();
  page->total = count_;
}

}  // namespace bench
