// Each operation of the module with its first, second, ... allocation failing, until it needs no
// more. No exception leaves the module; the answer is the one for a failure and nothing has
// changed, or it is a success and everything has; and with memory back all goes on.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <initializer_list>

#include "platform/EtlMsgHandler.h"
#include "tests/memory/FailingMemory.h"
#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using NS_CALLLOG::BS_LIST_DOWNLOADING;
using NS_CALLLOG::BS_LIST_FAILED;
using NS_CALLLOG::BS_LIST_OK;
using NS_CALLLOG::CCallLogController;

// Long enough to be allocated wherever it is copied.
std::string Long(const std::string& text) { return text + " and the rest of a long text"; }

template <class Operation, class Check>
void FailEach(const std::function<void()>& prepare, Operation operation, Check check,
              std::initializer_list<Shortage> shortages = {Shortage::kOnce, Shortage::kLasting}) {
  int failures = 0;
  for (const Shortage shortage : shortages) {
    for (int n = 1;; ++n, ++failures) {
      SCOPED_TRACE(n);
      prepare();
      BeginShortage(n, shortage);
      const auto answer = operation();
      const bool failed = EndShortage();
      check(answer, failed);
      if (!failed || testing::Test::HasFailure()) break;
    }
  }
  EXPECT_GT(failures, 0);
}

class AllocationFailureTest : public PhoneTest {
 protected:
  struct Operation {
    const char* what;
    std::function<bool()> act;  // whether it has succeeded
    std::function<void()> prepare = [] {};
    bool changes = true;  // false: reads a file that stays as it is
  };

  // After a success everything is as without a shortage, after a failure as before.
  void ExpectWholeOrNothing(const Operation& operation) {
    Try(operation, [this](bool done) { EXPECT_EQ(State(), done ? whole_ : before_); });
  }

  // What has changed has changed whole: each row is as before or as without a shortage.
  void ExpectWholeRows(const Operation& operation) {
    Try(operation, [this](bool /*done*/) {
      for (const std::string& row : State()) EXPECT_TRUE(Has(before_, row) || Has(whole_, row));
    });
  }

  static CallLogAddItemData LongCall(int type, const std::string& number) {
    CallLogAddItemData call = MakeCall(type, Long(number));
    call.remote_display_name = Long("Caller " + number);
    call.forward_sip_name = Long("5" + number);
    call.local_sip_name = Long("desk");
    return call;
  }
  static bool Add(int type, const std::string& number) {
    return CallLog_AddLog(LongCall(type, number)) == 0;
  }

  static int Found(const std::string& key, CallLogSearchListData* page) {
    page->request_count = 100;
    return CallLog_Search(page, key);
  }

  // Of these an operation fills one.
  CallLogSimpleListData list;
  CallLogDetailData detail;
  MissedNotifyListData missed;
  ForwardedNotifyList forwarded;
  CallLogSearchListData hits;
  SuperSearchListData dialled;
  std::string text;

  int retries = 0;  // saves that failed and were made up for by the timer

 private:
  static bool Has(const Strings& rows, const std::string& row) {
    return std::find(rows.begin(), rows.end(), row) != rows.end();
  }

  // A phone with two calls of each type, saved and new, and nothing filled.
  void Prepare(const Operation& operation) {
    CCallLogController::ReleaseInstance();
    std::filesystem::remove(HistoryFile());
    for (int type = 1; type <= 4; ++type) {
      for (const char* number : {"61", "62"}) EXPECT_TRUE(Add(type, number));
    }
    WaitForSave();
    TakeJournal({});
    list.Reset(), detail.Reset(), missed.Reset(), forwarded.Reset(), hits.Reset(), dialled.Reset();
    text.clear();
    list.request_count = hits.request_count = dialled.request_count = 100;
    operation.prepare();
  }

