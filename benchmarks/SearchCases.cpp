// The search, key by key.
#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Reading.h"

namespace bench {
namespace {

using Calls = std::vector<CallLogAddItemData>;

constexpr auto kNothing = [] {};

void SearchModule(const std::string& key) {
  CallLogSearchListData page;
  page.request_count = kPage;
  CallLog_Search(&page, key);
}

// The module is asked for `key` while it holds the hits of `held`; of nothing when that is empty.
// To ask for the key that is held changes nothing.
Operation SearchingModule(const Calls& calls, const std::string& held, const std::string& key,
                          int row) {
  StartModule(calls);
  SearchModule(held);
  Operation operation = Reading<CallLogSearchListData>(
      [key, row](auto* page) { CallLog_Search(Request(page, row), key); });
  if (held == key) return operation;
  operation.restore = [held] {
    SearchModule("");
    if (!held.empty()) SearchModule(held);
  };
  return operation;
}

Operation SearchingTable(const Calls& calls, Indexes indexes, const std::string& key, int row) {
  const auto database = std::make_shared<CallDatabase>(Storage::kMemory, indexes);
  database->AddAll(calls);
  Operation operation = Reading<CallLogSearchListData>(
      [database, key, row](auto* page) { database->Search(Request(page, row), key); });
  operation.restore = kNothing;
  return operation;
}

Operation WalkingTexts(const Calls& calls, const std::string& key) {
  const auto records = std::make_shared<Records>(MakeRecords(calls));
  Operation operation;
  operation.run = [records, key] {
    volatile int count = WalkTexts(*records, key);
    static_cast<void>(count);
  };
  operation.restore = kNothing;
  return operation;
}

void AppendSearch(Cases* cases, const std::string& work, const Calls& calls,
                  const std::string& held, const std::string& key, int row = 0) {
  const auto table = [=](Indexes indexes) {
    return [=] { return SearchingTable(calls, indexes, key, row); };
  };
  const bool restored = held != key;
  cases->push_back(
      {work, kModule, [=] { return SearchingModule(calls, held, key, row); }, restored});
  cases->push_back({work, kMemory, table(Indexes::kUsual), restored});
  cases->push_back({work, kSearchIndexes, table(Indexes::kSearch), restored});
}

// One work for each key that a user types.
void AppendKeys(Cases* cases, const std::string& work, const Calls& calls,
                const std::string& word) {
  for (std::size_t keys = 1; keys <= word.size(); ++keys) {
    const std::string key = word.substr(0, keys);
    const std::string name = work + ", key " + std::to_string(keys);
    AppendSearch(cases, name, calls, word.substr(0, keys - 1), key);
    cases->push_back({name, kWalk, [=] { return WalkingTexts(calls, key); }, true});
  }
}

void AppendNarrowing(Cases* cases) {
  const std::string work = "a tenth held, next key";
  AppendSearch(cases, work, CampaignCalls(kCalls), "03063", "030631");
  cases->push_back({work, kFullSearch,
                    [] { return SearchingModule(CampaignCalls(kCalls), "", "030631", 0); }, true});
}

}  // namespace

void AppendSearchCases(Cases* cases) {
  const Calls all = CampaignCalls(kCalls), office = OfficeCalls(kCalls);
  AppendKeys(cases, "number, broad", all, "03063");
  AppendKeys(cases, "number, narrow", office, "94663");
  AppendKeys(cases, "name, broad", all, "maria");
  AppendKeys(cases, "name, narrow", office, "zimme");
  AppendNarrowing(cases);
  AppendSearch(cases, "same key, next page", all, "0306", "0306", kPage);
  for (int hits = 0; hits <= kCalls; hits += 50) {
    const std::string name = "hits " + std::to_string(hits);
    const Calls calls = CampaignCalls(hits);
    AppendSearch(cases, name + " first key", calls, "", "0");
    cases->push_back({name + " next key", kModule,
                      [calls] { return SearchingModule(calls, "0", "03", 0); }, true});
  }
}

}  // namespace bench
