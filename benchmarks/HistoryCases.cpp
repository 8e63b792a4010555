// The history in memory: add, lists, details, tallies, names.
#include <algorithm>

#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Reading.h"

namespace bench {
namespace {

using Calls = std::vector<CallLogAddItemData>;

constexpr int kMissed = 2;

// Calls without end, each newer than all before, the types in turn.
class Feed {
 public:
  explicit Feed(const Calls& calls) : calls_(calls), time_(calls.back().born_tick) {}

  const CallLogAddItemData& Next() {
    CallLogAddItemData& call = calls_[next_];
    next_ = (next_ + 1) % calls_.size();
    call.born_tick = ++time_;
    return call;
  }

 private:
  Calls calls_;
  std::size_t next_ = 0;
  int time_;
};

std::shared_ptr<CallDatabase> Filled(Storage storage, const Calls& calls) {
  auto database = std::make_shared<CallDatabase>(storage);
  database->AddAll(calls);
  return database;
}

std::string Rows(CallDatabase* database, int type, int count) {
  CallLogSimpleListData page;
  page.request_count = count;
  database->GetPage(&page, type);
  return Text(page);
}

Operation Walking(const Calls& calls) {
  const std::shared_ptr<Records> records = std::make_shared<Records>(MakeRecords(calls));
  const int time = calls.empty() ? 0 : calls.front().born_tick;
  Operation operation;
  operation.run = [records, time] {
    volatile int count = Walk(*records, time);
    static_cast<void>(count);
  };
  return operation;
}

Operation AddingToModule() {
  const auto feed = std::make_shared<Feed>(OfficeCalls(kCalls));
  StartModule(OfficeCalls(kCalls));
  Operation operation;
  operation.run = [feed] { CallLog_AddLog(feed->Next()); };
  operation.answer = [] { return ModuleRows(0, kCalls); };
  return operation;
}

Operation AddingTo(Storage storage) {
  const auto feed = std::make_shared<Feed>(OfficeCalls(kCalls));
  const auto database = Filled(storage, OfficeCalls(kCalls));
  Operation operation;
  operation.run = [feed, database] { database->Add(feed->Next()); };
  operation.answer = [database] { return Rows(database.get(), 0, kCalls); };
  return operation;
}

void AppendAdd(Cases* cases) {
  cases->push_back({"add", kModule, AddingToModule});
  for (const Storage storage : kStorages) {
    cases->push_back({"add", NameOf(storage), [storage] { return AddingTo(storage); }});
  }
  cases->push_back({"add", kWalk, [] { return Walking(OfficeCalls(kCalls)); }});
}

// Below its capacity the history would grow: the call that was added goes again.
void AppendAddTo(Cases* cases, int records) {
  const std::string work = "records " + std::to_string(records) + " add";
  const auto call = std::make_shared<CallLogAddItemData>(OfficeCalls(records + 1).back());
  const bool full = records == kCalls;
  const auto module = [call, records, full] {
    StartModule(OfficeCalls(records));
    Operation operation;
    operation.run = [call] { CallLog_AddLog(*call); };
    operation.restore = [call, full] {
      ++call->born_tick;
      if (!full) Module().RemoveLog(Action(call->type), 0);
    };
    if (!full) operation.run();
    return operation;
  };
  const auto sqlite = [call, records, full] {
    const auto database = Filled(Storage::kMemory, OfficeCalls(records));
    Operation operation;
    operation.run = [call, database] { database->Add(*call); };
    operation.restore = [call, database, full] {
      ++call->born_tick;
      if (!full) database->RemoveNewest(call->type);
    };
    if (!full) operation.run();
    return operation;
  };
  cases->push_back({work, kModule, module, true});
  cases->push_back({work, kMemory, sqlite, true});
}

// Two ways to fill a page from a history of so many records.
template <class Page, class FromModule, class FromTable>
void AppendReading(Cases* cases, const std::string& work, int records, FromModule fromModule,
                   FromTable fromTable) {
  cases->push_back({work, kModule, [=] {
                      StartModule(OfficeCalls(records));
                      return Reading<Page>(fromModule);
                    }});
  for (const Storage storage : {Storage::kMemory, Storage::kWal}) {
    cases->push_back({work, NameOf(storage), [=] {
                        const auto table = Filled(storage, OfficeCalls(records));
                        return Reading<Page>([=](Page* page) { fromTable(table.get(), page); });
                      }});
  }
  cases->push_back({work, kWalk, [records] { return Walking(OfficeCalls(records)); }});
}

void AppendPage(Cases* cases, const std::string& work, int records, int type, int row) {
  AppendReading<CallLogSimpleListData>(
      cases, work, records,
      [row, action = Action(type)](auto* page) {
        Module().GetLogListByClickAction(Request(page, row), action);
      },
      [=](CallDatabase* table, auto* page) { table->GetPage(Request(page, row), type); });
}

void AppendDetail(Cases* cases, const std::string& work, int row) {
  AppendReading<CallLogDetailData>(
      cases, work, kCalls,
      [row, action = Action(kMissed)](auto* detail) {
        Module().GetLogDetailByClickAction(detail, action, row);
      },
      [row](CallDatabase* table, auto* detail) { table->GetDetail(detail, kMissed, row); });
}

void AppendTallies(Cases* cases) {
  AppendReading<CallLogSearchListData>(
      cases, "most dialled of 100", kCalls,
      [](auto* page) { CallLog_SearchRecentOutCall(Request(page, 0)); },
      [](CallDatabase* table, auto* page) { table->GetMostDialled(Request(page, 0)); });
  AppendReading<MissedNotifyListData>(
      cases, "missed list, 25 callers", kCalls,
      [](auto* list) { Module().GetMissedNotifyList(list); },
      [](CallDatabase* table, auto* list) { table->GetMissed(list); });
}

// Two lists of names for the same numbers: given in turn, each changes every call that it can.
class Names {
 public:
  explicit Names(std::size_t parties) {
    now_.resize(std::min(parties, now_.size()));
    next_ = now_;
    for (SuperSearchItemData& party : next_) party.display_name += " (mobile)";
  }