  void Try(const Operation& operation, const std::function<void(bool)>& check) {
    SCOPED_TRACE(operation.what);
    Prepare(operation);
    before_ = State();
    Prepare(operation);
    EXPECT_TRUE(operation.act());
    whole_ = State();
    FailEach([&] { Prepare(operation); }, operation.act,
             [&](bool done, bool failed) {
               if (failed) {
                 check(done);
               } else {
                 EXPECT_TRUE(done);
                 EXPECT_EQ(State(), whole_);
               }
               WaitForSave();
               retries += !done && State().back() != before_.back();
               if (operation.changes) ExpectSavedAsShown();
               EXPECT_TRUE(Add(1, "65"));
               ExpectSavedAsShown();
             });
  }

  // Whatever has changed is saved without a further change.
  void ExpectSavedAsShown() {
    Controller().SaveToFile();
    const Strings names = Names(0);
    PowerCycle();
    EXPECT_EQ(Names(0), names);
  }

  // All that the module shows of the history, what it has filled, and last the file; marks nothing
  // as seen.
  Strings State() const {
    Strings state = {detail.display_name + detail.duration_text + text};
    for (const auto& row : list.items) state.push_back(row.display_name + row.time_text);
    const auto pages = [&state](const auto&... page) { (Append(page, &state), ...); };
    pages(missed, forwarded, hits, dialled);
    for (const std::string& key : {Long("Caller 62"), std::string("Caller 6")}) {
      CallLogSearchListData found;
      Found(key, &found);
      pages(found);
    }
    CallLogDetailData call;
    for (int row = 0; Controller().GetLogDetailByClickAction(&call, Action(0), row) == 1; ++row) {
      state.push_back(std::to_string(call.type) + call.display_name + call.number + call.server +
                      call.time_text);
    }
    MissedNotifyListData newMissed;
    ForwardedNotifyList newForwarded;
    Controller().GetMissedNotifyList(&newMissed);
    Controller().GetForwardedNotifyList(&newForwarded);
    pages(newMissed, newForwarded);
    for (const auto& row : newForwarded.items) state.push_back(row.forward_display_name);
    state.push_back(ReadFile(HistoryFile()));
    return state;
  }
  template <class Page>
  static void Append(const Page& page, Strings* state) {
    for (const auto& row : page.items) state->push_back(row.display_name + row.number);
  }

  Strings before_;
  Strings whole_;
};

TEST_F(AllocationFailureTest, AnOperationIsDoneWholeOrNotAtAll) {
  const auto save = [] {
    ETL_MsgQueueHelper::msgObject timer;
    timer.message = 0x8113;
    timer.wParam = 90010;
    return CCallLogController::OnMessage(timer) == 1;
  };
  const auto change = [] { Add(3, "63"); };
  const auto add = [](int type) {
    return [call = LongCall(type, "63")] { return CallLog_AddLog(call) == 0; };
  };
  const std::string missedCalls = Action(2);
  std::vector<Operation> operations = {
      {"outgoing call", add(1)},
      {"missed call", add(2)},
      {"forwarded call", add(4)},
      {"save", [] { return Controller().SaveToFile() == 1; }, change},
      {"save by the timer", save, change},
      {"list", [&] { return Controller().GetLogListByClickAction(&list, missedCalls) == 1; }},
      {"detail",
       [&] { return Controller().GetLogDetailByClickAction(&detail, missedCalls, 1) == 1; }},
      {"missed callers", [&] { return Controller().GetMissedNotifyList(&missed) == 1; }},
      {"forwarded callers", [&] { return Controller().GetForwardedNotifyList(&forwarded) == 1; }},
      {"last dialled", [&] { return !(text = CallLog_GetLastOutCall()).empty(); }},
      {"last caller", [&] { return !(text = CallLog_GetLastNewInCall()).empty(); }},
      {"icon", [&] { return !(text = Controller().GetImagePathByType(1)).empty(); }},
      {"most dialled", [&] { return CallLog_SearchRecentOutCall(&hits) == 1; }},
      {"ten most dialled", [&] { return CallLog_SuperSearchRecentOutCall(&dialled) == 1; }},
  };
  for (const std::string& key : {std::string("Caller 6"), Long("Caller 62"), std::string("22")}) {
    for (const char* held : {"", "Caller", "Caller 6", "2"}) {
      const auto hold = [held] {
        CallLogSearchListData ignored;
        Found(held, &ignored);
      };
      operations.push_back({"search", [this, key] { return Found(key, &hits) == 1; }, hold});
    }
  }
  for (const Operation& operation : operations) ExpectWholeOrNothing(operation);
  EXPECT_GT(retries, 0);
}

