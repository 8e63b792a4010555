// Tests of the key-pad form of names: the layout for each script, and what is left out.
// How text is read and folded is TextMatch's, and tested there.
#include <gtest/gtest.h>

#include "desktop/platform/contacts/KeyPad.h"

namespace {

using namespace std::string_view_literals;

constexpr struct {
  std::string_view name;
  std::string_view keys;
} kNames[] = {
    {"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999"},
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", "22233344455566677778889999"},
    {"0123456789*#+", "0123456789*#+"},
    {"αβγδεζηθικλμνξοπρσςτυφχψω", "2223334445556667777888999"},
    {"абвгдеёжзийклмнопрстуфхцчшщъыьэюя", "222233333444455556666777788889999"},
    {"АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ", "222233333444455556666777788889999"},
    // Further letters lie beside their basic ones.
    {"Nguyễn", "648936"},
    {"Æœøđðþıİŋħŧəßĸ", "26633844648377"},
    {"Ήρα Ϊώ", "47249"},
    {"и\u0306е\u0308і\u0308", "434"},
    {"Ґґєіў", "22346"},
    {"ђјљњћџѓѕќ", "344567234"},
    {"әғқңөұүһі", "224556674"},
    {"ﬁＡ１", "3421"},
    // What has no key is left out.
    {"", ""},
    {"O’Connor", "6266667"},
    {"Anna-Maria (2nd floor), @home!", "266262742263356674663"},
    {"李 Wei 伟", "934"},
    {"\u0301\u0308", ""},
    {"é\0b"sv, "32"},
    {"A\xFFn\xC3na\xE2\x82", "2662"},
};

TEST(KeyPadTest, HasTheKeysThatAUserPressesForAName) {
  for (const auto& row : kNames) EXPECT_EQ(desk::ToKeyString(row.name), row.keys) << row.name;
}

// The letters of one byte pair in UTF-8.
void ExpectOneKeyEach(int first, int last) {
  for (int c = first; c <= last; ++c) {
    const bool twoLetters = c == 0x132 || c == 0x133;  // the ligature ij
    const bool noLetter = c == 0xD7 || c == 0xF7 || (c >= 0x482 && c <= 0x489);
    const std::string letter = {static_cast<char>(0xC0 | c >> 6),
                                static_cast<char>(0x80 | (c & 0x3F))};
    EXPECT_EQ(desk::ToKeyString(letter).size(), noLetter ? 0u : twoLetters ? 2u : 1u) << letter;
  }
}

TEST(KeyPadTest, HasOneKeyForEachLetter) {
  ExpectOneKeyEach(0xC0, 0x17F);   // the accented Latin letters of Europe
  ExpectOneKeyEach(0x400, 0x52F);  // Cyrillic
}

}  // namespace
