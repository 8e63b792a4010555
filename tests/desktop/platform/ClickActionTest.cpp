// Tests of the id in a click action: what counts as the pattern's word and as its number.
// The pages that the ids lead to are tested elsewhere.
#include <gtest/gtest.h>

#include "desktop/platform/ClickAction.h"

namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view action;
  std::string_view pattern;
  int id;
};

TEST(ClickActionTest, GivesTheNumberOfTheWholeWord) {
  const Row rows[] = {
      {"OpenSubPage(call_log_2)", "call_log_x", 2},
      {"call_log_0", "call_log_x", 0},
      {"call_log_007", "call_log_x", 7},
      {"call_log_2147483647", "call_log_x", 2147483647},
      {"Open(call_log_3,call_log_4)", "call_log_x", 3},
      {"Open(call_log_,my_call_log_1,call_log_2b,call_log_99999999999,call_log_5)", "call_log_x",
       5},
      {"a_a_1", "a_x", -1},
      {"a-a-a-1", "a-a-x", 1},
      {"max_x7", "max_xx", 7},
      {"call_log_2\0b"sv, "call_log_x", 2},
      {"\0\xFF"
       "call_log_2\xFF"sv,
       "call_log_x", 2},

      {"", "call_log_x", -1},
      {"call_log_", "call_log_x", -1},
      {"call_log_x", "call_log_x", -1},
      {"OpenCallLogPage(local_contact_1)", "call_log_x", -1},
      {"broadsoft_calllog_3", "call_log_x", -1},
      {"my_call_log_2", "call_log_x", -1},
      {"Xcall_log_2", "call_log_x", -1},
      {"9call_log_2", "call_log_x", -1},
      {"CALL_LOG_2", "call_log_x", -1},
      {"call_log_2b", "call_log_x", -1},
      {"call_log_2_3", "call_log_x", -1},
      {"call_log_-2", "call_log_x", -1},
      {"call_log_-0", "call_log_x", -1},
      {"call_log_+2", "call_log_x", -1},
      {"call_log_ 2", "call_log_x", -1},
      {"call_log_2147483648", "call_log_x", -1},
      {"call_log_99999999999999999999", "call_log_x", -1},
      {"call_log_2", "", -1},
      {"call_log_2", "call_log_", -1},
      {"call_log_2", "call_log_X", -1},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(desk::ParseIdByClickAction(row.action, row.pattern), row.id)
        << row.action << " with " << row.pattern;
  }
}

}  // namespace
