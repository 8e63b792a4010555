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
using NS_CALLLOG::CBSCallLogController;
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

// What an operation fills, one of these each.
struct Filled {
  CallLogSimpleListData list;
  CallLogDetailData detail;
  MissedNotifyListData missed;
  ForwardedNotifyList forwarded;
  CallLogSearchListData hits;
  SuperSearchListData dialled;
  std::string text;

  Filled() { list.request_count = hits.request_count = dialled.request_count = 100; }

  Strings Rows() const {
    Strings rows = {detail.display_name + detail.duration_text + text};
    for (const auto& row : list.items) rows.push_back(row.display_name + row.time_text);
    for (const auto& row : forwarded.items) rows.push_back(row.forward_display_name);
    const auto append = [&rows](const auto& page) {
      for (const auto& row : page.items) rows.push_back(row.display_name + row.number);
    };
    append(missed), append(forwarded), append(hits), append(dialled);
    return rows;
  }
} filled;

class AllocationFailureTest : public PhoneTest {
 protected:
  struct Operation {
    const char* what;
    std::function<int()> act;  // 1: it has succeeded
    std::function<void()> prepare = [] {};
    bool changes = true;  // false: reads a file that stays as it is
  };
  static const Operation kDoneWhole[];
  static const Operation kDoneInPart[];

  static CallLogAddItemData LongCall(int type, const std::string& number) {
    CallLogAddItemData call = MakeCall(type, Long(number));
    call.remote_display_name = Long("Caller " + number);
    call.forward_sip_name = Long("5" + number);
    call.local_sip_name = Long("desk");
    return call;
  }

  // A phone with three calls of each type, saved and new, and nothing filled.
  void Prepare(const Operation& operation) {
    CCallLogController::ReleaseInstance();
    std::filesystem::remove(HistoryFile());
    for (int type = 1; type <= 4; ++type) {
      for (const char* number : {"61", "62", "6\u00E9"}) CallLog_AddLog(LongCall(type, number));
    }
    WaitForSave();
    TakeJournal({});
    filled = Filled();
    operation.prepare();
  }

  // After a success everything is as without a shortage. After a failure it is as before, or, where
  // an operation may be done in part, each row is one of before or as without a shortage.
  void Try(const Operation& operation, bool inPart = false) {
    SCOPED_TRACE(operation.what);
    Prepare(operation);
    const Strings before = State();
    Prepare(operation);
    EXPECT_EQ(operation.act(), 1);
    const Strings whole = State();
    FailEach([&] { Prepare(operation); }, operation.act,
             [&](int done, bool failed) {
               EXPECT_TRUE(failed || done == 1);
               if (failed && inPart) {
                 ExpectRowsOf(before + whole);
               } else {
                 EXPECT_EQ(State(), done == 1 ? whole : before);
               }
               WaitForSave();
               retries += done != 1 && State().back() != before.back();
               if (operation.changes) ExpectSavedAsShown();
               EXPECT_EQ(CallLog_AddLog(LongCall(1, "65")), 0);
               ExpectSavedAsShown();
             });
  }

  void ExpectRowsOf(const Strings& rows) const {
    for (const std::string& row : State())
      EXPECT_NE(std::find(rows.begin(), rows.end(), row), rows.end());
  }

  // Whatever has changed is saved without a further change.
  void ExpectSavedAsShown() {
    Controller().SaveToFile();
    const Strings names = Names(0);
    PowerCycle();
    EXPECT_EQ(Names(0), names);
  }

  // What was filled, all that the module shows of the history, and last the file; marks nothing as
  // seen.
  Strings State() const {
    Strings state = filled.Rows();
    for (const std::string& key : {Long("Caller 62"), std::string("22")}) {
      Filled shown;
      CallLog_Search(&shown.hits, key);
      Controller().GetMissedNotifyList(&shown.missed);
      Controller().GetForwardedNotifyList(&shown.forwarded);
      state = state + shown.Rows();
    }
    CallLogDetailData c;
    for (int row = 0; Controller().GetLogDetailByClickAction(&c, Action(0), row) == 1; ++row) {
      state.push_back(std::to_string(c.type) + c.display_name + c.number + c.server + c.time_text);
    }
    return state + Strings{ReadFile(HistoryFile())};
  }

  int retries = 0;  // saves that failed and were made up for by the timer
};

const std::string kAll = "OpenSubPage(call_log_0)";
const std::string kMissed = "OpenSubPage(call_log_2)";

