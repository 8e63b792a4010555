// Tests of the key-pad form of names: the layout for each script, and what is left out.
// How text is read and folded is TextMatch's, and tested there.
#include <gtest/gtest.h>

#include "desktop/platform/KeyPad.h"

namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view name;
  std::string_view keys;
};

template <std::size_t count>
void ExpectKeys(const Row (&rows)[count]) {
  for (const Row& row : rows) EXPECT_EQ(desk::ToKeyString(row.name), row.keys) << row.name;
}

TEST(KeyPadTest, LaysOutEachAlphabet) {
  ExpectKeys({
      {"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", "22233344455566677778889999"},
      {"0123456789*#+", "0123456789*#+"},
      {"αβγδεζηθικλμνξοπρσςτυφχψω", "2223334445556667777888999"},
      {"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ", "222333444555666777888999"},
      {"абвгдеёжзийклмнопрстуфхцчшщъыьэюя", "222233333444455556666777788889999"},
      {"АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ", "222233333444455556666777788889999"},
  });
}

TEST(KeyPadTest, PlacesFurtherLettersBesideTheirBasicOnes) {
  ExpectKeys({
      {"Stéphane", "78374263"},
      {"Nguyễn", "648936"},
      {"Łukasz", "585279"},
      {"Strauß", "787287"},
      {"Æœøđðþıİŋħŧəßĸ", "26633844648377"},
      {"Çelebi-Ğöş", "235324467"},
      {"Ήρα Ϊώ", "47249"},
      {"йёї ЙЁЇ", "434434"},
      {"и\u0306е\u0308і\u0308", "434"},
      {"Ґґєіў", "22346"},
      {"ђјљњћџ", "344567"},
      {"ѓѕќ", "234"},
      {"әғқңөұүһі", "224556674"},
      {"ﬁＡ１", "3421"},
  });
}

TEST(KeyPadTest, LeavesOutWhatHasNoKey) {
  ExpectKeys({
      {"", ""},
      {"O’Connor", "6266667"},
      {"Anna-Maria (2nd floor), @home!", "266262742263356674663"},
      {"李 Wei 伟", "934"},
      {"\u0301\u0308", ""},
      {"☎ 😀 €", ""},
      {"é\0b"sv, "32"},
      {"A\xFFn\xC3na\xE2\x82", "2662"},
  });
}

// The letters of one byte pair in UTF-8: the accented Latin letters of Europe, and Cyrillic.
TEST(KeyPadTest, HasOneKeyForEachLetter) {
  const auto expectOneKey = [](unsigned first, unsigned last) {
    for (unsigned c = first; c <= last; ++c) {
      const bool twoLetters = c == 0x132 || c == 0x133;  // the ligature ij
      const bool noLetter = c == 0xD7 || c == 0xF7 || (c >= 0x482 && c <= 0x489);
      const std::string letter = {static_cast<char>(0xC0 | c >> 6),
                                  static_cast<char>(0x80 | (c & 0x3F))};
      EXPECT_EQ(desk::ToKeyString(letter).size(), noLetter ? 0u : twoLetters ? 2u : 1u) << letter;
    }
  };
  expectOneKey(0xC0, 0x17F);
  expectOneKey(0x400, 0x52F);
}

}  // namespace
