// Status, LED and backlight services that enter the module again while it tells them of a change.
// What the module is then asked for must be as if the change had already happened.
#include <functional>
#include <map>
#include <numeric>
#include <random>
#include <utility>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

class ReentryTest : public PhoneTest {
 protected:
  ~ReentryTest() override { platform->onDisplayChange = nullptr; }

  // Runs `service` inside the first event of what follows.
  void Once(std::function<void()> service) {
    platform->onDisplayChange = [this, service = std::move(service)] {
      const auto inside = std::exchange(platform->onDisplayChange, nullptr);
      service();
    };
  }

  static Strings Found(const std::string& key) {
    CallLogSearchListData page;
    page.request_count = 1000;
    CallLog_Search(&page, key);
    Strings numbers;
    for (const auto& row : page.items) numbers.push_back(row.number);
    return numbers;
  }

  std::mt19937 random;
};

TEST_F(ReentryTest, WhatIsRemovedIsGoneForWhoeverIsTold) {
  const std::map<std::string, std::function<void()>> removals = {
      {"one", [] { Controller().RemoveLog(Action(2), 0); }},
      {"several", [] { Controller().RemoveLogList(Action(2), {0}); }},
      {"all", [] { Controller().RemoveAllLogsByClickAction(Action(2)); }},
  };
  for (const auto& [which, remove] : removals) {
    SCOPED_TRACE(which);
    Controller().RemoveAllLogsByClickAction(Action(0));
    Add(1, "1001", kNow - 1);
    Add(2, "1002");
    ASSERT_EQ(Found("10"), Strings({"1001", "1002"}));
    Once([] {
      EXPECT_EQ(Names(2).size(), 0u);
      EXPECT_EQ(Found("10"), Strings({"1001"}));
    });
    remove();
    EXPECT_FALSE(platform->onDisplayChange);
    EXPECT_EQ(Found("10"), Strings({"1001"}));
  }
}

TEST_F(ReentryTest, ACallThatComesWhileAFullListLosesOneIsKept) {
  for (int i = 0; i < 100; ++i) Add(2, std::to_string(1000 + i), kNow - i);
  Once([] { EXPECT_EQ(Add(2, "1999"), 0); });
  EXPECT_EQ(Controller().RemoveLog(Action(2), 99), 1);
  const Strings names = Names(2);
  EXPECT_EQ(names.size(), 100u);
  EXPECT_EQ(names[1], "1999");
  EXPECT_EQ(names.back(), "1098");
}

// Every operation inside every other, two deep.
class RandomReentryTest : public ReentryTest {
 protected:
  static constexpr int kCallers = 15;  // no more than a notification list has room for

  int Below(int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); }
  std::string Number() { return std::to_string(100 + Below(kCallers)); }
  std::string View() { return Action(Below(5)); }

  void Begin(unsigned int seed) {
    random.seed(seed);
    for (int i = 0; i < 400; ++i) Add(1 + i % 4, Number(), kNow + Below(50));
    platform->onDisplayChange = [this] {
      if (depth_ == 2 || Below(2) != 0) return;
      ++depth_;
      Operate();
      --depth_;
    };
  }

  void Operate() {
    if (Below(2) == 0) {
      Add(1 + Below(4), Number(), kNow + Below(50));
      return;
    }
    if (Below(4) == 0) {
      Found(Number().substr(0, static_cast<std::size_t>(1 + Below(3))));
      return;
    }
    const std::function<void()> operations[] = {
        [&] { Controller().RemoveLog(View(), Below(100)); },
        [&] {
          Controller().RemoveLogList(View(), {Below(3), Below(100), Below(100)});
        },
        [&] {
          if (Below(9) == 0) Controller().RemoveAllLogsByClickAction(View());
        },
        [&] { RemoveMissedDirtyByNumber(Number().c_str()); },
        [&] { RemoveForwardDirtyByNumber(Number().c_str()); },
        [&] {
          if (Below(4) == 0) Names(Below(5));
        },
        [&] { Rename(Number()); },
        [&] {
          if (Below(9) == 0) CallLog_ResetLogContactName();
        },
        [&] { Controller().UpdateDispName({Entry(Number())}); },
        [&] { Controller().SaveToFile(); },
        [&] { Dialled(); },
        [&] { Controller().RedialNumberByClickAction(Action(2)); },
        [&] { CallLog_GetLastNewInCall() += CallLog_GetLastOutCall(); },
        [&] { CheckCounters(); },
    };
    operations[Below(static_cast<int>(std::size(operations)))]();
  }

  void Rename(const std::string& number) {
    CallLogUpdateData contact;
    contact.number_1 = number;
    contact.display_name = "name of " + number;
    CallLog_UpdateLog(contact);
  }
  static SuperSearchItemData Entry(const std::string& number) {
    SuperSearchItemData entry;
    entry.number = entry.display_name = number;
    return entry;
  }
  static void Dialled() {
    CallLogSearchListData page;
    page.request_count = 10;
    EXPECT_EQ(CallLog_SearchRecentOutCall(&page), 1);
    SuperSearchListData ten;
    ten.request_count = 10;
    EXPECT_EQ(CallLog_SuperSearchRecentOutCall(&ten), 1);
  }

  template <class List>
  static int Sum(const List& list) {
    return std::accumulate(list.items.begin(), list.items.end(), 0,
                           [](int sum, const auto& row) { return sum + row.count; });
  }
  // What the idle screen counts is what the lists of new calls hold.
  void CheckCounters() {
    if (depth_ > 0) return;  // the screen is being told
    MissedNotifyListData missed;
    Controller().GetMissedNotifyList(&missed);
    ForwardedNotifyList forwarded;
    Controller().GetForwardedNotifyList(&forwarded);
    std::map<int, std::string> statuses;
    if (Sum(missed) > 0) statuses[12] = std::to_string(Sum(missed)) + " Missed";
    if (Sum(forwarded) > 0) statuses[15] = std::to_string(Sum(forwarded)) + " Forwarded";
    EXPECT_EQ(platform->display.statuses, statuses);
  }
  // The lists without being told of as seen: the details in order.
  static Strings Calls(int type) {
    Strings calls;
    CallLogDetailData detail;
    while (Controller().GetLogDetailByClickAction(&detail, Action(type),
                                                  static_cast<int>(calls.size())) == 1) {
      calls.push_back(detail.time_text + " " + detail.number + " " + detail.display_name);
    }
    return calls;
  }
  void CheckAll() {
    CheckCounters();
    const Strings all = Calls(0);
    std::size_t sum = 0;
    for (int type = 1; type <= 4; ++type) sum += Calls(type).size();
    EXPECT_EQ(sum, all.size());
    EXPECT_TRUE(std::is_sorted(all.rbegin(), all.rend(), [](const auto& a, const auto& b) {
      return a.substr(0, 19) < b.substr(0, 19);
    }));
    for (const std::string& number : Found("1")) {
      EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const std::string& call) {
        return call.find(" " + number + " ") != call.npos;
      })) << number;
    }
  }

 private:
  int depth_ = 0;
};

TEST_F(RandomReentryTest, LeavesNothingBroken) {
  for (unsigned int seed = 0; seed < 40 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Begin(seed);
    for (int step = 0; step < 400 && !HasFailure(); ++step) {
      Operate();
      if (step % 50 == 0) CheckAll();
    }
    CheckAll();
    platform->onDisplayChange = nullptr;
    const Strings before = Calls(0);
    Controller().SaveToFile();
    PowerCycle();
    EXPECT_EQ(Calls(0), before);
  }
}

}  // namespace
}  // namespace desk