  const std::list<SuperSearchItemData>& Next() {
    now_.swap(next_);
    return now_;
  }

 private:
  std::list<SuperSearchItemData> now_ = OfficeParties();
  std::list<SuperSearchItemData> next_;
};

void AppendNames(Cases* cases, const std::string& work, std::size_t parties) {
  const auto module = [parties] {
    const auto names = std::make_shared<Names>(parties);
    StartModule(OfficeCalls(kCalls));
    Operation operation;
    operation.run = [names] { Module().UpdateDispName(names->Next()); };
    operation.answer = [] { return ModuleRows(0, kCalls); };
    return operation;
  };
  const auto sqlite = [parties](Storage storage) {
    return [parties, storage] {
      const auto names = std::make_shared<Names>(parties);
      const auto database = Filled(storage, OfficeCalls(kCalls));
      Operation operation;
      operation.run = [names, database] { database->Rename(names->Next()); };
      operation.answer = [database] { return Rows(database.get(), 0, kCalls); };
      return operation;
    };
  };
  cases->push_back({work, kModule, module});
  for (const Storage storage : kStorages) {
    cases->push_back({work, NameOf(storage), sqlite(storage)});
  }
}

}  // namespace

void AppendHistoryCases(Cases* cases) {
  AppendAdd(cases);
  AppendPage(cases, "page at row 0 of 100", kCalls, kMissed, 0);
  AppendPage(cases, "page at row 90 of 100", kCalls, kMissed, 90);
  AppendPage(cases, "page at row 390 of 400", kCalls, 0, 390);
  AppendDetail(cases, "detail of row 50", 50);
  AppendTallies(cases);
  AppendNames(cases, "name of 1 party", 1);
  AppendNames(cases, "names of 60 parties", 60);
  for (int records = 0; records <= kCalls; records += 50) {
    AppendAddTo(cases, records);
    AppendPage(cases, "records " + std::to_string(records) + " page", records, 0, 0);
  }
}

}  // namespace bench
