// Each operation of the module with its first, second, ... allocation failing, until it needs no
// more. No exception leaves the module; the answer is the one for a failure and nothing has
// changed, or it is a success and everything has; and with memory back all goes on.
#include <gtest/gtest.h>

#include <initializer_list>

#include "guard/RestartHistory.h"
#include "platform/EtlMsgHandler.h"
#include "tests/memory/FailingMemory.h"
#include "tests/support/ServerTest.h"

namespace desk {
namespace {

using NS_CALLLOG::BS_LIST_DOWNLOADING;
using NS_CALLLOG::BS_LIST_FAILED;
using NS_CALLLOG::BS_LIST_OK;
using NS_CALLLOG::CCallLogController;

constexpr int kMissed = 2;  // the type that redial acts on, too
constexpr int kForwarded = 4;

// A list holds two rows after a success, none after a failure.
template <class List>
auto ExpectRows(const List& list) {
  return
      [&list](int answer, bool /*failed*/) { EXPECT_EQ(list.items.size(), answer == 1 ? 2u : 0u); };
}

void ExpectTextUnless(const std::string& text, bool failed) { EXPECT_EQ(text.empty(), failed); }

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
  const std::string kAll = Action(0);
  const std::string kMissedCalls = Action(kMissed);

  // A phone with two records of each type, saved and partly seen.
  void Fill() {
    CCallLogController::ReleaseInstance();
    std::filesystem::remove(HistoryFile());
    for (int type = 1; type <= kForwarded; ++type) {
      for (const char* number : {"61", "62"}) Add(type, number);
    }
    WaitForSave();
    TakeJournal({});
  }

  static CallLogAddItemData LongCall(int type, const std::string& number) {
    CallLogAddItemData call = MakeCall(type, Long(number));
    call.remote_display_name = Long("Caller " + number);
    call.forward_sip_name = Long("5" + number);
    call.local_sip_name = Long("desk");
    return call;
  }
  static int Add(int type, const std::string& number) {
    return CallLog_AddLog(LongCall(type, number));
  }

  // Everything that the module shows of the history, without marking anything as seen.
  Strings Shown() const {
    Strings shown;
    for (int row = 0;; ++row) {
      CallLogDetailData detail;
      if (Controller().GetLogDetailByClickAction(&detail, kAll, row) == 0) break;
      shown.push_back(std::to_string(detail.type) + detail.display_name + detail.number +
                      detail.server + detail.time_text);
    }
    MissedNotifyListData missed;
    ForwardedNotifyList forwarded;
    Controller().GetMissedNotifyList(&missed);
    Controller().GetForwardedNotifyList(&forwarded);
    for (const auto& row : missed.items) shown.push_back(row.number + std::to_string(row.count));
    for (const auto& row : forwarded.items) {
      shown.push_back(row.forward_display_name + std::to_string(row.count));
    }
    return shown;
  }

