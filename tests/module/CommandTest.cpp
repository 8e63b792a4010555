// Tests of what the module passes on: redials and calls to the talk logic, questions to the
// directory, exported functions to their controllers, and the configuration message.
#include <functional>

#include "desktop/platform/contacts/KeyPad.h"
#include "platform/CommonUnits.h"
#include "platform/Directory.h"
#include "tests/support/PhoneTest.h"

namespace {

// Called while the module reads a call of its history, when the controller has no model yet.
std::function<void()> whileReading;

}  // namespace

// Stands in front of the platform's.
std::string CommonUnits_ToKeyString(const std::string& name) {
  if (whileReading) whileReading();
  return desk::ToKeyString(name);
}

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;
using NS_CALLLOG::CCallLogController;

constexpr unsigned int kConfigChange = 0x10007;

class CommandTest : public PhoneTest {
 protected:
  CommandTest() {
    WriteFile(HistoryFile(), "<root_call_log><item type='1' remote_sip_name='1'/></root_call_log>");
  }
  ~CommandTest() override {
    whileReading = nullptr;
    CBSCallLogController::ReleaseInstance();
  }

  // Broadcasts a changed item; the reply stands in the journal.
  Strings JournalOf(unsigned int item, unsigned int message = kConfigChange) {
    TakeJournal({""});
    platform->loop.Send({message, item, 0, {}});
    return TakeJournal({""});
  }
};

// Whom a redial calls is ModelTest's.
TEST_F(CommandTest, OnlyTheMissedCallsPageRedials) {
  for (const char* action :
       {"OpenSubPage(call_log_1)", "OpenSubPage(call_log_2) ", "", "OpenSubPage(call_log_2)"}) {
    EXPECT_EQ(TakeJournal({"call-out"}), Strings());
    Controller().RedialNumberByClickAction(action);
  }
  EXPECT_EQ(TakeJournal({"call-out"}), Strings{"call-out 1 1 account -1"});
}

TEST_F(CommandTest, TalkLogicAndDirectoryAreAskedAndTheirAnswersPassedOn) {
  EXPECT_TRUE(Controller().CallOut("100", "Zoe"));
  EXPECT_FALSE(Controller().CallOut("200", ""));  // one call at a time
  Controller().EnterTalkUI("300");
  EXPECT_EQ(TakeJournal({"call-out", "dial-screen"}),
            (Strings{"call-out 100 Zoe account -1", "call-out 200  account -1",
                     "dial-screen 300 account -1 editable 1"}));
  platform->contacts.Add({"Zoe", {"101"}, ""});
  ContactGeneralItemData contact;
  EXPECT_FALSE(Controller().GetContactDataByNumber(&contact, "10"));
  EXPECT_TRUE(Controller().GetContactDataByNumber(&contact, "101"));
  EXPECT_EQ(contact.display_name, "Zoe");
}

// What operations answer that need the model, each by a way of its own; the voids must do no harm.
std::vector<int> Answers(CCallLogController& c) {
  CallLogSearchListData hits;
  SuperSearchListData ten;
  hits.request_count = ten.request_count = 1;
  RemoveMissedDirtyByNumber("100");
  RemoveForwardDirtyByNumber("100");
  c.UpdateDispName({});
  c.ResetMissedCall();
  c.ResetForwardedCall();
  CallLogAddItemData call;
  call.type = 3;
  return {CallLog_AddLog(call) + 1,
          CallLog_ResetLogContactName(),
          CallLog_SearchRecentOutCall(&hits),
          CallLog_SuperSearchRecentOutCall(&ten),
          CallLog_GetLastOutCall().empty() ? 0 : 1,
          c.SaveToFile(),
          c.RemoveAllLogsByClickAction("call_log_0")};
}

TEST_F(CommandTest, AControllerWithoutAModelRefusesEverything) {
  int readings = 0;
  whileReading = [&] {
    ++readings;
    EXPECT_EQ(Answers(Controller()), std::vector<int>(7, 0));
    Controller().RedialNumberByClickAction("OpenSubPage(call_log_2)");
  };
  EXPECT_EQ(Names(0), Strings{"1"});
  EXPECT_EQ(readings, 1);
  EXPECT_EQ(TakeJournal({"call-out", "timer"}), Strings());
  whileReading = nullptr;
  EXPECT_EQ(Answers(Controller()), std::vector<int>(7, 1));
}

TEST_F(CommandTest, AChangeOfTheSourcesIsTakenOverAndAnswered) {
  const auto sources = root.path() / "config/data/broadsoft_calllog_list.xml";
  const std::string loaded =
      "trace 3 CallLog: LoadDataFrom ./config/data/broadsoft_calllog_list.xml";
  const auto expected = [&](const std::string& title, bool starting = false) {
    Strings lines = {"trace 2 CallLog: Receive MSG [ST_BS_CALLLOG]", loaded};
    if (starting) lines.push_back(loaded);
    if (!title.empty()) {
      lines.push_back("title OpenCallLogPage(broadsoft_calllog_list.xml) " + title);
    }
    lines.insert(lines.end(), {"app 0x914 0 0", "reply 1 to 0x10007"});
    return lines;
  };
  EXPECT_EQ(CallLog_RegisterMessage(), 1);
  EXPECT_EQ(TakeJournal({""}), Strings{"register 0x10007-0x10007"});
  EXPECT_EQ(JournalOf(0x28), expected("Broadsoft CallLog", true));
  WriteFile(sources, "<root_broadsoft_calllog display_name='Office'/>");
  EXPECT_EQ(JournalOf(0x28), expected("Office"));
  WriteFile(sources, "nothing that can be loaded");
  EXPECT_EQ(JournalOf(0x28), expected("Office"));
  platform->hasMenu = false;
  EXPECT_EQ(JournalOf(0x28), expected(""));
}

TEST_F(CommandTest, OtherConfigurationItemsAreNotAnsweredAndRemoveNothing) {
  CallLog_RegisterMessage();
  std::vector<int> results;
  platform->loop.SetObserver([&](const Message&, int result) { results.push_back(result); });
  for (const unsigned i : {0u, 0x27u, 0x29u, 0x46u, 0x48u}) EXPECT_EQ(JournalOf(i), Strings());
  EXPECT_EQ(JournalOf(0x28, kConfigChange - 1) + JournalOf(0x28, kConfigChange + 1), Strings());
  const std::string removal =
      "trace 3 CCallLogController::OnMessage [BROAD_MSG_CONFIG_CHANGE] wParam[0x47]";
  EXPECT_EQ(JournalOf(0x47), (Strings{removal, "register 0x8113-0x8113"}));
  EXPECT_EQ(JournalOf(0x47), Strings{removal});  // the action names no call type
  EXPECT_EQ(Names(0), Strings{"1"});
  JournalOf(0x28);
  EXPECT_EQ(results, std::vector<int>(8, 0));
}

}  // namespace
}  // namespace desk
