// Tests of what the UI's pages get: pages and details, their fields, icons and last numbers, and
// what is refused. Which calls are stored is StoreTest's, which count as seen NotifyTest's.
#include <climits>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using Texts = std::vector<std::string>;

class ViewTest : public PhoneTest {};

TEST_F(ViewTest, APageHoldsTheRowsAskedFor) {
  for (int i = 0; i < 5; ++i) {
    Add(1, "o" + std::to_string(i), kNow - i);
    Add(3, "r" + std::to_string(i), kNow - i);
  }
  struct Row {
    int type, index, count, total;  // total -1: refused
    Texts rows;
  };
  for (const Row& row :
       {Row{1, 0, 2, 5, {"o0", "o1"}}, Row{1, 3, 10, 5, {"o3", "o4"}}, Row{3, 5, 1, 5, {}},
        Row{1, 4, INT_MAX, 5, {"o4"}}, Row{0, 1, 3, 10, {"r0", "o1", "r1"}}, Row{2, 0, 10, 0, {}},
        Row{1, -1, 2, -1, {}}, Row{1, 5, 0, -1, {}}, Row{5, 0, 1, -1, {}}}) {
    SCOPED_TRACE(testing::Message() << row.type << " " << row.index << " " << row.count);
    CallLogSimpleListData page;
    page.items.resize(1);  // stays
    page.request_index = row.index;
    page.request_count = row.count;
    page.total = -1;
    TakeJournal({""});
    EXPECT_EQ(Controller().GetLogListByClickAction(&page, Action(row.type)), row.total >= 0);
    EXPECT_EQ(TakeJournal({"trace"})[0],
              "trace 3 --Call log, get " + std::to_string(row.type) + " log list.");
    EXPECT_EQ(page.total, row.total);
    Texts names;
    for (const CallLogSimpleData& item : page.items) names.push_back(item.display_name);
    ASSERT_EQ(names[0], "");
    EXPECT_EQ(Texts(names.begin() + 1, names.end()), row.rows);
    int index = row.index;
    for (const std::string& name : row.rows) EXPECT_EQ(Detail(row.type, index++).number, name);
    CallLogDetailData untouched;
    const int refused = row.rows.empty() ? row.index : 10;  // a row that the list does not have
    EXPECT_EQ(Controller().GetLogDetailByClickAction(&untouched, Action(row.type), refused), 0);
    EXPECT_EQ(untouched.number, "");
  }
}

TEST_F(ViewTest, NoActionOrNoRecordToFillDoesNothing) {
  for (const int type : {1, 2, 3, 4}) Add(type, "100");
  Controller().SaveToFile();
  TakeJournal({""});
  CallLogSimpleListData page;
  page.request_count = 10;
  CallLogDetailData detail;
  for (const char* action : {"", "OpenSubPage(call_log_)", "OpenSubPage(call_log_-1)",
                             "OpenSubPage(broadsoft_calllog_2)"}) {
    EXPECT_EQ(Controller().GetLogListByClickAction(&page, action), 0) << action;
    EXPECT_EQ(Controller().GetLogDetailByClickAction(&detail, action, 0), 0) << action;
    EXPECT_EQ(Controller().RemoveLog(action, 0), 0) << action;
    EXPECT_EQ(Controller().RemoveLogList(action, {0}), 0) << action;
    EXPECT_EQ(Controller().RemoveAllLogsByClickAction(action), 0) << action;
  }
  EXPECT_EQ(Controller().GetLogDetailByClickAction(nullptr, Action(0), 0), 0);
  EXPECT_EQ(Controller().GetLogListByClickAction(nullptr, Action(0)), 0);
  EXPECT_EQ(TakeJournal({""}), Texts{"trace 3 --Call log, get 0 log list."});
  EXPECT_EQ(Names(0).size(), 4u);
}

