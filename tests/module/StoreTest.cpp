// Tests of the stored history: which calls enter it, under which names and up to how many. Removals
// stand with what is shown of them, in NotifyTest, new names in NameRefreshTest.
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using Texts = std::vector<std::string>;

class StoreTest : public PhoneTest {
 protected:
  static void RemoveEverything() {
    EXPECT_EQ(Controller().RemoveAllLogsByClickAction(Action(0)), 1);
    EXPECT_EQ(Controller().SaveToFile(), 1);
  }

  static int AddForwarded(const std::string& number, const std::string& name,
                          const std::string& target, const std::string& targetName) {
    CallLogAddItemData call = MakeCall(4, number);
    call.remote_display_name = name;
    call.forward_sip_name = target;
    call.forward_display_name = targetName;
    return CallLog_AddLog(call);
  }

  // Where the newest call went, if it is a new forwarded one.
  static std::string ForwardTarget() {
    ForwardedNotifyList list;
    EXPECT_EQ(Controller().GetForwardedNotifyList(&list), 1);
    return list.items.empty() ? "not new" : list.items.front().forward_display_name;
  }
};

TEST_F(StoreTest, OnlyWantedCallsAreStored) {
  struct Row {
    int historySaved, keepsMissed, type, result;
    const char* server = "sip.example.org";
  };
  const Row rows[] = {{0, 1, 1, -1}, {2, 1, 2, -1}, {-1, 1, 3, -1},        {1, 1, 0, -1},
                      {1, 1, 5, -1}, {1, 1, 1, 0},  {1, 1, 2, 0},          {1, 0, 1, 0},
                      {1, 0, 2, -1}, {1, 0, 3, 0},  {1, 0, 2, 0, "other"}, {1, 0, 4, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    RemoveEverything();
    platform->config["HistorySavedSwitch"] = row.historySaved;
    platform->accounts.Find("anna")->keeps_missed = row.keepsMissed != 0;
    CallLogAddItemData call = MakeCall(row.type, "100");
    call.local_sip_server = row.server;
    TakeJournal({""});
    EXPECT_EQ(CallLog_AddLog(call), row.result);
    EXPECT_EQ(TakeJournal({""}).empty(), row.result != 0);
    EXPECT_EQ(Names(0).size(), row.result == 0 ? 1u : 0u);
  }
}

TEST_F(StoreTest, AContactsNameGoesBeforeTheCallsNameAndThatBeforeTheNumber) {
  platform->contacts.Add({"Zoe", {"100"}, ""});
  struct Party {
    const char *number, *name, *shown;
  };
  const Party parties[] = {{"100", "Desk", "Zoe"},
                           {"200", "Gate", "Gate"},
                           {"300", "", "300"},
                           {"", "Hidden", "Hidden"},
                           {"", "", ""}};
  for (const Party& caller : parties) {
    for (const Party& target : parties) {
      EXPECT_EQ(AddForwarded(caller.number, caller.name, target.number, target.name), 0);
      EXPECT_EQ(ForwardTarget(), target.shown);
      EXPECT_EQ(Detail(4, 0).display_name, caller.shown);
      EXPECT_EQ(Detail(4, 0).number, caller.number);
      RemoveEverything();
    }
  }
}

TEST_F(StoreTest, EachTypeKeepsIts100NewestCalls) {
  const auto ends = [](int type) {
    const Texts names = Names(type);
    return std::to_string(names.size()) + ": " + names.front() + " to " + names.back();
  };
  for (int i = 0; i < 100; ++i) {
    for (const int type : {1, 2, 3, 4}) Add(type, std::to_string(i), kNow + 10 * i);
  }
  Add(1, "new", kNow + 5000);
  EXPECT_EQ(ends(1), "100: new to 1");
  for (const int type : {2, 3, 4}) EXPECT_EQ(ends(type), "100: 99 to 0");
  Add(4, "between", kNow + 5);  // newer than the call that it expels
  EXPECT_EQ(ends(4), "100: 99 to between");
  EXPECT_EQ(ends(0), "400: new to 0");
  Add(3, "oldest", 1);
  EXPECT_EQ(ends(3), "100: 99 to oldest");
  EXPECT_EQ(ends(0), "400: new to oldest");
}

}  // namespace
}  // namespace desk
