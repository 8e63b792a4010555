#include "benchmarks/CallDatabase.h"

#include <cctype>
#include <filesystem>

#include "benchmarks/Case.h"
#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"
#include "platform/SettingTime.h"

namespace bench {
namespace {

constexpr char kTable[] =
    "CREATE TABLE calls (id INTEGER PRIMARY KEY, type INT NOT NULL, born_tick INT NOT NULL,"
    " duration INT NOT NULL, local_name TEXT NOT NULL, local_server TEXT NOT NULL,"
    " name TEXT NOT NULL, number TEXT NOT NULL, server TEXT NOT NULL, forward_name TEXT NOT NULL,"
    " forward_number TEXT NOT NULL, forward_server TEXT NOT NULL, keys TEXT NOT NULL,"
    " is_new INT NOT NULL)";

constexpr char kUsualIndexes[] =
    "CREATE INDEX by_type ON calls (type, born_tick);"
    "CREATE INDEX by_time ON calls (born_tick)";

constexpr char kSearchIndexes[] =
    "CREATE INDEX by_number ON calls (number, name);"
    "CREATE INDEX by_keys ON calls (keys, name, number);"
    "CREATE INDEX by_name ON calls (name COLLATE NOCASE, name, number)";

#define BY_NUMBER "((number >= ?1 AND number < ?2) OR (keys >= ?1 AND keys < ?2))"
#define BY_NAME "(name COLLATE NOCASE >= ?1 AND name COLLATE NOCASE < ?2)"

// Behind every text that begins with `key`, and before all others that are greater.
std::string EndOf(std::string key) {
  ++key.back();
  return key;
}

std::string FileName(Storage storage) {
  switch (storage) {
    case Storage::kWal: return "wal.db";
    case Storage::kJournal: return "journal.db";
    default: return ":memory:";
  }
}

Connection Open(Storage storage) {
  Connection connection(FileName(storage));
  if (storage == Storage::kWal) {
    connection.Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
  } else if (storage == Storage::kJournal) {
    connection.Execute("PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
  }
  return connection;
}

Connection Create(Storage storage, Indexes indexes) {
  for (const char* end : {"", "-wal", "-shm"}) std::filesystem::remove(FileName(storage) + end);
  Connection connection = Open(storage);
  connection.Execute(kTable);
  connection.Execute(kUsualIndexes);
  if (indexes == Indexes::kSearch) connection.Execute(kSearchIndexes);
  return connection;
}

// The rows of a page of names and numbers, and their total.
void FillPage(CallLogSearchListData* page, Statement* rows, Statement* total) {
  rows->Bind(3, page->request_count);
  rows->Bind(4, page->request_index);
  while (rows->Step()) {
    CallLogSearchData& row = page->items.emplace_back();
    rows->Text(0, &row.display_name);
    rows->Text(1, &row.number);
  }
  rows->Reset();
  total->Step();
  page->total = total->Number(0);
  total->Reset();
}

std::string DurationText(int seconds) {
  return CommonAPI_FormatString("%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

}  // namespace

const char* NameOf(Storage storage) {
  switch (storage) {
    case Storage::kWal: return kWal;
    case Storage::kJournal: return kJournal;
    default: return kMemory;
  }
}

CallDatabase::CallDatabase(Storage storage, Indexes indexes)
    : connection_(Create(storage, indexes)),
      begin_(connection_, "BEGIN IMMEDIATE"),
      commit_(connection_, "COMMIT"),
      insert_(connection_, "INSERT INTO calls VALUES (NULL,?,?,?,?,?,?,?,?,?,?,?,?,1)"),
      removeBeyondCap_(connection_,
                       "DELETE FROM calls WHERE id IN (SELECT id FROM calls WHERE type = ?1"
                       " ORDER BY born_tick DESC LIMIT -1 OFFSET ?2)"),
      removeNewest_(connection_,
                    "DELETE FROM calls WHERE id = (SELECT id FROM calls WHERE type = ?1"
                    " ORDER BY born_tick DESC LIMIT 1)"),
      removeAll_(connection_, "DELETE FROM calls"),
      rename_(connection_, "UPDATE calls SET name = ?1 WHERE number = ?2"),
      page_(connection_,
            "SELECT name, born_tick, type FROM calls WHERE type = ?1"
            " ORDER BY born_tick DESC LIMIT ?2 OFFSET ?3"),
      total_(connection_, "SELECT count(*) FROM calls WHERE type = ?1"),
      pageOfAll_(connection_,
                 "SELECT name, born_tick, type FROM calls ORDER BY born_tick DESC"
                 " LIMIT ?2 OFFSET ?3"),
      totalOfAll_(connection_, "SELECT count(*) FROM calls"),
      detail_(connection_,
              "SELECT name, number, server, born_tick, duration, type FROM calls WHERE type = ?1"
              " ORDER BY born_tick DESC LIMIT 1 OFFSET ?2"),
      byNumber_(connection_, "SELECT DISTINCT name, number FROM calls WHERE " BY_NUMBER
                             " ORDER BY name, number LIMIT ?3 OFFSET ?4"),
      byNumberTotal_(connection_,
                     "SELECT count(*) FROM (SELECT DISTINCT name, number FROM calls"
                     " WHERE " BY_NUMBER ")"),
      byName_(connection_, "SELECT DISTINCT name, number FROM calls WHERE " BY_NAME
                           " ORDER BY name, number LIMIT ?3 OFFSET ?4"),
      byNameTotal_(connection_,
                   "SELECT count(*) FROM (SELECT DISTINCT name, number FROM calls"
                   " WHERE " BY_NAME ")"),
      dialled_(connection_,
               "SELECT name, number, count(*) AS calls, max(born_tick) AS last FROM calls"
               " WHERE type = 1 GROUP BY number ORDER BY calls DESC, last DESC LIMIT ?3 OFFSET ?4"),
      dialledTotal_(connection_, "SELECT count(DISTINCT number) FROM calls WHERE type = 1"),
      missed_(connection_,
              "SELECT name, number, count(*), max(born_tick) AS last FROM calls"
              " WHERE type = 2 AND is_new GROUP BY name ORDER BY last DESC LIMIT 21") {}

void CallDatabase::Insert(const CallLogAddItemData& call) {
  const std::string keys = CommonUnits_ToKeyString(call.remote_display_name);
  int parameter = 0;
  for (const int number : {call.type, call.born_tick, call.duration}) {
    insert_.Bind(++parameter, number);
  }
  for (const std::string* text :
       {&call.local_sip_name, &call.local_sip_server, &call.remote_display_name,
        &call.remote_sip_name, &call.remote_sip_server, &call.forward_display_name,
        &call.forward_sip_name, &call.forward_sip_server, &keys}) {
    insert_.Bind(++parameter, *text);
  }
  insert_.Run();
}

void CallDatabase::Add(const CallLogAddItemData& call) {
  begin_.Run();
  Insert(call);
  removeBeyondCap_.Bind(1, call.type);
  removeBeyondCap_.Bind(2, kCallsPerType);
  removeBeyondCap_.Run();
  commit_.Run();
}

void CallDatabase::AddAll(const std::vector<CallLogAddItemData>& calls) {
  begin_.Run();
  for (const CallLogAddItemData& call : calls) Insert(call);
  commit_.Run();
}

void CallDatabase::RemoveNewest(int type) {
  removeNewest_.Bind(1, type);
  removeNewest_.Run();
}

void CallDatabase::ReplaceAll(const std::vector<CallLogAddItemData>& calls) {
  begin_.Run();
  removeAll_.Run();
  for (const CallLogAddItemData& call : calls) Insert(call);
  commit_.Run();
}

void CallDatabase::Rename(const std::list<SuperSearchItemData>& parties) {
  begin_.Run();
  for (const SuperSearchItemData& party : parties) {
    rename_.Bind(1, party.display_name);
    rename_.Bind(2, party.number);
    rename_.Run();
  }
  commit_.Run();
}

void CallDatabase::GetPage(CallLogSimpleListData* page, int type) {
  Statement& rows = type == 0 ? pageOfAll_ : page_;
  Statement& total = type == 0 ? totalOfAll_ : total_;
  if (type != 0) rows.Bind(1, type);
  if (type != 0) total.Bind(1, type);
  rows.Bind(2, page->request_count);
  rows.Bind(3, page->request_index);
  while (rows.Step()) {
    CallLogSimpleData& row = page->items.emplace_back();
    rows.Text(0, &row.display_name);
    row.time_text = Setting_CallLogTime2String(rows.Number(1), " ");
    row.type = rows.Number(2);
  }
  rows.Reset();
  total.Step();
  page->total = total.Number(0);
  total.Reset();
}

void CallDatabase::GetDetail(CallLogDetailData* detail, int type, int row) {
  detail_.Bind(1, type);
  detail_.Bind(2, row);
  if (detail_.Step()) {
    detail_.Text(0, &detail->display_name);
    detail_.Text(1, &detail->number);
    detail_.Text(2, &detail->server);
    detail->time_text = Setting_Time2String(detail_.Number(3), " ");
    detail->duration_text = DurationText(detail_.Number(4));
    detail->type = detail_.Number(5);
  }
  detail_.Reset();
}

void CallDatabase::Search(CallLogSearchListData* page, const std::string& key) {
  const bool number = std::isdigit(static_cast<unsigned char>(key.front())) != 0;
  Statement& rows = number ? byNumber_ : byName_;
  Statement& total = number ? byNumberTotal_ : byNameTotal_;
  const std::string end = EndOf(key);
  for (Statement* const statement : {&rows, &total}) {
    statement->Bind(1, key);
    statement->Bind(2, end);
  }
  FillPage(page, &rows, &total);
}

void CallDatabase::GetMostDialled(CallLogSearchListData* page) {
  FillPage(page, &dialled_, &dialledTotal_);
}

void CallDatabase::GetMissed(MissedNotifyListData* list) {
  while (missed_.Step()) {
    MissedCallData& row = list->items.emplace_back();
    missed_.Text(0, &row.display_name);
    missed_.Text(1, &row.number);
    row.count = missed_.Number(2);
  }
  missed_.Reset();
}

std::vector<CallLogAddItemData> CallDatabase::ReadAll(Storage storage) {
  const Connection connection = Open(storage);
  Statement rows(connection,
                 "SELECT type, born_tick, duration, local_name, local_server, name, number, server"
                 " FROM calls ORDER BY born_tick DESC");
  std::vector<CallLogAddItemData> calls;
  while (rows.Step()) {
    CallLogAddItemData& call = calls.emplace_back();
    int column = 0;
    for (int* number : {&call.type, &call.born_tick, &call.duration}) {
      *number = rows.Number(column++);
    }
    for (std::string* text :
         {&call.local_sip_name, &call.local_sip_server, &call.remote_display_name,
          &call.remote_sip_name, &call.remote_sip_server}) {
      rows.Text(column++, text);
    }
  }
  return calls;
}

}  // namespace bench