TEST_F(ViewTest, RowAndDetailShowTheFieldsOfTheirCall) {
  WriteFile(HistoryFile(),
            "<root_call_log><item type=\"2\" remote_sip_name=\"300\"/></root_call_log>");
  platform->contacts.Add({"Zoe", {"100"}, "/photos/zoe.png"});
  CallLogAddItemData call = MakeCall(4, "100", kNow - 86400);
  call.forward_sip_name = call.forward_sip_server = call.forward_display_name = "forward";
  ASSERT_EQ(CallLog_AddLog(call), 0);
  CallLogSimpleListData page;
  page.request_count = 2;
  ASSERT_EQ(Controller().GetLogListByClickAction(&page, Action(0)), 1);
  EXPECT_EQ(page.items.back().display_name, "300");  // a row needs a name, a detail does not
  page.items.pop_back();
  EXPECT_EQ(page.items.back().display_name, "Zoe");
  EXPECT_EQ(page.items.back().time_text, "10-06 09:00");
  EXPECT_EQ(page.items.back().type, 4);

  CallLogDetailData detail;
  detail.country_code = "49";
  ASSERT_EQ(Controller().GetLogDetailByClickAction(&detail, Action(4), 0), 1);
  EXPECT_EQ((Texts{detail.display_name, detail.number, detail.server, detail.time_text,
                   detail.duration_text, detail.country_code, detail.image_path}),
            (Texts{"Zoe", "100", "pbx.example.org", "2026-10-06 09:00:00", "00:00:05", "49",
                   "/photos/zoe.png"}));
  EXPECT_EQ(detail.type, 4);
  ASSERT_EQ(Controller().GetLogDetailByClickAction(&detail, Action(2), 0), 1);
  EXPECT_EQ(detail.display_name + detail.server + detail.image_path, "");
}

TEST_F(ViewTest, ADurationIsHoursMinutesAndSeconds) {
  const std::vector<std::pair<int, const char*>> rows = {
      {0, "00:00:00"},    {59, "00:00:59"},      {60, "00:01:00"},          {3599, "00:59:59"},
      {3725, "01:02:05"}, {360000, "100:00:00"}, {INT_MAX, "596523:14:07"}, {-1, ""}};
  for (const auto& [seconds, text] : rows) {
    CallLogAddItemData call = MakeCall(1, "100");
    call.duration = seconds;
    CallLog_AddLog(call);
    EXPECT_EQ(Detail(1, 0).duration_text, text) << seconds;
    Controller().RemoveLog(Action(1), 0);
  }
}

TEST_F(ViewTest, EachCallTypeHasItsIcon) {
  int type = 1;
  for (const std::string file : {"outgoing", "missed", "recieved", "forwarded"}) {
    EXPECT_EQ(Controller().GetImagePathByType(type++),
              "./phone/resource/default/general_" + file + ".png");
  }
  for (const int other : {INT_MIN, 0, 5}) EXPECT_EQ(Controller().GetImagePathByType(other), "");
}

TEST_F(ViewTest, TheLastNumbersAreTheNewestOfTheirDirection) {
  const auto lastAfter = [](int type, const char* number, int time) {
    Add(type, number, time);
    Names(0);  // seen calls count as well
    const std::string last = CallLog_GetLastNewInCall() + "," + CallLog_GetLastOutCall();
    EXPECT_EQ(Controller().GetLastNewInCall() + "," + Controller().GetLastOutCall(), last);
    return last;
  };
  EXPECT_EQ(lastAfter(0, "none", 1), ",");
  EXPECT_EQ(lastAfter(1, "o1", 8), ",o1");
  EXPECT_EQ(lastAfter(3, "r1", 4), "r1,o1");
  EXPECT_EQ(lastAfter(1, "o2", 7), "r1,o1");
  EXPECT_EQ(lastAfter(2, "m1", 5), "m1,o1");
  EXPECT_EQ(lastAfter(4, "f1", 6), "f1,o1");
  EXPECT_EQ(lastAfter(1, "o3", 9), "f1,o3");
}

}  // namespace
}  // namespace desk
