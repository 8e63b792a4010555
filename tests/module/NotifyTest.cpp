// Tests of the new missed and forwarded calls: how they are counted, what is published of them and
// in which order, what makes them seen, and the two lists of callers.
#include <functional>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;
using Texts = std::vector<std::string>;

const Texts kSaveLater = {"timer 90010 set 5000"};
const Texts kClearMissed = {"trace 3 --Call log: begin to clear missed notify list."};
const Texts kClearForwarded = {"trace 3 --Call log: begin to clear forward notify list."};

Texts operator+(Texts lines, const Texts& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

// What is published of `count` new calls.
Texts Missed(int count) {
  const std::string n = std::to_string(count);
  const std::string on = count > 0 ? "on" : "off";
  return {"trace 3 Current missed call count: " + n,
          "status 12 " + (count > 0 ? n + " Missed" : "off"), "backlight 5 " + on, "led 9 " + on};
}

Texts Forwarded(int count) {
  const std::string n = std::to_string(count);
  return {"trace 3 Current forwarded call count: " + n,
          "status 15 " + (count > 0 ? n + " Forwarded" : "off"),
          count > 0 ? "led 10 on" : "led 10 off"};
}

class NotifyTest : public PhoneTest {
 protected:
  struct Step {
    std::function<void()> act;
    Texts journal;
  };

  // Each step starts with everything saved.
  void Run(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      Controller().SaveToFile();
      TakeJournal({""});
      step.act();
      EXPECT_EQ(TakeJournal({""}), step.journal) << "step " << &step - steps.data();
    }
  }

  // The callers of the new missed (2) or forwarded (4) calls as "name number count"; the names
  // `before` stand in the list already, with a count of 5.
  static Texts Callers(int type, const Texts& before = {}) {
    return type == 2 ? Callers(&CCallLogController::GetMissedNotifyList, before)
                     : Callers(&CCallLogController::GetForwardedNotifyList, before);
  }

  static void DealWith(int type, const char* number) {
    type == 2 ? RemoveMissedDirtyByNumber(number) : RemoveForwardDirtyByNumber(number);
  }

 private:
  template <class List>
  static Texts Callers(int (CCallLogController::*get)(List*) const, const Texts& before) {
    List list;
    for (const std::string& name : before) {
      list.items.emplace_back().display_name = name;
      list.items.back().count = 5;
    }
    EXPECT_EQ((Controller().*get)(&list), 1);
    Texts rows;
    for (const auto& row : list.items) {
      rows.push_back(row.display_name + " " + row.number + " " + std::to_string(row.count));
    }
    return rows;
  }
};

TEST_F(NotifyTest, ACallIsTracedStoredAndShown) {
  platform->contacts.Add({"Zoe", {"100"}, ""});
  const auto add = [](int type) {
    return [type] {
      CallLogAddItemData call = MakeCall(type, "200");
      call.remote_display_name = "Anna";
      call.forward_sip_name = "100";
      call.forward_display_name = "Bert";
      CallLog_AddLog(call);
    };
  };
  const Texts traces = {
      "trace 3 --Call log, to add log remote name(Anna) forward to number(100), forward to "
      "name(Bert)",
      "trace 3 --Call log: forwarder name is Zoe"};
  const Texts added = traces + kSaveLater;
  Run({{add(1), added},
       {add(2), added + Missed(1)},
       {add(3), added},
       {add(4), added + Forwarded(1)},
       {[&] { add(2)(), add(4)(); }, added + Missed(2) + traces + Forwarded(2)}});
}

TEST_F(NotifyTest, OpeningAListShowsItsNewCallsAsSeen) {
  struct Row {
    int type, index, count;
    bool missedSeen, forwardedSeen;
  };
  const Row rows[] = {
      {0, 0, 10, true, true},  {1, 0, 10, false, false}, {2, 0, 10, true, false},
      {4, 0, 10, false, true}, {3, 0, 10, false, false}, {0, 50, 1, true, true},    // an empty page
      {0, 0, 0, false, false}, {2, -1, 9, false, false}, {5, 0, 10, false, false},  // refused
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    Controller().RemoveAllLogsByClickAction(Action(0));
    for (const int type : {1, 2, 3, 4}) Add(type, "100");
    Texts journal = {"trace 3 --Call log, get " + std::to_string(row.type) + " log list."};
    if (row.missedSeen) journal = journal + kClearMissed + Missed(0);
    if (row.forwardedSeen) journal = journal + kClearForwarded + Forwarded(0);
    const auto open = [&] {
      CallLogSimpleListData page;
      page.request_index = row.index;
      page.request_count = row.count;
      Controller().GetLogListByClickAction(&page, Action(row.type));
    };
    Run({{open, journal}, {open, journal}});
    EXPECT_EQ(Callers(2).empty(), row.missedSeen);
    EXPECT_EQ(Callers(4).empty(), row.forwardedSeen);
  }
}

