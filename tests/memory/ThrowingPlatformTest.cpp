// A platform that throws, although it must not, for one caller's name and while its lamp is broken:
// this program's own key-pad form and lamp stand in front of the desktop's.
#include <stdexcept>

#include "desktop/platform/contacts/KeyPad.h"
#include "platform/CommonUnits.h"
#include "platform/LedLamp.h"
#include "tests/support/PhoneTest.h"

std::string CommonUnits_ToKeyString(const std::string& name) {
  if (name == "Cursed") throw std::runtime_error("no key-pad form");
  return desk::ToKeyString(name);
}

static bool lampIsBroken = false;

void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE /*event*/, bool /*on*/) {
  if (lampIsBroken) throw std::runtime_error("no lamp");
}

namespace desk {
namespace {

using ThrowingPlatformTest = PhoneTest;

TEST_F(ThrowingPlatformTest, ANameWithoutKeyPadFormIsStoredAllTheSame) {
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
    EXPECT_EQ(Names(0), Strings({"101", "Cursed", "103"}));
    CallLogSearchListData found;
    found.request_count = 10;
    EXPECT_EQ(CallLog_Search(&found, "10"), 1);
    EXPECT_EQ(found.total, 3);
  }
}

TEST_F(ThrowingPlatformTest, ReachesNobodyThroughTheController) {
  Add(2, "101");
  Add(4, "102");
  lampIsBroken = true;
  EXPECT_NO_THROW(Controller().RemoveMissedDirtyByNumber("101"));
  EXPECT_NO_THROW(Controller().RemoveForwardDirtyByNumber("102"));
  lampIsBroken = false;
  MissedNotifyListData missed;
  ForwardedNotifyList forwarded;
  EXPECT_EQ(Controller().GetMissedNotifyList(&missed), 1);
  EXPECT_EQ(Controller().GetForwardedNotifyList(&forwarded), 1);
  EXPECT_TRUE(missed.items.empty() && forwarded.items.empty());
}

}  // namespace
}  // namespace desk
