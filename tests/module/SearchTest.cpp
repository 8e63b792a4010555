// Tests of the search: what a key finds, in which order and on which page; when the hits of the key
// before are used again; and the most dialled numbers. How texts are compared is TextMatchTest's.
#include <functional>

#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"

namespace desk {
namespace {

using Texts = std::vector<std::string>;

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

TEST_F(SearchTest, AKeyFindsWhatBeginsWithIt) {
  StartWith({{"Stéphane", "100"},
             {"Łukasz", "585"},
             {"1abel", "77"},
             {"Bo", "anna"},
             {"a1", "*21#"},
             {"#gate", "12"},
             {"+4912", "+4912"},
             {"Bo", "+4913"}});
  const std::pair<const char*, const char*> rows[] = {
      {"ste", "1: Stéphane 100"},
      {"łu", "1: Łukasz 585"},
      {"lu", "1: Łukasz 585"},
      {"783", "1: Stéphane 100"},  // on the key pad
      {"58", "1: Łukasz 585"},     // twice the same
      {"5852", "1: Łukasz 585"},   // longer than the number
      {"1", "3: #gate 12, 1abel 77, Stéphane 100"},
      {"1a", "0:"},         // a number search, in which no letter is a name's
      {"a", "1: a1 *21#"},  // and a name search looks at no number
      {"a1", "1: a1 *21#"},
      {"*2", "1: a1 *21#"},
      {"#4", "1: #gate 12"},
      {"+49", "1: +4912 +4912"},
      {"", "refused"},
  };
  for (const auto& [key, hits] : rows) {
    EXPECT_EQ(Find(key), hits) << key;
    Find("");
  }
}

TEST_F(SearchTest, HitsAreOrderedByNameAndNumberEachPairOnce) {
  const std::pair<std::vector<Party>, const char*> rows[] = {
      {{{"anna", "1"}, {"Élan", "1"}, {"Zoe", "1"}, {"Zo", "1"}}, "4: Zo 1, Zoe 1, anna 1, Élan 1"},
      {{{"Bo", "19"}, {"Bo", "110"}, {"Al", "12"}, {"Bo", "19"}, {"Al", "19"}, {"Bo", "19"}},
       "4: Al 12, Al 19, Bo 110, Bo 19"},
      // A hit without a name is compared by its number alone; one with a name is not.
      {{{"", "15"}, {"Bo", "15"}}, "1: 15 15"},
      {{{"Bo", "15"}, {"", "15"}}, "2: 15 15, Bo 15"},
      {{{"", "17"}, {"Bo", "12"}, {"Bo", "19"}}, "3: Bo 12, 17 17, Bo 19"},
  };
  for (const auto& [parties, hits] : rows) {
    StartWith(parties);
    EXPECT_EQ(Find("1"), hits);
  }
}

// Two calls of one number got one name, so that they are one hit, the newer call; the older one's
// key-pad name goes on with another digit. Only a search that walks the history finds it.
TEST_F(SearchTest, TheHitsOfTheKeyBeforeAreUsedWhileTheyCan) {
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

TEST_F(SearchTest, TheMostDialledNumbersComeFirst) {
  int time = kNow;
  const auto add = [&](int type, const std::string& name, const std::string& number) {
    CallLogAddItemData call = MakeCall(type, number, --time);
    call.remote_display_name = name;
    call.remote_sip_server = std::to_string(time);  // makes no difference
    EXPECT_EQ(CallLog_AddLog(call), 0);
  };
  EXPECT_EQ(Dialled() + TopTen(), "0:0:");
  for (const int type : {2, 3, 4, 3}) add(type, "Not dialled", "1");
  EXPECT_EQ(Dialled() + TopTen(), "0:0:");
  add(1, "Di", "1");
  add(1, "Ed", "2");
  add(1, "Al", "3");
  add(1, "Bo", "3");
  add(1, "", "4");
  add(1, "Cy", "04");
  add(1, "Di", "1");
  add(1, "", "3");
  SuperSearchItemData nobody;
  nobody.number = "4";
  Controller().UpdateDispName({nobody});
  EXPECT_EQ(Dialled(), "5: Al 3, Di 1, Ed 2, 4 4, Cy 04");
  EXPECT_EQ(TopTen(), "5: Al 3, Di 1, Ed 2, 4 4, Cy 04");
  for (int i = 10; i < 17; ++i) add(1, "", std::to_string(i));
  EXPECT_EQ(Dialled(2, 3), "12: Ed 2, 4 4, Cy 04");
  EXPECT_EQ(Dialled(10, 9), "12: 15 15, 16 16");
  EXPECT_EQ(Dialled(12, 9), "12:");
  EXPECT_EQ(Dialled(0, 0), "refused");
  TakeJournal({""});
  EXPECT_EQ(TopTen(7, 1), "10: 12 12, 13 13, 14 14");  // however few rows were asked for
  EXPECT_EQ(TopTen(10, 9), "10:");
  EXPECT_EQ(TopTen(-1, 9) + TopTen(0, 0), "refusedrefused");
  EXPECT_EQ(CallLog_SearchRecentOutCall(nullptr) + CallLog_SuperSearchRecentOutCall(nullptr), 0);
  const Texts cut = {"trace 3 --Call log search: max index is 10",
                     "trace 3 --Call log search: search recent out count is 10"};
  EXPECT_EQ(TakeJournal({""}), (Texts{cut[0], cut[1], cut[0], cut[1]}));
  Dialled(0, 1);
  EXPECT_EQ(TakeJournal({""}), Texts{"trace 3 --Call log search: search recent out count is 12"});
}

}  // namespace
}  // namespace desk