const AllocationFailureTest::Operation AllocationFailureTest::kDoneWhole[] = {
    {"outgoing call", [call = LongCall(1, "63")] { return CallLog_AddLog(call) + 1; }},
    {"missed call", [call = LongCall(2, "63")] { return CallLog_AddLog(call) + 1; }},
    {"forwarded call", [call = LongCall(4, "63")] { return CallLog_AddLog(call) + 1; }},
    {"save", [] { return Controller().SaveToFile(); }, [] { CallLog_AddLog(LongCall(3, "63")); }},
    {"save by the timer",
     [] {
       ETL_MsgQueueHelper::msgObject timer;
       timer.message = 0x8113;
       timer.wParam = 90010;
       return CCallLogController::OnMessage(timer);
     },
     [] { CallLog_AddLog(LongCall(3, "63")); }},
    {"list", [] { return Controller().GetLogListByClickAction(&filled.list, kMissed); }},
    {"detail", [] { return Controller().GetLogDetailByClickAction(&filled.detail, kMissed, 1); }},
    {"missed callers", [] { return Controller().GetMissedNotifyList(&filled.missed); }},
    {"forwarded callers", [] { return Controller().GetForwardedNotifyList(&filled.forwarded); }},
    {"last dialled", [] { return !(filled.text = CallLog_GetLastOutCall()).empty(); }},
    {"last caller", [] { return !(filled.text = CallLog_GetLastNewInCall()).empty(); }},
    {"most dialled", [] { return CallLog_SearchRecentOutCall(&filled.hits); }},
    {"ten most dialled", [] { return CallLog_SuperSearchRecentOutCall(&filled.dialled); }},
};

TEST_F(AllocationFailureTest, AnOperationIsDoneWholeOrNotAtAll) {
  for (const Operation& operation : kDoneWhole) Try(operation);
  EXPECT_GT(retries, 0);
  for (const std::string& key : {std::string("Caller 6"), Long("Caller 62"), std::string("22")}) {
    for (const char* held : {"", "Caller", "Caller 6", "2"}) {
      Try({"search", [&] { return CallLog_Search(&filled.hits, key); },
           [&] { CallLog_Search(&filled.hits, held), filled = Filled(); }});
    }
  }
}

CallLogUpdateData Contact(const std::string& name) {
  CallLogUpdateData contact;
  contact.number_1 = Long("61");
  contact.display_name = name;
  return contact;
}

const std::string kNumber = Long("61");
const CallLogUpdateData kContact = Contact(Long("Somebody new"));
const std::list<SuperSearchItemData> kEntries = [] {
  std::list<SuperSearchItemData> entries(1);
  entries.front().number = Long("62");
  entries.front().display_name = Long("Somebody else");
  return entries;
}();
const std::list<int> kRows = {0, 3, 5};

const AllocationFailureTest::Operation AllocationFailureTest::kDoneInPart[] = {
    {"start", [] { return CCallLogController::GetInstance() != nullptr; },
     [] { CCallLogController::ReleaseInstance(); }, false},
    {"contact renamed", [] { return CallLog_UpdateLog(kContact); }},
    {"names forgotten", [] { return CallLog_ResetLogContactName(); },
     [] {  // where a number has no room
       CallLog_UpdateLog(Contact("Bo"));
       Controller().SaveToFile();
       CCallLogController::ReleaseInstance();
       Controller();
     }},
    {"names refreshed", [] { return Controller().UpdateDispName(kEntries), 1; }},
    {"one removed", [] { return Controller().RemoveLog(kAll, 2); }},
    {"some removed", [] { return Controller().RemoveLogList(kAll, kRows); }},
    {"missed removed", [] { return Controller().RemoveAllLogsByClickAction(kMissed); }},
    {"number dealt with",
     [] {
       RemoveMissedDirtyByNumber(kNumber.c_str());
       RemoveForwardDirtyByNumber(kNumber.c_str());
       return 1;
     }},
    {"calls", [] {
       Controller().RedialNumberByClickAction(kMissed);
       Controller().EnterTalkUI(kNumber);
       ContactGeneralItemData* const nobody = nullptr;
       Controller().GetContactDataByNumber(nobody, kNumber);
       Controller().CallOut(kNumber, kNumber);
       return 1;
     }}};

TEST_F(AllocationFailureTest, WhatIsDoneInPartLeavesWholeCallsAndIsSaved) {
  for (const Operation& operation : kDoneInPart) Try(operation, true);
}

