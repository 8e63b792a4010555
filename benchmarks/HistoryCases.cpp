// The history in memory: add, lists, details, tallies, names.
#include <algorithm>

#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Module.h"

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

std::string Rows(CallDatabase* database) {
  CallLogSimpleListData page;
  page.request_count = kCalls;
  database->GetPage(&page, 0);
  return Text(page);
}

Operation Walking(const Calls& calls) {
  return {[records = MakeRecords(calls), time = calls.front().born_tick] {
            volatile int count = Walk(records, time);
            static_cast<void>(count);
          },
          {},
          {}};
}

Operation AddingToModule() {
  const Calls calls = OfficeCalls(kCalls);
  StartModule(calls);
  return {[feed = Feed(calls)]() mutable { CallLog_AddLog(feed.Next()); }, ModuleRows, {}};
}

Operation AddingTo(const char* storage) {
  const Calls calls = OfficeCalls(kCalls);
  const auto database = std::make_shared<CallDatabase>(storage, calls);
  return {[feed = Feed(calls), database]() mutable { database->Add(feed.Next()); },
          [database] { return Rows(database.get()); },
          {}};
}

void AppendAdd(Cases* cases) {
  cases->push_back({"add", kModule, AddingToModule});
  for (const char* const storage : kStorages) {
    cases->push_back({"add", storage, [storage] { return AddingTo(storage); }});
  }
  cases->push_back({"add", kWalk, [] { return Walking(OfficeCalls(kCalls)); }});
}

// The call that was added goes again: the history would grow.
Operation AddingToRecords(int records) {
  const auto call = std::make_shared<CallLogAddItemData>(OfficeCalls(records + 1).back());
  StartModule(OfficeCalls(records));
  Operation adding{[call] { CallLog_AddLog(*call); },
                   {},
                   [call] {
                     ++call->born_tick;
                     Module().RemoveLog(Action(call->type), 0);
                   }};
  adding.run();
  return adding;
}

// Two ways to fill a page from a full history.
template <class Page, class FromModule, class FromTable>
void AppendReading(Cases* cases, const std::string& work, FromModule fromModule,
                   FromTable fromTable) {
  cases->push_back({work, kModule, [=] {
                      StartModule(OfficeCalls(kCalls));
                      return Reading<Page>(fromModule);
                    }});
  for (const char* const storage : kStorages) {
    cases->push_back({work, storage, [=] {
                        const auto table =
                            std::make_shared<CallDatabase>(storage, OfficeCalls(kCalls));
                        return Reading<Page>([=](Page* page) { fromTable(table.get(), page); });
                      }});
  }
  cases->push_back({work, kWalk, [] { return Walking(OfficeCalls(kCalls)); }});
}

void AppendPage(Cases* cases, const std::string& work, int type, int row) {
  AppendReading<CallLogSimpleListData>(
      cases, work,
      [row, action = Action(type)](auto* page) {
        Module().GetLogListByClickAction(Request(page, row), action);
      },
      [=](CallDatabase* table, auto* page) { table->GetPage(Request(page, row), type); });
}

void AppendDetail(Cases* cases, const std::string& work, int row) {
  AppendReading<CallLogDetailData>(
      cases, work,
      [row, action = Action(kMissed)](auto* detail) {
        Module().GetLogDetailByClickAction(detail, action, row);
      },
      [row](CallDatabase* table, auto* detail) { table->GetDetail(detail, kMissed, row); });
}

void AppendTallies(Cases* cases) {
  AppendReading<CallLogSearchListData>(
      cases, "most dialled of 100",
      [](auto* page) { CallLog_SearchRecentOutCall(Request(page, 0)); },
      [](CallDatabase* table, auto* page) { table->GetMostDialled(Request(page, 0)); });
  AppendReading<MissedNotifyListData>(
      cases, "missed list, 25 callers", [](auto* list) { Module().GetMissedNotifyList(list); },
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

Operation NamingInModule(std::size_t parties) {
  StartModule(OfficeCalls(kCalls));
  return {[names = Names(parties)]() mutable { Module().UpdateDispName(names.Next()); },
          ModuleRows,
          {}};
}

Operation NamingIn(const char* storage, std::size_t parties) {
  const auto database = std::make_shared<CallDatabase>(storage, OfficeCalls(kCalls));
  return {[names = Names(parties), database]() mutable { database->Rename(names.Next()); },
          [database] { return Rows(database.get()); },
          {}};
}

void AppendNames(Cases* cases, const std::string& work, std::size_t parties) {
  cases->push_back({work, kModule, [=] { return NamingInModule(parties); }});
  for (const char* const storage : kStorages) {
    cases->push_back({work, storage, [=] { return NamingIn(storage, parties); }});
  }
}

void AppendGrowth(Cases* cases, int records) {
  const std::string name = "records " + std::to_string(records);
  cases->push_back({name + " add", kModule, [=] { return AddingToRecords(records); }});
  cases->push_back({name + " page", kModule, [=] {
                      StartModule(OfficeCalls(records));
                      return Reading<CallLogSimpleListData>([action = Action(0)](auto* page) {
                        Module().GetLogListByClickAction(Request(page, 0), action);
                      });
                    }});
}

}  // namespace

void AppendHistoryCases(Cases* cases) {
  AppendAdd(cases);
  AppendPage(cases, "page at row 0 of 100", kMissed, 0);
  AppendPage(cases, "page at row 90 of 100", kMissed, 90);
  AppendPage(cases, "page at row 390 of 400", 0, 390);
  AppendDetail(cases, "detail of row 50", 50);
  AppendTallies(cases);
  AppendNames(cases, "name of 1 party", 1);
  AppendNames(cases, "names of 60 parties", 60);
  for (int records = 50; records <= kCalls; records += 50) AppendGrowth(cases, records);
}

}  // namespace bench
