// One call through the whole system, as its user sees it.
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using Texts = std::vector<std::string>;

class OneCallTest : public PhoneTest {
 protected:
  static std::string FirstHit(const std::string& key) {
    CallLogSearchListData page;
    page.request_count = 10;
    EXPECT_EQ(CallLog_Search(&page, key), 1);
    EXPECT_EQ(page.total, 1) << key;
    return page.items.front().display_name + " " + page.items.front().number;
  }

  void HangUp() {
    platform->Advance(Milliseconds(60000));
    CallLogAddItemData call = MakeCall(1, platform->talk.call->number, kNow + 60);
    call.duration = 60;
    platform->talk.call.reset();
    EXPECT_EQ(CallLog_AddLog(call), 0);
  }
};

TEST_F(OneCallTest, MissedSeenSearchedRedialledSavedAndPowerCycled) {
  platform->contacts.Add({"Stéphane", {"4420"}, "stephane.png"});
  const std::string stephane = "Stéphane 4420";

  // The phone rings on an empty desk.
  ASSERT_EQ(Add(2, "4420"), 0);
  EXPECT_EQ(platform->display.statuses[12], "1 Missed");
  EXPECT_EQ(platform->display.ledEvents, std::set<int>{9});
  EXPECT_EQ(platform->display.backlightEvents, std::set<int>{5});

  // Its user comes back and opens the list of missed calls.
  EXPECT_EQ(Names(2), Texts{"Stéphane"});
  EXPECT_EQ(Detail(2, 0).image_path, "stephane.png");
  EXPECT_TRUE(platform->display == Display());

  // Searches the caller by name, by the keys of the name, and by number.
  for (const char* key : {"s", "st", "ste", "7", "78", "783", "4", "44"}) {
    EXPECT_EQ(FirstHit(key), stephane);
  }

  // Calls back, and once more by redial.
  EXPECT_TRUE(Controller().CallOut("4420", "Stéphane"));
  HangUp();
  Controller().RedialNumberByClickAction("OpenSubPage(call_log_2)");
  EXPECT_EQ(platform->talk.call->name, "Stéphane");
  EXPECT_EQ(platform->talk.call->accountId, 7);
  HangUp();

  // Five seconds later all is saved, and outlives a cut of the power.
  WaitForSave();
  PowerCycle();
  EXPECT_TRUE(platform->display == Display());
  EXPECT_EQ(Names(0), Texts(3, "Stéphane"));
  EXPECT_EQ(Detail(1, 0).duration_text, "00:01:00");
  EXPECT_EQ(CallLog_GetLastOutCall() + CallLog_GetLastNewInCall(), "44204420");
  EXPECT_EQ(FirstHit("783"), stephane);
}

}  // namespace
}  // namespace desk
