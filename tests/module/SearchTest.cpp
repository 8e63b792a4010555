// Tests of what is traced of a search. What a key finds, when the hits of the key before are used
// again and which numbers are the most dialled is ModelTest's, how texts are compared
// TextMatchTest's.
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using SearchTest = PhoneTest;

TEST_F(SearchTest, TheMostDialledNumbersAreTraced) {
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
  EXPECT_EQ(CallLog_Search(nullptr, "10"), 0);
}

}  // namespace
}  // namespace desk
