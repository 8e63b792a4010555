// What is shown of text that others have made up.
#include "desktop/platform/Text.h"

#include <gtest/gtest.h>

namespace {

TEST(TextTest, JoinersStayWhereTheyJoin) {
  for (const char* text : {"👨‍👩‍👧", "❤️‍🔥", "ക്‍ഷ",
                           "می‌خواهم", "അവന്‍ വന്നു"}) {
    EXPECT_EQ(desk::Printable(text), text);
  }
  constexpr char kJoiner[] = "\\xE2\\x80\\x8D";
  EXPECT_EQ(desk::Printable("\u200DA"), kJoiner + std::string("A"));
  EXPECT_EQ(desk::Printable("A\u200D"), std::string("A") + kJoiner);
  EXPECT_EQ(desk::Printable("A\u200D\u200DB"), std::string("A") + kJoiner + kJoiner + "B");
  EXPECT_EQ(desk::Printable("A \u200DB"), std::string("A ") + kJoiner + "B");
  EXPECT_EQ(desk::Printable("61\u200D2"), std::string("61") + kJoiner + "2");
  EXPECT_EQ(desk::Printable("A\u202EB"), "A\\xE2\\x80\\xAEB");
}

}  // namespace
