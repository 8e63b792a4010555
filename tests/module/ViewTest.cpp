// Tests of what the UI's pages get: which rows, which icons, and what is refused. What stands in
// rows and details is ModelTest's, which calls count as seen NotifyTest's.
#include <climits>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

class ViewTest : public PhoneTest {};

TEST_F(ViewTest, APageKeepsItsRowsAndGetsThoseAskedFor) {
  for (const char* number : {"1", "2", "3"}) Add(3, number);
  const auto ask = [](int type, int first, int count) {
    CallLogSimpleListData page;
    page.items.resize(1);
    page.request_index = first;
    page.request_count = count;
    page.total = -1;
    Controller().GetLogListByClickAction(&page, Action(type));
    std::string text = std::to_string(page.total) + ":";
    for (const CallLogSimpleData& row : page.items) text += row.display_name + " ";
    return text;
  };
  TakeJournal({""});
  EXPECT_EQ(ask(3, 1, INT_MAX), "3: 2 3 ");
  EXPECT_EQ(TakeJournal({"trace"}), Strings{"trace 3 --Call log, get 3 log list."});
  EXPECT_EQ(ask(3, 3, 1), "3: ");
  EXPECT_EQ(ask(3, -1, 1) + ask(3, 0, 0) + ask(5, 0, 1), "-1: -1: -1: ");
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
  EXPECT_EQ(TakeJournal({""}), Strings{"trace 3 --Call log, get 0 log list."});
  EXPECT_EQ(Names(0).size(), 4u);
}

TEST_F(ViewTest, EachCallTypeHasItsIcon) {
  int type = 1;
  for (const std::string file : {"outgoing", "missed", "recieved", "forwarded"}) {
    EXPECT_EQ(Controller().GetImagePathByType(type++),
              "./phone/resource/default/general_" + file + ".png");
  }
  for (const int other : {INT_MIN, 0, 5}) EXPECT_EQ(Controller().GetImagePathByType(other), "");
}

}  // namespace
}  // namespace desk
