// Tests of text comparison: which differences of case, accent and form are ignored, and which bytes
// must never become equal to others.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desktop/platform/contacts/TextMatch.h"

namespace {

using namespace std::string_view_literals;
using Texts = std::vector<std::string_view>;

const struct {
  std::string_view key;
  Texts begin;
  Texts differ;
} kKeys[] = {
    {"", {"Anna", "", "\xFF"}, {}},
    {"anNA", {"Anna", "annab"}, {"nna", "Ann", ""}},
    {"sté", {"Stephane", "Stéphane", "Ste\u0301phane"}, {"Sta"}},
    {"step\u0301", {"Stephane", "Stéphane"}, {"ste\u0301"}},
    {"Łu", {"Lukasz", "łukasz"}, {"ukasz"}},
    {"straße", {"Strasse", "STRAẞE"}, {"Strase"}},
    {"stras", {"Straße"}, {}},
    {"strase", {}, {"Straße"}},
    {"aero", {"Ærø"}, {}},
    {"ел", {"Ёлкин"}, {}},
    {"伟", {"伟李"}, {"李伟"}},
    {"*21#+", {"*21#+4"}, {"*21#"}},
    {"{1*", {}, {"[1*", "{12"}},
    {"A\0B"sv, {"a\0b"sv}, {"a\0c"sv, "é\0c"sv}},
    {"\xFF", {"\xFF\xFE"}, {"\xFE"}},
    {"\xD0", {}, {"\xD0\xB0"}},  // half a letter is no letter
    {"\xD0\xB0", {}, {"\xD0", "\xD0\u0301\xB0"}},
    {"\xD0\u0301\xB0", {}, {"\xD0\xB0"}},
};

TEST(TextMatchTest, FindsTheTextsThatBeginWithAKey) {
  for (const auto& row : kKeys) {
    for (const std::string& key : {std::string(row.key), desk::FoldText(row.key)}) {
      for (const auto text : row.begin) EXPECT_TRUE(desk::BeginsWith(text, key)) << text << key;
      for (const auto text : row.differ) EXPECT_FALSE(desk::BeginsWith(text, key)) << text << key;
    }
  }
}

// Every character that two bytes of UTF-8 hold, upper case and accents of most alphabets with it.
TEST(TextMatchTest, ComparesEachLetterLikeItsFoldedForm) {
  for (int c = 0x80; c < 0x800; ++c) {
    const std::string letter = {static_cast<char>(0xC0 | c >> 6),
                                static_cast<char>(0x80 | (c & 0x3F))};
    const std::string folded = desk::FoldText(letter);
    EXPECT_EQ(desk::FoldText(folded), folded) << letter;
    EXPECT_TRUE(desk::BeginsWith(letter, folded)) << letter;
    EXPECT_TRUE(desk::BeginsWith(folded, letter)) << letter;
  }
}

}  // namespace
