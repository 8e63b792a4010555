// Names as users look for them: the key-pad form and the folded form. Both are made of the name's
// parts alone, and making them twice changes nothing.
#include "desktop/platform/TextMatch.h"
#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {

void FuzzOne(const std::string& input) {
  const std::string keys = CommonUnits_ToKeyString(input);
  EXPECT_EQ(keys.find_first_not_of("0123456789*#+"), std::string::npos) << keys;
  EXPECT_EQ(CommonUnits_ToKeyString(keys), keys);
  const std::string folded = FoldText(input);
  EXPECT_EQ(FoldText(folded), folded);
  EXPECT_EQ(CommonAPI_StringConvert(input, STRING_CONVERT_SEARCH_KEY), folded);
  for (const std::string& key : {input, folded}) {
    EXPECT_EQ(CommonAPI_StringCompare(input, key, 0, static_cast<int>(key.size()), false), 0);
  }
  // The first line is the beginning of a name, and of whatever stands behind it.
  const std::size_t cut = input.find('\n');
  if (cut == std::string::npos) return;
  const std::string first = input.substr(0, cut), rest = input.substr(cut + 1);
  EXPECT_EQ(keys, CommonUnits_ToKeyString(first) + CommonUnits_ToKeyString(rest));
  EXPECT_EQ(folded, FoldText(first) + "\n" + FoldText(rest));
  EXPECT_TRUE(BeginsWith(input, first));
  if (BeginsWith(first, rest)) EXPECT_EQ(FoldText(first).find(FoldText(rest)), 0u);
}

}  // namespace desk
