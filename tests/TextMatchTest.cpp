// Tests of text comparison: which differences of case, accent and form are ignored, and which bytes
// must never become equal to others.
#include <gtest/gtest.h>

#include "TextMatch.h"

namespace {

using namespace std::string_view_literals;

TEST(TextMatchTest, FoldsCaseAndAccents) {
  struct Row {
    std::string_view text;
    std::string_view folded;
  };
  const Row rows[] = {
      {"", ""},
      {"AZ az @[`{ 0-9 *#+", "az az @[`{ 0-9 *#+"},
      {"Stéphane", "stephane"},
      {"Ste\u0301phane", "stephane"},
      {"e\u0301\u0308 a\u0327 k\u0335", "e a k"},
      {"NGUYỄN", "nguyen"},
      {"Łukasz Ødegård Đặng", "lukasz odegard dang"},
      {"Straße STRAẞE", "strasse strasse"},
      {"Æsir Œuvre Þór Ðað", "aesir oeuvre thor dad"},
      {"Işık İnci", "isik inci"},
      {"Əliyev Ŋ Ħ Ŧ Ɓ", "eliyev n h t b"},
      {"Ήρως ΉΡΩΣ", "ηρωσ ηρωσ"},
      {"Ёлкин ЙЇ", "елкин иі"},
      {"李 日本", "李 日本"},
      {"が", "か\u3099"},  // a voicing mark is no accent
      {"กี่", "กี่"},          // nor is a vowel
      {"é\0É"sv, "e\0e"sv},
      {"É\xFFÉ\xC3",
       "e\xFF"
       "e\xC3"},
      {"\xED\xA0\x80É\xC0\xAF",
       "\xED\xA0\x80"
       "e\xC0\xAF"},
      {"\xD0\u0301\xB0", "\xD0\u0301\xB0"},  // without the accent it would be a letter
  };
  for (const Row& row : rows) {
    EXPECT_EQ(desk::FoldText(row.text), row.folded);
    EXPECT_EQ(desk::FoldText(row.folded), row.folded);
  }
}

TEST(TextMatchTest, FindsTheTextsThatBeginWithAKey) {
  struct Row {
    std::string_view text;
    std::string_view key;
    bool begins;
  };
  const Row rows[] = {
      {"Anna", "", true},
      {"", "", true},
      {"\xFF", "", true},
      {"Anna", "aNN", true},
      {"Anna", "anna", true},
      {"Anna", "nna", false},
      {"Anna", "annab", false},
      {"Anna", "anné", false},
      {"", "a", false},
      {"Stéphane", "ste", true},
      {"Ste\u0301phane", "STEP", true},
      {"Stephane", "sté", true},
      {"Stéphane", "ste\u0301p", true},
      {"Stéphane", "sta", false},
      {"Stephane", "step\u0301", true},
      {"e", "e\u0301", true},
      {"Łukasz", "łu", true},
      {"Łukasz", "lu", true},
      {"Lukasz", "Łu", true},
      {"Straße", "STRASSE", true},
      {"Strasse", "straße", true},
      {"Straße", "stras", true},
      {"Straße", "strase", false},
      {"Ærø", "aero", true},
      {"Ёлкин", "ел", true},
      {"李伟", "李", true},
      {"李伟", "伟", false},
      {"*21#+4", "*21#+", true},
      {"12", "1*", false},
      {"[", "{", false},
      {"a\0b"sv, "A\0B"sv, true},
      {"a\0b"sv, "a\0c"sv, false},
      {"é\0b"sv, "e\0c"sv, false},
      {"\xFF\xFE", "\xFF", true},
      {"\xFF", "\xFE", false},
      {"\xD0\xB0", "\xD0", false},  // half a letter is no letter
      {"\xD0", "\xD0\xB0", false},
      {"\xD0\u0301\xB0", "\xD0\xB0", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(desk::BeginsWith(row.text, row.key), row.begins) << row.text << " with " << row.key;
    EXPECT_EQ(desk::BeginsWith(row.text, desk::FoldText(row.key)), row.begins) << row.key;
  }
}

// Every character that two bytes of UTF-8 hold, upper case and accents of most alphabets with it.
TEST(TextMatchTest, ComparesEachLetterLikeItsFoldedForm) {
  for (unsigned c = 0x80; c < 0x800; ++c) {
    const std::string letter = {static_cast<char>(0xC0 | c >> 6),
                                static_cast<char>(0x80 | (c & 0x3F))};
    const std::string folded = desk::FoldText(letter);
    EXPECT_EQ(desk::FoldText(folded), folded) << letter;
    EXPECT_TRUE(desk::BeginsWith(letter, folded)) << letter;
    EXPECT_TRUE(desk::BeginsWith(folded, letter)) << letter;
  }
}

}  // namespace