TEST_F(AllocationFailureTest, WhatIsDoneInPartLeavesWholeCallsAndIsSaved) {
  CallLogUpdateData contact;
  contact.number_1 = Long("61");
  contact.display_name = Long("Somebody new");
  SuperSearchItemData entry;
  entry.number = Long("62");
  entry.display_name = Long("Somebody else");
  const std::list<SuperSearchItemData> entries = {entry};
  const auto loadShortNames = [&] {  // where a number has no room
    CallLogUpdateData shorter = contact;
    shorter.display_name = "Bo";
    CallLog_UpdateLog(shorter);
    WaitForSave();
    PowerCycle();
  };
  const std::list<int> rows = {0, 3, 5};
  const std::string all = Action(0);
  const std::string redial = Action(2);
  for (const Operation& operation : std::vector<Operation>{
           {"start", [] { return CCallLogController::GetInstance() != nullptr; },
            [] { CCallLogController::ReleaseInstance(); }, false},
           {"contact renamed", [&] { return CallLog_UpdateLog(contact) == 1; }},
           {"names forgotten", [] { return CallLog_ResetLogContactName() == 1; }, loadShortNames},
           {"names refreshed", [&] { return Controller().UpdateDispName(entries), true; }},
           {"one removed", [&] { return Controller().RemoveLog(all, 2) == 1; }},
           {"some removed", [&] { return Controller().RemoveLogList(all, rows) == 1; }},
           {"missed removed", [&] { return Controller().RemoveAllLogsByClickAction(redial) == 1; }},
           {"number dealt with",
            [&] {
              RemoveMissedDirtyByNumber(contact.number_1.c_str());
              RemoveForwardDirtyByNumber(contact.number_1.c_str());
              return true;
            }},
           {"calls", [&] {
              Controller().RedialNumberByClickAction(redial);
              Controller().EnterTalkUI(contact.number_1);
              ContactGeneralItemData* const nobody = nullptr;
              Controller().GetContactDataByNumber(nobody, contact.number_1);
              Controller().CallOut(contact.number_1, contact.number_1);
              return true;
            }}}) {
    ExpectWholeRows(operation);
  }
}

class ServerAllocationFailureTest : public ServerTest {};

TEST_F(ServerAllocationFailureTest, SourcesAreAllThereOrNone) {
  const auto names = [] {
    Strings found;
    for (int i = 0; i < Logs().GetTotalConfigurableItemCount(); ++i) {
      found.push_back(Logs().GetConfiguredItemName(i));
    }
    return found;
  };
  const Strings both = {Long("a"), Long("b")};
  const auto release = [&] {
    NS_CALLLOG::CBSCallLogController::ReleaseInstance();
    WriteFile(root.path() / "config/data/broadsoft_calllog_list.xml",
              "<root_broadsoft_calllog display_name='" + Long("Office") + "'><item name='" +
                  both[0] + "'/><item name='" + both[1] + "'/></root_broadsoft_calllog>");
  };
  const auto start = [&] { release(), Logs(); };
  const auto expectAllOrNone = [&](bool done, bool failed) {
    EXPECT_TRUE(done || failed);
    if (!failed || !names().empty()) {
      EXPECT_EQ(names(), both);
    }
  };
  FailEach(
      release, [] { return NS_CALLLOG::CBSCallLogController::GetInstance() != nullptr; },
      expectAllOrNone);
  FailEach(
      start, [] { return Logs().ReloadBSCallLogConfig(); }, expectAllOrNone);
  const BroadSoftConfigItem changed = MakeSource(Long("server"), "1", Long("u"), Long("p"));
  FailEach(
      start,
      [&] {
        Logs().SetConfigDataByIndex(0, changed);
        return CallLog_IsBroadSoftCallLogConfigured() == 1 &&
               !CallLog_GetBSCallLogDisplayName().empty();
      },
      [&](bool /*done*/, bool /*failed*/) {
        EXPECT_EQ(Logs().GetConfigDataByIndex(0)->name.empty(),
                  Logs().GetConfigDataByIndex(0)->server == changed.server);
        Logs().ReloadBSCallLogConfig();
        EXPECT_EQ(names().size(), 2u);
      });
}

