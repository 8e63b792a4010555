// Tests of the stored history: which calls enter it, under which names, in which order and up to
// how many, and how they are renamed. Removals stand with what is shown of them, in NotifyTest.
#include <climits>

#include "PhoneTest.h"

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
    desktop->config["HistorySavedSwitch"] = row.historySaved;
    desktop->accounts.Find("anna")->keeps_missed = row.keepsMissed != 0;
    CallLogAddItemData call = MakeCall(row.type, "100");
    call.local_sip_server = row.server;
    TakeJournal({""});
    EXPECT_EQ(CallLog_AddLog(call), row.result);
    EXPECT_EQ(TakeJournal({""}).empty(), row.result != 0);
    EXPECT_EQ(Names(0).size(), row.result == 0 ? 1u : 0u);
  }
}

TEST_F(StoreTest, AContactsNameGoesBeforeTheCallsNameAndThatBeforeTheNumber) {
  desktop->contacts.Add({"Zoe", {"100"}, ""});
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

TEST_F(StoreTest, NewestComesFirstAndOfEqualTimesTheOneStoredFirst) {
  int number = 0;
  for (const int time : {20, INT_MIN, 20, 30, -1, INT_MAX, 20}) {
    Add(1 + number % 4, std::to_string(number), time);
    ++number;
  }
  EXPECT_EQ(Names(0), (Texts{"5", "3", "0", "2", "6", "4", "1"}));
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

TEST_F(StoreTest, AnExpelledCallIsNewNoLonger) {
  for (const int type : {2, 4}) {
    const auto countAfter = [&](const char* name, int time) {
      EXPECT_EQ(Add(type, name, time), 0);
      return std::stoi(desktop->display.statuses[type == 2 ? 12 : 15]);
    };
    for (int i = 1; i <= 100; ++i) EXPECT_EQ(countAfter("new", kNow), i);
    EXPECT_EQ(countAfter("newer", kNow + 1), 100);
    Names(type);
    EXPECT_EQ(countAfter("old", 1), 1);           // expels a seen call
    EXPECT_EQ(countAfter("newer", kNow + 2), 1);  // expels the old one
    EXPECT_EQ(countAfter("newer", kNow + 3), 2);
  }
}

TEST_F(StoreTest, AContactsNewNameReachesItsCalls) {
  struct Row {
    Texts contact;  // three numbers and the name
    Texts names;
    const char* target;
    bool changed;
  };
  const Texts before = {"Desk", "Hidden", "100", "100"};
  const Texts renamed = {"Desk", "Hidden", "New", "New"};
  const Row rows[] = {
      {{"100", "", "", "New"}, renamed, "Goal", true},
      {{"", "100", "", "New"}, renamed, "Goal", true},
      {{"200", "", "", ""}, {"200", "Hidden", "100", "100"}, "Goal", true},
      {{"", "", "200", "Desk"}, before, "Goal", true},  // the name it had
      {{"300", "", "", "New"}, before, "New", false},
      {{"", "300", "", ""}, before, "300", false},
      {{"100", "200", "300", "New"}, {"New", "Hidden", "New", "New"}, "New", true},
      {{"10", "0100", "", "New"}, before, "Goal", false},  // an empty number is nobody's
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.contact));
    AddForwarded("200", "Desk", "300", "Goal");
    AddForwarded("", "Hidden", "", "Nowhere");
    for (const int type : {2, 3}) Add(type, "100");
    Controller().SaveToFile();
    TakeJournal({""});
    CallLogUpdateData contact;
    contact.number_1 = row.contact[0];
    contact.number_2 = row.contact[1];
    contact.number_3 = row.contact[2];
    contact.display_name = row.contact[3];
    EXPECT_EQ(CallLog_UpdateLog(contact), 1);
    EXPECT_EQ(TakeJournal({""}), row.changed ? Texts{"timer 90010 set 5000"} : Texts{});
    EXPECT_EQ(ForwardTarget(), row.target);
    EXPECT_EQ(Detail(0, 0).display_name, row.names[0]);
    EXPECT_EQ(Names(0), row.names);
    RemoveEverything();
  }
}

}  // namespace
}  // namespace desk
