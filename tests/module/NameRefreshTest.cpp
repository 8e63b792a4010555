// Tests of the three ways in which stored calls get other names: which fields of which calls, what
// stands in for an empty name, and what counts as a change to be saved.
#include <functional>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using Texts = std::vector<std::string>;

const Texts kSaved = {"timer 90010 set 5000"};
const Texts kBegin = {"trace 3 CCallLogModel::UpdateDispName update begin"};
const Texts kEnd = {"trace 3 CCallLogModel::UpdateDispName update end"};

Texts operator+(Texts lines, const Texts& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

const Texts kRefreshed = kBegin + kSaved + kEnd;
const Texts kForgotten =
    Texts{"trace 3 CCallLogModel::ResetLogContactName: -------- bDirty = 1"} + kSaved;

// Three numbers of a contact and its name.
std::function<void()> Update(const char* one, const char* two, const char* three,
                             const char* name) {
  return [=] {
    CallLogUpdateData contact;
    contact.number_1 = one;
    contact.number_2 = two;
    contact.number_3 = three;
    contact.display_name = name;
    EXPECT_EQ(CallLog_UpdateLog(contact), 1);
  };
}

// Numbers with their names.
std::function<void()> Refresh(const std::vector<std::pair<const char*, const char*>>& entries) {
  return [=] {
    std::list<SuperSearchItemData> names;
    for (const auto& [number, name] : entries) {
      names.emplace_back();
      names.back().number = number;
      names.back().display_name = name;
    }
    NS_CALLLOG::CCallLogController::GetInstance()->UpdateDispName(names);
  };
}

void Forget() { EXPECT_EQ(CallLog_ResetLogContactName(), 1); }

class NameRefreshTest : public PhoneTest {
 protected:
  static void AddNamed(int type, const char* number, const char* name, const char* target,
                       const char* targetName) {
    CallLogAddItemData call = MakeCall(type, number);
    call.remote_display_name = name;
    call.forward_sip_name = target;
    call.forward_display_name = targetName;
    ASSERT_EQ(CallLog_AddLog(call), 0);
  }

  // Starts with everything saved.
  Texts JournalOf(const std::function<void()>& act) {
    Controller().SaveToFile();
    TakeJournal({""});
    act();
    return TakeJournal({""});
  }

  // The names of the calls, then those of the targets of the new forwarded calls, all in one text.
  static std::string AllNames(int calls) {
    std::string names;
    for (int row = 0; row < calls; ++row) names += Detail(0, row).display_name + ",";
    ForwardedNotifyList list;
    EXPECT_EQ(Controller().GetForwardedNotifyList(&list), 1);
    for (const auto& row : list.items) names += " " + row.forward_display_name;
    return names;
  }
};

TEST_F(NameRefreshTest, EachWayHasItsFieldsItsFallbackAndItsChanges) {
  const struct {
    std::function<void()> act;
    const char* names;
    Texts journal;
  } rows[] = {
      {Update("", "100", "", "New"), "Desk,Hidden,New,New,New, Goal Nowhere", kSaved},
      {Update("", "", "200", ""), "200,Hidden,100,100,Door, Goal Nowhere", kSaved},
      {Update("200", "", "", "Desk"), "Desk,Hidden,100,100,Door, Goal Nowhere", kSaved},
      {Update("300", "400", "10", "New"), "Desk,Hidden,100,100,Door, New Nowhere", {}},
      {Update("", "300", "", ""), "Desk,Hidden,100,100,Door, 300 Nowhere", {}},
      {Refresh({{"100", "New"}}), "Desk,Hidden,New,New,New, Goal Nowhere", kRefreshed},
      {Refresh({{"200", ""}}), ",Hidden,100,100,Door, Goal Nowhere", kRefreshed},
      {Refresh({{"300", "New"}}), "Desk,Hidden,100,100,Door, New Nowhere", kRefreshed},
      {Refresh({{"400", "New"}}), "Desk,Hidden,100,100,Door, Goal Nowhere", kRefreshed},
      {Refresh({{"", "New"}}), "Desk,New,100,100,Door, Goal New", kRefreshed},
      {Refresh({{"200", "A"}, {"300", "B"}, {"200", "C"}, {"300", "D"}}),
       "C,Hidden,100,100,Door, D Nowhere", kRefreshed},
      {Refresh({{"10", "New"}}), "Desk,Hidden,100,100,Door, Goal Nowhere", kBegin + kEnd},
      {Forget, "200,,100,100,100, 300 ", kForgotten},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    Controller().RemoveAllLogsByClickAction(Action(0));
    AddNamed(4, "200", "Desk", "300", "Goal");
    AddNamed(4, "", "Hidden", "", "Nowhere");
    for (const int type : {2, 3}) AddNamed(type, "100", "", "500", "");
    AddNamed(1, "100", "Door", "400", "");
    EXPECT_EQ(JournalOf(row.act), row.journal);
    EXPECT_EQ(AllNames(5), row.names);
  }
  EXPECT_EQ(JournalOf(Forget), kForgotten) << "also when every call shows its number already";
  Controller().RemoveAllLogsByClickAction(Action(0));
  const Texts none = {"trace 3 CCallLogModel::ResetLogContactName: -------- bDirty = 0"};
  EXPECT_EQ(JournalOf(Forget) + JournalOf(Refresh({{"", "New"}})), none + kBegin + kEnd);
}

}  // namespace
}  // namespace desk
