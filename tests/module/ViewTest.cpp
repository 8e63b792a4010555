// Tests of what the UI's pages are refused, of icons, and of what is traced of the most dialled.
// Which rows a list or a search gives is ModelTest's, which calls count as seen NotifyTest's.
#include <climits>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using ViewTest = PhoneTest;

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

TEST_F(ViewTest, TheMostDialledNumbersAreTraced) {
  const auto trace = [](const std::string& text) { return "trace 3 --Call log search: " + text; };
  for (int i = 10; i < 22; ++i) Add(1, std::to_string(i), kNow - i);
  TakeJournal({""});
  CallLogSearchListData all;
  all.request_count = 9;
  CallLog_SearchRecentOutCall(&all);
  EXPECT_EQ(TakeJournal({""}), Strings{trace("search recent out count is 12")});
  SuperSearchListData ten;
  ten.request_count = 1;
  CallLog_SuperSearchRecentOutCall(&ten);
  EXPECT_EQ(TakeJournal({""}),
            (Strings{trace("max index is 10"), trace("search recent out count is 10")}));
  EXPECT_EQ(CallLog_SearchRecentOutCall(nullptr) + CallLog_SuperSearchRecentOutCall(nullptr), 0);
}

}  // namespace
}  // namespace desk