int failing = 0;
bool hasFailed = false;

TEST_F(ServerAllocationFailureTest, AConfigurationMessageIsAnsweredAllTheSame) {
  // Around the module's handler, for the desktop's own sending needs memory, too.
  platform->loop.Register(0x10007, 0x10007, [](ETL_MsgQueueHelper::msgObject&) {
    BeginShortage(failing, Shortage::kOnce);
    return 0;
  });
  CallLog_RegisterMessage();
  platform->loop.Register(0x10007, 0x10007, [](ETL_MsgQueueHelper::msgObject&) {
    hasFailed = EndShortage();
    return 0;
  });
  do {
    ++failing;
    EXPECT_EQ(platform->loop.Send({0x10007, 0x28, 0, {}}), 1) << failing;
  } while (hasFailed);
  EXPECT_GT(failing, 1);
}

TEST_F(ServerAllocationFailureTest, AListIsFetchedOrCanBeAskedForAgain) {
  Serve("missed.xml", Document(Entry(Long("71")) + Entry(Long("72"))));
  SetSource(0, "/missed.xml");
  const std::string action = "OpenCallLogPage(broadsoft_calllog_0)";
  const auto ask = [&](bool refresh) {
    return Logs().GetLogListByClickAction(&page, action, "", refresh);
  };
  int stuck = 0;  // lists that still count as being fetched when nothing is under way any more
  const auto expectFetched = [&] {
    Settle();
    if (Ask(0) == BS_LIST_DOWNLOADING && platform->transfers.Running() == 0) ++stuck;
    Settle();
    if (Ask(0) != BS_LIST_OK) {
      EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
      Settle();
    }
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    EXPECT_EQ(page.items.size(), 2u);
  };
  page.request_count = 100;
  FailEach([] {}, [&] { return ask(true); },
           [&](int answer, bool failed) {
             EXPECT_EQ(answer,
                       failed && answer == BS_LIST_FAILED ? BS_LIST_FAILED : BS_LIST_DOWNLOADING);
             expectFetched();
           });
  const auto clear = [&] {
    page.Reset();
    page.request_count = 100;
  };
  FailEach(
      clear, [&] { return ask(false); },
      [&](int answer, bool /*failed*/) {
        EXPECT_EQ(page.items.size(), answer == BS_LIST_OK ? 2u : 0u);
      });
  CallLogDetailData detail;
  FailEach([&] { detail.Reset(); }, [&] { return Logs().GetLogDetailByIndex(&detail, 1); },
           [&](bool filled, bool /*failed*/) { EXPECT_EQ(detail.number.empty(), !filled); });
  const auto arrive = [&] {
    EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
    platform->loop.WaitForPost(std::chrono::seconds(60));
  };
  const auto deliver = [&] {
    platform->RunDue();
    return 0;
  };
  const auto checkFetched = [&](int /*answer*/, bool /*failed*/) { expectFetched(); };
  FailEach(arrive, deliver, checkFetched, {Shortage::kLasting});
  stuck = 0;
  FailEach(arrive, deliver, checkFetched, {Shortage::kOnce});
  EXPECT_LE(stuck,
            2);  // no memory even for the list's URL: one allocation, two on armhf
}

}  // namespace
}  // namespace desk
