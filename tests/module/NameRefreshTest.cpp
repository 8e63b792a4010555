// Tests of what is traced when stored calls get other names, and of what counts as a change to be
// saved. Which calls get which names is ModelTest's.
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

class NameRefreshTest : public PhoneTest {
 protected:
  template <class Act>
  Strings JournalOf(Act act) {
    Controller().SaveToFile();
    TakeJournal({""});
    act();
    return TakeJournal({""});
  }
};

TEST_F(NameRefreshTest, OnlyAChangeIsSaved) {
  const Strings saved = {"timer 90010 set 5000"};
  const Strings begin = {"trace 3 CCallLogModel::UpdateDispName update begin"};
  const Strings end = {"trace 3 CCallLogModel::UpdateDispName update end"};
  const auto forgotten = [](const char* dirty) {
    return Strings{std::string("trace 3 CCallLogModel::ResetLogContactName: -------- bDirty = ") +
                   dirty};
  };
  const auto refresh = [](const char* number) {
    return [number] {
      SuperSearchItemData entry;
      entry.number = number;
      Controller().UpdateDispName({entry});
    };
  };
  const auto rename = [](const char* number) {
    return [number] {
      CallLogUpdateData contact;
      contact.number_2 = number;
      EXPECT_EQ(CallLog_UpdateLog(contact), 1);
    };
  };
  const auto forget = [] { EXPECT_EQ(CallLog_ResetLogContactName(), 1); };
  EXPECT_EQ(JournalOf(forget), forgotten("0"));
  CallLogAddItemData call = MakeCall(4, "200");
  call.forward_sip_name = "300";
  CallLog_AddLog(call);
  EXPECT_EQ(JournalOf(forget), forgotten("1") + saved) << "also when it shows its number already";
  EXPECT_EQ(JournalOf(refresh("200")), begin + saved + end);
  EXPECT_EQ(JournalOf(refresh("300")), begin + saved + end);
  EXPECT_EQ(JournalOf(refresh("20")), begin + end);
  EXPECT_EQ(JournalOf(rename("200")), saved);
  EXPECT_EQ(JournalOf(rename("300")), Strings()) << "the file holds no forward names";
}

}  // namespace
}  // namespace desk