TEST_F(NotifyTest, ARemovalIsPublishedAndThenSaved) {
  const auto one = [](int type, int row, int result = 1) {
    return [=] { EXPECT_EQ(Controller().RemoveLog(Action(type), row), result); };
  };
  const auto several = [](int type, const std::list<int>& rows) {
    return [=] { EXPECT_EQ(Controller().RemoveLogList(Action(type), rows), 1); };
  };
  const auto all = [](int type) {
    return [=] { EXPECT_EQ(Controller().RemoveAllLogsByClickAction(Action(type)), 1); };
  };
  const std::vector<Step> steps = {
      {one(0, 0), Missed(1) + Forwarded(2) + kSaveLater},
      {one(2, 2), Missed(2) + kSaveLater},
      {one(1, 1), kSaveLater},
      {one(0, 9, 0), {}},
      {several(0, {5, 2, 0, 8}), Missed(0) + Forwarded(1) + kSaveLater},
      {several(4, {2, 0, 2, 7}), Forwarded(1) + kSaveLater},
      {several(0, {}), Missed(2) + Forwarded(2)},
      {several(2, {-1, 3}), Missed(2)},
      {all(0), kClearMissed + Missed(0) + kClearForwarded + Forwarded(0) + kSaveLater},
      {all(2), kClearMissed + Missed(0) + kSaveLater},
      {all(4), kClearForwarded + Forwarded(0) + kSaveLater},
      {all(1), kSaveLater},
      {all(5), kSaveLater}};
  for (const Step& step : steps) {
    SCOPED_TRACE(&step - steps.data());
    all(0)();
    int time = kNow;
    for (const int type : {4, 2}) Add(type, "100", ++time);
    Names(0);  // these two are seen
    for (const int type : {4, 2, 3, 1, 4, 1, 2}) Add(type, "100", ++time);
    Run({step});
  }
}

TEST_F(NotifyTest, NewCallsStayNewUntilTheirCallerIsDealtWith) {
  for (const int type : {2, 4, 3, 2, 4}) Add(type, "100");
  for (const char* number : {"", "0100"}) Add(2, number), Add(4, number);
  const auto both = [](const char* number) {
    return [=] { DealWith(2, number), DealWith(4, number); };
  };
  Run({{[] { Controller().ResetMissedCall(), Controller().ResetForwardedCall(); }, {}},
       {[] { EXPECT_EQ(Controller().GetMissedNotifyList(nullptr), 0); }, {}},
       {[] { EXPECT_EQ(Controller().GetForwardedNotifyList(nullptr), 0); }, {}},
       {[] { Callers(4); }, {}},
       {[] { Callers(2); },
        {"trace 3 --Call log: begin to get missed notify list",
         "trace 3 --Call log: get missed count is 3"}},
       {both(nullptr), {}},
       {both("1"), Missed(4) + Forwarded(4)},
       {both("100"), Missed(2) + Forwarded(2)},
       {[] { DealWith(2, "100"); }, Missed(2)},
       {both(""), Missed(1) + Forwarded(1)}});
  for (const int type : {2, 4}) EXPECT_EQ(Callers(type), Texts{"0100 0100 1"});
  Run({{both("0100"), Missed(0) + Forwarded(0)}});
}

TEST_F(NotifyTest, CallersAreListedByName) {
  for (const int type : {2, 4}) {
    int time = kNow;
    for (const auto& [number, name] : std::vector<std::pair<const char*, const char*>>{
             {"100", "Zoe"}, {"300", ""}, {"200", "Zoe"}, {"100", "zoe"}, {"301", "300"}}) {
      CallLogAddItemData call = MakeCall(type, number, --time);
      call.remote_display_name = name;
      call.forward_sip_name = std::to_string(kNow - time);
      CallLog_AddLog(call);
    }
    // Neither a name nor the number where a call went to is a caller's number.
    for (const char* other : {"Zoe", "1"}) DealWith(type, other);
    EXPECT_EQ(Callers(type), (Texts{"Zoe 100 2", "300 300 2", "zoe 100 1"}));
    // Rows that stood there before are raised, the first of a name, and leave room for 21 others.
    for (int i = 1; i <= 22; ++i) Add(type, std::to_string(i), --time);
    const Texts more = Callers(type, {"stranger", "zoe", "zoe"});
    EXPECT_EQ(Texts(more.begin(), more.begin() + 4),
              (Texts{"stranger  5", "zoe  6", "zoe  5", "Zoe 100 2"}));
    EXPECT_EQ(std::to_string(more.size()) + ": " + more.back(), "24: 19 19 1");
  }
  ForwardedNotifyList list;
  Controller().GetForwardedNotifyList(&list);
  EXPECT_EQ(list.items.front().forward_display_name, "1");  // that of the newest call
}

}  // namespace
}  // namespace desk
