// Tests of the search: when the hits of the key before are used again, and what is traced. What a
// key finds and which numbers are the most dialled is ModelTest's, how texts are compared
// TextMatchTest's.
#include <functional>

#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"

namespace desk {
namespace {

class SearchTest : public PhoneTest {
 protected:
  struct Party {
    std::string name, number;
  };

  // Starts the phone with these calls in its history, newest first.
  void StartWith(const std::vector<Party>& parties) {
    PlainCalls calls;
    for (const Party& party : parties) {
      calls.emplace_back();
      calls.back().type = 1 + static_cast<int>(calls.size()) % 4;
      calls.back().remote_display_name = party.name;
      calls.back().remote_sip_name = party.number;
    }
    WriteFile(HistoryFile(), FileText(calls));
    PowerCycle();
  }

  static CallLogUpdateData Contact(const std::string& number, const std::string& name) {
    CallLogUpdateData contact;
    contact.number_1 = number;
    contact.display_name = name;
    return contact;
  }

  // The answer as "total: name number, name number"; the page holds a row already, which stays.
  template <class Page>
  static std::string Ask(const std::function<int(Page*)>& search, int index, int count) {
    Page page;
    page.items.resize(1);
    page.request_index = index;
    page.request_count = count;
    page.total = -1;
    const int result = search(&page);
    EXPECT_EQ(page.items.front().number, "");
    page.items.pop_front();
    if (result == 0) return page.items.empty() && page.total == -1 ? "refused" : "touched";
    std::string text = std::to_string(page.total) + ":";
    for (const auto& row : page.items) text += " " + row.display_name + " " + row.number + ",";
    if (!page.items.empty()) text.pop_back();
    return text;
  }

  static std::string Find(const std::string& key, int index = 0, int count = 100) {
    const auto search = [&](CallLogSearchListData* page) { return CallLog_Search(page, key); };
    return Ask<CallLogSearchListData>(search, index, count);
  }
  static std::string Dialled(int index = 0, int count = 100) {
    return Ask<CallLogSearchListData>(CallLog_SearchRecentOutCall, index, count);
  }
  static std::string TopTen(int index = 0, int count = 100) {
    return Ask<SuperSearchListData>(CallLog_SuperSearchRecentOutCall, index, count);
  }
};

// Two calls of one number got one name, so that they are one hit, the newer call; the older one's
// key-pad name goes on with another digit. Only a search that walks the history finds it.
TEST_F(SearchTest, ALongerKeyNarrowsTheHitsUntilTheHistoryChanges) {
  const auto ask = [](const std::string& key, int count = 9) {
    return [=] { EXPECT_EQ(Find(key, 0, count) == "refused", key.empty() || count < 1); };
  };
  const auto askNoPage = [](const std::string& key) {
    return [=] { EXPECT_EQ(CallLog_Search(nullptr, key), 0); };
  };
  const auto refresh = [] {
    SuperSearchItemData entry;
    entry.display_name = "Carl";
    entry.number = "5";
    Controller().UpdateDispName({entry});
  };
  const struct {
    const char* what;
    std::vector<std::function<void()>> acts;
    bool narrows;
  } rows[] = {
      {"a shorter key", {ask("26")}, true},
      {"a key without hits", {ask("26"), ask("26#")}, false},
      {"an empty key", {ask("26"), ask("")}, false},
      {"an empty key for no page", {ask("26"), askNoPage("")}, false},
      {"a full search refused its page", {ask("26", 0)}, true},
      {"a narrowing refused its page", {ask("26"), ask("262", 0)}, true},
      {"a narrowing refused, then its hits again",
       {ask("26"), ask("2662", 0), [] { EXPECT_EQ(Find("26"), "1: Carl 5"); }},
       true},
      {"no page for a longer key", {ask("26"), askNoPage("262")}, true},
      {"no page for another key", {ask("26"), askNoPage("4")}, true},
      {"the key in another form", {ask("２６")}, true},  // it is compared and kept as "26"
      {"the most dialled numbers", {ask("26"), [] { Dialled(), TopTen(); }}, true},
      {"a save", {ask("26"), [] { Controller().SaveToFile(); }}, true},
      {"a call", {ask("26"), [] { Add(1, "6"); }}, false},
      {"a call removed", {ask("26"), [] { Controller().RemoveLog(Action(1), 0); }}, false},
      {"a contact renamed", {ask("26"), [] { CallLog_UpdateLog(Contact("5", "Carl")); }}, false},
      {"a name refreshed", {ask("26"), refresh}, false},
  };
  for (const auto& row : rows) {
    StartWith({{"Anna", "5"}, {"Bob", "5"}, {"5", "4"}, {"4", "4"}, {"4", "3"}});
    CallLog_UpdateLog(Contact("5", "Carl"));
    for (const auto& act : row.acts) act();
    const std::string hits = Find("262");
    EXPECT_EQ(hits.substr(0, 2), row.narrows ? "0:" : "1:") << row.what;
  }
}

TEST_F(SearchTest, TheMostDialledNumbersAreTraced) {
  const auto trace = [](const std::string& text) { return "trace 3 --Call log search: " + text; };
  for (int i = 10; i < 22; ++i) Add(1, std::to_string(i), kNow - i);
  TakeJournal({""});
  EXPECT_EQ(Dialled(10, 9), "12: 20 20, 21 21");
  EXPECT_EQ(TakeJournal({""}), Strings{trace("search recent out count is 12")});
  EXPECT_EQ(TopTen(7, 1), "10: 17 17, 18 18, 19 19");  // however few rows were asked for
  EXPECT_EQ(TakeJournal({""}),
            (Strings{trace("max index is 10"), trace("search recent out count is 10")}));
  EXPECT_EQ(CallLog_SearchRecentOutCall(nullptr) + CallLog_SuperSearchRecentOutCall(nullptr), 0);
}

}  // namespace
}  // namespace desk