  // What is in memory is what a save and a new start bring back, but for what was new.
  void ExpectSavedAsShown() {
    Controller().SaveToFile();
    const Strings names = Names(0);
    WaitForSave();
    PowerCycle();
    EXPECT_EQ(Names(0), names);
  }
};

TEST_F(AllocationFailureTest, ACallIsStoredWholeOrNotAtAll) {
  Strings before;
  for (const int type : {1, kMissed, kForwarded}) {
    const auto prepare = [&] {
      Fill();
      before = Shown();
    };
    const CallLogAddItemData call = LongCall(type, "63");
    FailEach(
        prepare, [&] { return CallLog_AddLog(call); },
        [&](int answer, bool failed) {
          const Strings after = Shown();
          if (answer == -1) {
            EXPECT_TRUE(failed);
            EXPECT_EQ(after, before);
          } else {
            EXPECT_GT(after.size(), before.size());
          }
          EXPECT_EQ(Add(type, "64"), 0);
          ExpectSavedAsShown();
        });
  }
}

TEST_F(AllocationFailureTest, ASaveLeavesTheFileOrWritesItWhole) {
  std::string before;
  int triedAgain = 0;
  for (const bool byTimer : {false, true}) {
    const auto prepare = [&] {
      Fill();
      before = ReadFile(HistoryFile());
      Add(3, "63");
    };
    const auto save = [&] {
      if (!byTimer) return Controller().SaveToFile();
      ETL_MsgQueueHelper::msgObject timer;
      timer.message = 0x8113;
      timer.wParam = 90010;
      return CCallLogController::OnMessage(timer);
    };
    FailEach(prepare, save, [&](int answer, bool /*failed*/) {
      if (answer == 0) {
        EXPECT_EQ(ReadFile(HistoryFile()), before);
        WaitForSave();
        if (ReadFile(HistoryFile()) != before) ++triedAgain;
      }
      ExpectSavedAsShown();
      EXPECT_GT(ReadFile(HistoryFile()).size(), before.size());
    });
  }
  EXPECT_GT(triedAgain, 0);
}

TEST_F(AllocationFailureTest, AStartLoadsWholeRecordsOrIsTriedAgain) {
  Fill();
  const Strings all = Names(0);
  const auto prepare = [] { CCallLogController::ReleaseInstance(); };
  FailEach(prepare, NS_GUARD::RestartHistory, [&](int listed, bool failed) {
    const Strings names = Names(0);
    if (!failed) {
      EXPECT_EQ(listed, static_cast<int>(all.size()));
      EXPECT_EQ(names, all);
    }
    for (const std::string& name : names) EXPECT_EQ(name.find("Caller 6"), 0u) << name;
    EXPECT_EQ(Add(1, "65"), 0);
    EXPECT_EQ(Names(0).size(), names.size() + 1);
  });
}

TEST_F(AllocationFailureTest, AFailedSearchShowsNothingAndSpoilsNoOther) {
  using Page = CallLogSearchListData;
  const auto search = [](const std::string& key, Page* page) {
    page->request_count = 100;
    return CallLog_Search(page, key);
  };
  const auto found = [&](const std::string& key) {
    Page page;
    EXPECT_EQ(search(key, &page), 1);
    Strings rows;
    for (const auto& row : page.items) rows.push_back(row.display_name + row.number);
    return rows;
  };
  Fill();
  const Strings both = found("Caller 6");
  const Strings one = found("Caller 62");
  ASSERT_EQ(both.size(), 2u);
  ASSERT_EQ(one.size(), 1u);
  Page page;
  for (const std::string& key : {std::string("Caller 6"), std::string("Caller 62"),
                                 Long("Caller 62"), std::string("225537")}) {
    for (const char* held : {"", "Caller", "Caller 6", "2"}) {
      const auto prepare = [&] {
        Fill();  // a new search, without room for the key
        Page ignored;
        search(held, &ignored);
        page.Reset();
      };
      FailEach(
          prepare, [&] { return search(key, &page); },
          [&](int answer, bool /*failed*/) {
            if (answer == 0) {
              EXPECT_TRUE(page.items.empty());
            }
            EXPECT_EQ(found("Caller 6"), both);
            EXPECT_EQ(found(key), key.find("62") != std::string::npos ? one : both);
          });
    }
  }
  SuperSearchListData dialled;
  const auto prepare = [&] {
    page.Reset();
    dialled.Reset();
    page.request_count = dialled.request_count = 100;
  };
  FailEach(
      prepare, [&] { return CallLog_SearchRecentOutCall(&page); }, ExpectRows(page));
  FailEach(
      prepare, [&] { return CallLog_SuperSearchRecentOutCall(&dialled); }, ExpectRows(dialled));
}

TEST_F(AllocationFailureTest, AViewIsFilledOrUntouched) {
  CallLogSimpleListData list;
  CallLogDetailData detail;
  MissedNotifyListData missed;
  ForwardedNotifyList forwarded;
  const auto prepare = [&] {
    Fill();
    list.Reset();
    list.request_count = 100;
    detail.Reset();
    missed.Reset();
    forwarded.Reset();
  };
  FailEach(
      prepare, [&] { return Controller().GetLogListByClickAction(&list, kMissedCalls); },
      [&](int answer, bool /*failed*/) {
        ExpectRows(list)(answer, true);
        Controller().GetMissedNotifyList(&missed);
        EXPECT_EQ(missed.items.empty(), answer == 1);
      });
  FailEach(
      prepare, [&] { return Controller().GetLogDetailByClickAction(&detail, kMissedCalls, 1); },
      [&](int answer, bool /*failed*/) {
        EXPECT_EQ(detail.display_name.empty(), answer == 0);
        EXPECT_EQ(detail.duration_text.empty(), answer == 0);
      });
  FailEach(
      prepare, [&] { return Controller().GetMissedNotifyList(&missed); }, ExpectRows(missed));
  FailEach(
      prepare, [&] { return Controller().GetForwardedNotifyList(&forwarded); },
      ExpectRows(forwarded));
  FailEach(
      prepare, [] { return CallLog_GetLastOutCall(); }, ExpectTextUnless);
  FailEach(
      prepare, [] { return CallLog_GetLastNewInCall(); }, ExpectTextUnless);
  FailEach(
      prepare, [] { return Controller().GetImagePathByType(1); }, ExpectTextUnless);
}

TEST_F(AllocationFailureTest, ChangesAreSavedAsFarAsTheyCame) {
  CallLogUpdateData contact;
  contact.number_1 = Long("61");
  contact.display_name = Long("Somebody new");
  SuperSearchItemData entry;
  entry.number = Long("62");
  entry.display_name = Long("Somebody else");
  const std::list<SuperSearchItemData> entries = {entry};
  const std::list<int> rows = {0, 3, 5};
  const std::vector<std::function<int()>> operations = {
      [&] { return CallLog_UpdateLog(contact); },
      [&] { return CallLog_ResetLogContactName(); },
      [&] {
        Controller().UpdateDispName(entries);
        return 1;
      },
      [&] { return Controller().RemoveLog(kAll, 2); },
      [&] { return Controller().RemoveLogList(kAll, rows); },
      [&] { return Controller().RemoveAllLogsByClickAction(kMissedCalls); },
      [&] {
        RemoveMissedDirtyByNumber(contact.number_1.c_str());
        RemoveForwardDirtyByNumber(contact.number_1.c_str());
        return 1;
      },
      [&] {
        Controller().RedialNumberByClickAction(kMissedCalls);
        Controller().EnterTalkUI(contact.number_1);
        ContactGeneralItemData* const nobody = nullptr;
        Controller().GetContactDataByNumber(nobody, contact.number_1);
        Controller().CallOut(contact.number_1, contact.number_1);
        return 1;
      },
  };
  for (const auto& operation : operations) {
    FailEach([this] { Fill(); }, operation,
             [&](int answer, bool failed) {
               if (!failed) {
                 EXPECT_EQ(answer, 1);
               }
               ExpectSavedAsShown();
             });
  }
}

class ServerAllocationFailureTest : public ServerTest {};

TEST_F(ServerAllocationFailureTest, SourcesAreAllThereOrNone) {
  const auto file = root.path() / "config/data/broadsoft_calllog_list.xml";
  const auto names = [] {
    Strings found;
    for (int i = 0; i < Logs().GetTotalConfigurableItemCount(); ++i) {
      found.push_back(Logs().GetConfiguredItemName(i));
    }
    return found;
  };
  const std::string document = "<root_broadsoft_calllog display_name='" + Long("Office") +
                               "'><item name='" + Long("a") + "'/><item name='" + Long("b") +
                               "'/></root_broadsoft_calllog>";
  const auto release = [&] {
    NS_CALLLOG::CBSCallLogController::ReleaseInstance();
    WriteFile(file, document);
  };
  const Strings both = {Long("a"), Long("b")};
  FailEach(
      release, [] { return NS_CALLLOG::CBSCallLogController::GetInstance() != nullptr; },
      [&](bool /*started*/, bool failed) {
        if (!failed || !names().empty()) {
          EXPECT_EQ(names(), both);
        }
      });
  const auto start = [&] {
    release();
    Logs();
  };
  FailEach(
      start, [] { return Logs().ReloadBSCallLogConfig(); },
      [&](bool loaded, bool /*failed*/) { EXPECT_EQ(names(), loaded ? both : Strings()); });
  const BroadSoftConfigItem changed = MakeSource(Long("server"), "1", Long("u"), Long("p"));
  FailEach(
      start,
      [&] {
        Logs().SetConfigDataByIndex(0, changed);
        return CallLog_IsBroadSoftCallLogConfigured() +
               static_cast<int>(CallLog_GetBSCallLogDisplayName().size());
      },
      [&](int /*answer*/, bool /*failed*/) {
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
  EXPECT_LE(stuck, 1);  // when there is no memory even for the list's URL
}

}  // namespace
}  // namespace desk
