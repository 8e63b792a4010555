// Tests of the new missed and forwarded calls: how they are counted, what is published of them and
// in which order, what makes them seen, and the two lists of callers; and of what is traced when
// calls get other names.
#include <functional>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;

const Strings kSaveLater = {"timer 90010 set 5000"};
const Strings kClearMissed = {"trace 3 --Call log: begin to clear missed notify list."};
const Strings kClearForwarded = {"trace 3 --Call log: begin to clear forward notify list."};

// What is published of `count` new calls.
Strings Missed(int count) {
  const std::string n = std::to_string(count);
  const std::string on = count > 0 ? "on" : "off";
  return {"trace 3 Current missed call count: " + n,
          "status 12 " + (count > 0 ? n + " Missed" : "off"), "backlight 5 " + on, "led 9 " + on};
}

Strings Forwarded(int count) {
  const std::string n = std::to_string(count);
  return {"trace 3 Current forwarded call count: " + n,
          "status 15 " + (count > 0 ? n + " Forwarded" : "off"),
          count > 0 ? "led 10 on" : "led 10 off"};
}

class NotifyTest : public PhoneTest {
 protected:
  struct Step {
    std::function<void()> act;
    Strings journal;
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
  static Strings Callers(int type, const Strings& before = {}) {
    return type == 2 ? Callers(&CCallLogController::GetMissedNotifyList, before)
                     : Callers(&CCallLogController::GetForwardedNotifyList, before);
  }

  static void DealWith(int type, const char* number) {
    type == 2 ? RemoveMissedDirtyByNumber(number) : RemoveForwardDirtyByNumber(number);
  }

 private:
  template <class List>
  static Strings Callers(int (CCallLogController::*get)(List*) const, const Strings& before) {
    List list;
    for (const std::string& name : before) {
      list.items.emplace_back().display_name = name;
      list.items.back().count = 5;
    }
    EXPECT_EQ((Controller().*get)(&list), 1);
    Strings rows;
    for (const auto& row : list.items) {
      rows.push_back(row.display_name + " " + row.number + " " + std::to_string(row.count));
    }
    return rows;
  }
};

TEST_F(NotifyTest, ACallIsTracedBeforeItIsShown) {
  CallLogAddItemData call = MakeCall(2, "200");
  call.remote_display_name = "Anna";
  call.forward_sip_name = "100";
  call.forward_display_name = "Bert";
  Run({{[&] { CallLog_AddLog(call); },
        Strings{"trace 3 --Call log, to add log remote name(Anna) forward to number(100), forward "
                "to name(Bert)",
                "trace 3 --Call log: forwarder name is Bert"} +
            kSaveLater + Missed(1)}});
}

TEST_F(NotifyTest, NewCallsRaiseTheRowsThatAListHolds) {
  for (const int type : {2, 4}) {
    for (int i = 1; i <= 22; ++i) Add(type, std::to_string(i), kNow - i);
    const Strings rows = Callers(type, {"stranger", "2", "2"});
    EXPECT_EQ(Strings(rows.begin(), rows.begin() + 4),
              (Strings{"stranger  5", "2  6", "2  5", "1 1 1"}));
    EXPECT_EQ(rows.size(), 3u + 21) << "others than those";
  }
}

TEST_F(NotifyTest, OpeningAListPublishesItsNewCallsAsSeen) {
  const auto open = [](int type, int count = 9) {
    return [=] {
      CallLogSimpleListData page;
      page.request_count = count;
      Controller().GetLogListByClickAction(&page, Action(type));
    };
  };
  const auto trace = [](int type) {
    return Strings{"trace 3 --Call log, get " + std::to_string(type) + " log list."};
  };
  const Strings missed = kClearMissed + Missed(0);
  const Strings forwarded = kClearForwarded + Forwarded(0);
  for (const int type : {1, 2, 3, 4}) Add(type, "100");
  Run({{open(1), trace(1)},
       {open(3), trace(3)},
       {open(0, 0), trace(0)},
       {open(2), trace(2) + missed},
       {open(4), trace(4) + forwarded},
       {open(0), trace(0) + missed + forwarded}});
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
      {one(0, 9, 0), {}},
      {several(0, {5, 2, 0, 8}), Missed(0) + Forwarded(1) + kSaveLater},
      {several(4, {2, 0, 2, 7}), Forwarded(1) + kSaveLater},
      {several(0, {}), Missed(2) + Forwarded(2)},
      {all(0), kClearMissed + Missed(0) + kClearForwarded + Forwarded(0) + kSaveLater},
      {all(2), kClearMissed + Missed(0) + kSaveLater},
      {all(4), kClearForwarded + Forwarded(0) + kSaveLater},
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
  for (const int type : {2, 4}) EXPECT_EQ(Callers(type), Strings{"0100 0100 1"});
}

TEST_F(NotifyTest, OtherNamesAreTracedAndSavedOnlyWhereTheyAreStored) {
  const auto forgotten = [](const std::string& dirty) {
    return Strings{"trace 3 CCallLogModel::ResetLogContactName: -------- bDirty = " + dirty};
  };
  const auto refresh = [](const char* number) {
    return [number] {
      SuperSearchItemData entry;
      entry.number = number;
      Controller().UpdateDispName({entry});
    };
  };
  const Strings begin = {"trace 3 CCallLogModel::UpdateDispName update begin"};
  const Strings end = {"trace 3 CCallLogModel::UpdateDispName update end"};
  Run({{[] { CallLog_ResetLogContactName(); }, forgotten("0")}});
  CallLogAddItemData call = MakeCall(4, "200");
  call.forward_sip_name = "300";
  CallLog_AddLog(call);
  Run({{[] { CallLog_ResetLogContactName(); }, forgotten("1") + kSaveLater},
       {refresh("200"), begin + kSaveLater + end},
       {refresh("300"), begin + kSaveLater + end},
       {refresh("20"), begin + end}});
}

}  // namespace
}  // namespace desk
