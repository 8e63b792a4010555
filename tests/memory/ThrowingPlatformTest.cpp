// A platform that throws for one caller's name, although it must not: this program's own key-pad
// form stands in front of the desktop's.
#include <stdexcept>

#include "desktop/platform/KeyPad.h"
#include "platform/CommonUnits.h"
#include "tests/support/PhoneTest.h"

std::string CommonUnits_ToKeyString(const std::string& name) {
  if (name == "Cursed") throw std::runtime_error("no key-pad form");
  return desk::ToKeyString(name);
}

namespace desk {
namespace {

using ThrowingPlatformTest = PhoneTest;

TEST_F(ThrowingPlatformTest, OneNameCostsNoCall) {
  CallLogAddItemData cursed = MakeCall(1, "102");
  cursed.remote_display_name = "Cursed";
  EXPECT_EQ(Add(1, "101"), 0);
  EXPECT_EQ(CallLog_AddLog(cursed), 0);
  EXPECT_EQ(Add(1, "103"), 0);
  for (const bool restarted : {false, true}) {
    if (restarted) {
      WaitForSave();
      PowerCycle();
    }
    ASSERT_NE(NS_CALLLOG::CCallLogController::GetInstance(), nullptr);
    EXPECT_EQ(Names(0), std::vector<std::string>({"101", "Cursed", "103"}));
    CallLogSearchListData found;
    found.request_count = 10;
    EXPECT_EQ(CallLog_Search(&found, "10"), 1);
    EXPECT_EQ(found.total, 3);
  }
}

}  // namespace
}  // namespace desk
