#include "benchmarks/EntryDatabase.h"

#include <tinyxml.h>

#include "platform/TinyXmlHelper.h"

namespace bench {
namespace {

Connection Create() {
  Connection connection(":memory:");
  connection.Execute(
      "CREATE TABLE entries (position INTEGER PRIMARY KEY, name TEXT NOT NULL,"
      " number TEXT NOT NULL, time TEXT NOT NULL, country TEXT NOT NULL)");
  return connection;
}

std::string ChildText(TiXmlElement* entry, const char* name) {
  return TinyXml_GetElemText(entry->FirstChildElement(name), "");
}

// "2026-10-07T09:00:12.618Z" as "10-07-2026 09:00:12".
std::string DisplayTime(const std::string& time) {
  return time.substr(5, 5) + "-" + time.substr(0, 4) + " " + time.substr(11, 8);
}

}  // namespace

EntryDatabase::EntryDatabase()
    : connection_(Create()),
      insert_(connection_, "INSERT INTO entries VALUES (?,?,?,?,?)"),
      page_(connection_,
            "SELECT name, number, time FROM entries WHERE position >= ?1"
            " ORDER BY position LIMIT ?2") {}

void EntryDatabase::Load(const std::string& path) {
  TiXmlDocument document;
  document.LoadFile(path);
  connection_.Execute("BEGIN");
  for (TiXmlElement* entry = document.RootElement()->FirstChildElement("callLogsEntry");
       entry != nullptr; entry = entry->NextSiblingElement("callLogsEntry")) {
    const std::string name = ChildText(entry, "name"), number = ChildText(entry, "phoneNumber"),
                      time = DisplayTime(ChildText(entry, "time")),
                      country = ChildText(entry, "countryCode");
    insert_.Bind(1, count_++);
    insert_.Bind(2, name);
    insert_.Bind(3, number);
    insert_.Bind(4, time);
    insert_.Bind(5, country);
    insert_.Run();
  }
  connection_.Execute("COMMIT");
}

void EntryDatabase::Clear() {
  connection_.Execute("DELETE FROM entries");
  count_ = 0;
}

void EntryDatabase::GetPage(CallLogSimpleListData* page) {
  page_.Bind(1, page->request_index);
  page_.Bind(2, page->request_count);
  while (page_.Step()) {
    CallLogSimpleData& row = page->items.emplace_back();
    page_.Text(0, &row.display_name);
    if (row.display_name.empty()) page_.Text(1, &row.display_name);
    page_.Text(2, &row.time_text);
  }
  page_.Reset();
  page->total = count_;
}

}  // namespace bench
