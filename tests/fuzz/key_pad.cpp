// Names as users look for them: the key-pad form and the folded form, which are made of the name's
// parts alone.
#include "desktop/platform/contacts/TextMatch.h"
#include "platform/CommonUnits.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {

void FuzzOne(const std::string& input) {
  const std::string keys = CommonUnits_ToKeyString(input);
  EXPECT_EQ(keys.find_first_not_of("0123456789*#+"), std::string::npos) << keys;
  const std::string folded = FoldText(input);
  EXPECT_EQ(FoldText(folded), folded);
  EXPECT_TRUE(BeginsWith(input, folded));
  const std::size_t cut = input.find('\n');
  if (cut == std::string::npos) return;
  const std::string first = input.substr(0, cut), rest = input.substr(cut + 1);
  EXPECT_EQ(keys, CommonUnits_ToKeyString(first) + CommonUnits_ToKeyString(rest));
  EXPECT_EQ(folded, FoldText(first) + "\n" + FoldText(rest));
}

}  // namespace desk
