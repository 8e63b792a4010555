#include "benchmarks/CallDatabase.h"

#include <cctype>
#include <filesystem>

#include "benchmarks/Data.h"
#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"
#include "platform/SettingTime.h"

namespace bench {
namespace {

constexpr char kFileName[] = "calls.db";

constexpr char kSchema[] =
    "CREATE TABLE calls (id INTEGER PRIMARY KEY, type INT NOT NULL, born_tick INT NOT NULL,"
    " duration INT NOT NULL, local_name TEXT NOT NULL, local_server TEXT NOT NULL,"
    " name TEXT NOT NULL, number TEXT NOT NULL, server TEXT NOT NULL, forward_name TEXT NOT NULL,"
    " forward_number TEXT NOT NULL, forward_server TEXT NOT NULL, keys TEXT NOT NULL,"
    " is_new INT NOT NULL);"
    "CREATE INDEX by_type ON calls (type, born_tick);"
    "CREATE INDEX by_time ON calls (born_tick)";

SQLite::Database Open(const std::string& path) {
  SQLite::Database database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
  database.exec("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
  return database;
}

SQLite::Database Create(const std::string& storage) {
  for (const char* end : {"", "-wal", "-shm"}) {
    std::filesystem::remove(std::string(kFileName) + end);
  }
  SQLite::Database database = Open(storage == kFile ? kFileName : ":memory:");
  database.exec(kSchema);
  return database;
}

void Run(SQLite::Statement* statement) {
  statement->exec();
  statement->reset();
}

// Appends an item for each row.
template <class List, class MakeItem>
void AppendRows(SQLite::Statement* rows, List* list, MakeItem makeItem) {
  while (rows->executeStep()) makeItem(&list->items.emplace_back());
  rows->reset();
}

template <class Page, class MakeItem>
void FillPage(PagedQuery* query, Page* page, MakeItem makeItem) {
  SQLite::bind(query->rows, page->request_count, page->request_index);
  AppendRows(&query->rows, page, makeItem);
  query->total.executeStep();
  page->total = query->total.getColumn(0);
  query->total.reset();
}

void FillPage(PagedQuery* query, CallLogSearchListData* page) {
  FillPage(query, page, [rows = &query->rows](CallLogSearchData* row) {
    row->display_name = rows->getColumn(0).getString();
    row->number = rows->getColumn(1).getString();
  });
}

}  // namespace

PagedQuery::PagedQuery(const SQLite::Database& database, const std::string& columns,
                       const std::string& calls, const std::string& order)
    : rows(database,
           "SELECT " + columns + " FROM " + calls + " ORDER BY " + order + " LIMIT ?1 OFFSET ?2"),
      total(database, "SELECT count(*) FROM (SELECT " + columns + " FROM " + calls + ")") {}

CallDatabase::CallDatabase(const std::string& storage, const std::vector<CallLogAddItemData>& calls)
    : database_(Create(storage)),
      begin_(database_, "BEGIN IMMEDIATE"),
      commit_(database_, "COMMIT"),
      insert_(database_, "INSERT INTO calls VALUES (NULL,?,?,?,?,?,?,?,?,?,?,?,?,1)"),
      removeBeyondCap_(database_,
                       "DELETE FROM calls WHERE id IN (SELECT id FROM calls WHERE type = ?"
                       " ORDER BY born_tick DESC LIMIT -1 OFFSET ?)"),
      removeAll_(database_, "DELETE FROM calls"),
      rename_(database_, "UPDATE calls SET name = ? WHERE number = ?"),
      ofType_(database_, "name, born_tick, type", "calls WHERE type = ?3", "born_tick DESC"),
      ofAll_(database_, "name, born_tick, type", "calls", "born_tick DESC"),
      byNumber_(database_, "DISTINCT name, number",
                "calls WHERE (number >= ?3 AND number < ?4) OR (keys >= ?3 AND keys < ?4)",
                "name, number"),
      byName_(database_, "DISTINCT name, number",
              "calls WHERE name COLLATE NOCASE >= ?3 AND name COLLATE NOCASE < ?4", "name, number"),
      dialled_(database_, "name, number, count(*) AS calls, max(born_tick) AS last",
               "calls WHERE type = 1 GROUP BY number", "calls DESC, last DESC"),
      detail_(database_,
              "SELECT name, number, server, born_tick, duration, type FROM calls WHERE type = ?"
              " ORDER BY born_tick DESC LIMIT 1 OFFSET ?"),
      missed_(database_,
              "SELECT name, number, count(*), max(born_tick) AS last FROM calls"
              " WHERE type = 2 AND is_new GROUP BY name ORDER BY last DESC LIMIT 21") {
  ReplaceAll(calls);
}

void CallDatabase::Insert(const CallLogAddItemData& call) {
  const std::string keys = CommonUnits_ToKeyString(call.remote_display_name);
  SQLite::bind(insert_, call.type, call.born_tick, call.duration);
  int parameter = 3;
  for (const std::string* text :
       {&call.local_sip_name, &call.local_sip_server, &call.remote_display_name,
        &call.remote_sip_name, &call.remote_sip_server, &call.forward_display_name,
        &call.forward_sip_name, &call.forward_sip_server, &keys}) {
    insert_.bindNoCopy(++parameter, *text);
  }
  Run(&insert_);
}

void CallDatabase::Add(const CallLogAddItemData& call) {
  Run(&begin_);
  Insert(call);
  SQLite::bind(removeBeyondCap_, call.type, kCallsPerType);
  Run(&removeBeyondCap_);
  Run(&commit_);
}

void CallDatabase::ReplaceAll(const std::vector<CallLogAddItemData>& calls) {
  Run(&begin_);
  Run(&removeAll_);
  for (const CallLogAddItemData& call : calls) Insert(call);
  Run(&commit_);
}

void CallDatabase::Rename(const std::list<SuperSearchItemData>& parties) {
  Run(&begin_);
  for (const SuperSearchItemData& party : parties) {
    rename_.bindNoCopy(1, party.display_name);
    rename_.bindNoCopy(2, party.number);
    Run(&rename_);
  }
  Run(&commit_);
}

void CallDatabase::GetPage(CallLogSimpleListData* page, int type) {
  PagedQuery& query = type == 0 ? ofAll_ : ofType_;
  if (type != 0) {
    query.rows.bind(3, type);
    query.total.bind(3, type);
  }
  FillPage(&query, page, [rows = &query.rows](CallLogSimpleData* row) {
    row->display_name = rows->getColumn(0).getString();
    row->time_text = Setting_CallLogTime2String(rows->getColumn(1), " ");
    row->type = rows->getColumn(2);
  });
}

void CallDatabase::GetDetail(CallLogDetailData* detail, int type, int row) {
  SQLite::bind(detail_, type, row);
  if (detail_.executeStep()) {
    detail->display_name = detail_.getColumn(0).getString();
    detail->number = detail_.getColumn(1).getString();
    detail->server = detail_.getColumn(2).getString();
    detail->time_text = Setting_Time2String(detail_.getColumn(3), " ");
    const int seconds = detail_.getColumn(4);
    detail->duration_text =
        CommonAPI_FormatString("%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
    detail->type = detail_.getColumn(5);
  }
  detail_.reset();
}

void CallDatabase::Search(CallLogSearchListData* page, const std::string& key) {
  const bool number = std::isdigit(static_cast<unsigned char>(key.front())) != 0;
  PagedQuery& query = number ? byNumber_ : byName_;
  std::string end = key;  // behind every text that begins with the key
  ++end.back();
  for (SQLite::Statement* const statement : {&query.rows, &query.total}) {
    statement->bindNoCopy(3, key);
    statement->bindNoCopy(4, end);
  }
  FillPage(&query, page);
}

void CallDatabase::GetMostDialled(CallLogSearchListData* page) { FillPage(&dialled_, page); }

void CallDatabase::GetMissed(MissedNotifyListData* list) {
  AppendRows(&missed_, list, [this](MissedCallData* row) {
    row->display_name = missed_.getColumn(0).getString();
    row->number = missed_.getColumn(1).getString();
    row->count = missed_.getColumn(2);
  });
}

std::vector<CallLogAddItemData> CallDatabase::ReadFile() {
  const SQLite::Database database = Open(kFileName);
  SQLite::Statement rows(database,
                         "SELECT type, born_tick, duration, local_name, local_server, name, number,"
                         " server FROM calls ORDER BY born_tick DESC");
  std::vector<CallLogAddItemData> calls;
  while (rows.executeStep()) {
    CallLogAddItemData& call = calls.emplace_back();
    call.type = rows.getColumn(0);
    call.born_tick = rows.getColumn(1);
    call.duration = rows.getColumn(2);
    int column = 3;
    for (std::string* text :
         {&call.local_sip_name, &call.local_sip_server, &call.remote_display_name,
          &call.remote_sip_name, &call.remote_sip_server}) {
      *text = rows.getColumn(column++).getString();
    }
  }
  return calls;
}

}  // namespace bench
