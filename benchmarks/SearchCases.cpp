// The search, key by key.
#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Module.h"

namespace bench {
namespace {

using Calls = std::vector<CallLogAddItemData>;

void SearchModule(const std::string& key) {
  CallLogSearchListData page;
  page.request_count = kPage;
  CallLog_Search(&page, key);
}

// The module is asked for `key` while it holds the hits of `held`; of nothing when that is empty.
Operation SearchingModule(const Calls& calls, const std::string& held, const std::string& key,
                          int row) {
  StartModule(calls);
  return Reading<CallLogSearchListData>(
      [key, row](auto* page) { CallLog_Search(Request(page, row), key); },
      [held] {
        SearchModule("");
        SearchModule(held);
      });
}

Operation SearchingTable(const Calls& calls, const std::string& key, int row) {
  const auto database = std::make_shared<CallDatabase>(kMemory, calls);
  return Reading<CallLogSearchListData>(
      [database, key, row](auto* page) { database->Search(Request(page, row), key); }, kNothing);
}

Operation WalkingAndSorting(const Calls& calls, const std::string& key) {
  return {[records = MakeRecords(calls), key] {
            volatile std::size_t hits = WalkAndSort(records, key).size();
            static_cast<void>(hits);
          },
          {},
          kNothing};
}

void AppendSearch(Cases* cases, const std::string& work, const Calls& calls,
                  const std::string& held, const std::string& key, int row = 0) {
  cases->push_back({work, kModule, [=] { return SearchingModule(calls, held, key, row); }});
  cases->push_back({work, kMemory, [=] { return SearchingTable(calls, key, row); }});
}

// One work for each key that a user types.
void AppendKeys(Cases* cases, const std::string& work, const Calls& calls,
                const std::string& word) {
  for (std::size_t keys = 1; keys <= word.size(); ++keys) {
    AppendSearch(cases, work + ", key " + std::to_string(keys), calls, word.substr(0, keys - 1),
                 word.substr(0, keys));
  }
  cases->push_back({work + ", key 1", kWalkAndSort,
                    [=] { return WalkingAndSorting(calls, word.substr(0, 1)); }});
}

void AppendNarrowing(Cases* cases) {
  const std::string work = "a tenth held, next key";
  AppendSearch(cases, work, CampaignCalls(kCalls), "03063", "030631");
  cases->push_back(
      {work, kFullSearch, [] { return SearchingModule(CampaignCalls(kCalls), "", "030631", 0); }});
}

void AppendGrowth(Cases* cases, int hits) {
  const std::string name = "hits " + std::to_string(hits);
  const Calls calls = CampaignCalls(hits);
  AppendSearch(cases, name + " first key", calls, "", "0");
  cases->push_back(
      {name + " next key", kModule, [calls] { return SearchingModule(calls, "0", "03", 0); }});
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
  for (int hits = 0; hits <= kCalls; hits += 50) AppendGrowth(cases, hits);
}

}  // namespace bench