class ServerAllocationFailureTest : public ServerTest {
 protected:
  // No controller, and two sources in its file.
  void Release() const {
    CBSCallLogController::ReleaseInstance();
    WriteFile(root.path() / "config/data/broadsoft_calllog_list.xml",
              "<root_broadsoft_calllog display_name='" + Long("Office") + "'><item name='" +
                  Long("a") + "'/><item name='" + Long("b") + "'/></root_broadsoft_calllog>");
  }
  static Strings SourceNames() {
    Strings names;
    for (int i = 0; i < Logs().GetTotalConfigurableItemCount(); ++i) {
      names.push_back(Logs().GetConfiguredItemName(i));
    }
    return names;
  }
  static void ExpectAllOrNone(bool done, bool failed) {
    EXPECT_TRUE(done || failed);
    if (failed && SourceNames().empty()) return;
    EXPECT_EQ(SourceNames(), (Strings{Long("a"), Long("b")}));
  }

  // A source whose list has two entries; pages have room for it.
  void ServeTwo() {
    Serve("missed.xml", Document(Entry(Long("71")) + Entry(Long("72"))));
    SetSource(0, "/missed.xml");
    page.request_count = 100;
  }
  int AskFor(bool refresh) { return Logs().GetLogListByClickAction(&page, kAction, "", refresh); }

  // At the latest when it is asked for anew.
  void ExpectFetched() {
    Settle();
    if (Ask(0) == BS_LIST_DOWNLOADING && platform->transfers.Running() == 0) ++stuck;
    Settle();
    if (Ask(0) != BS_LIST_OK) {
      EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
      Settle();
    }
    EXPECT_EQ(Ask(0), BS_LIST_OK);
    EXPECT_EQ(page.items.size(), 2u);
  }

  // Lets each allocation fail while a document that has arrived is read.
  void FailArrivals(Shortage shortage) {
    FailEach(
        [this] {
          EXPECT_EQ(Ask(0, "", true), BS_LIST_DOWNLOADING);
          WaitForPost();
        },
        [this] { return platform->RunDue(), true; }, [this](bool, bool) { ExpectFetched(); },
        {shortage});
  }

  const std::string kAction = "OpenCallLogPage(broadsoft_calllog_0)";
  int stuck = 0;  // lists that still count as being fetched when nothing is under way any more
};

TEST_F(ServerAllocationFailureTest, SourcesAreAllThereOrNone) {
  const auto start = [&] { Release(), Logs(); };
  FailEach([&] { Release(); }, [] { return CBSCallLogController::GetInstance() != nullptr; },
           ExpectAllOrNone);
  FailEach(
      start, [] { return Logs().ReloadBSCallLogConfig(); }, ExpectAllOrNone);
  const BroadSoftConfigItem changed = MakeSource(Long("server"), "1", Long("u"), Long("p"));
  const auto change = [&] {
    Logs().SetConfigDataByIndex(0, changed);
    return CallLog_IsBroadSoftCallLogConfigured() + !CallLog_GetBSCallLogDisplayName().empty();
  };
  FailEach(start, change, [&](int /*done*/, bool /*failed*/) {
    const BroadSoftConfigItem& first = *Logs().GetConfigDataByIndex(0);
    EXPECT_EQ(first.name.empty(), first.server == changed.server);
    Logs().ReloadBSCallLogConfig();
    EXPECT_EQ(SourceNames().size(), 2u);
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
  ServeTwo();
  FailEach([] {}, [&] { return AskFor(true); },
           [&](int answer, bool failed) {
             EXPECT_TRUE(answer == BS_LIST_DOWNLOADING || (failed && answer == BS_LIST_FAILED));
             ExpectFetched();
           });
  FailArrivals(Shortage::kLasting);
  stuck = 0;
  FailArrivals(Shortage::kOnce);
  EXPECT_LE(stuck, 2);  // no memory even for the list's URL: one allocation, two on armhf
}

TEST_F(ServerAllocationFailureTest, APageOfAListIsFilledWholeOrNotAtAll) {
  ServeTwo();
  Fetch(0);
  FailEach([&] { page.items.clear(); }, [&] { return AskFor(false); },
           [&](int answer, bool /*failed*/) {
             EXPECT_EQ(page.items.size(), answer == BS_LIST_OK ? 2u : 0u);
           });
  CallLogDetailData detail;
  FailEach([&] { detail.Reset(); }, [&] { return Logs().GetLogDetailByIndex(&detail, 1); },
           [&](bool done, bool /*failed*/) { EXPECT_EQ(detail.number.empty(), !done); });
}

}  // namespace
}  // namespace desk
