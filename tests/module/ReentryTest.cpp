// Status, LED and backlight services that enter the module again while it tells them of a change.
// What the module is then asked for must be as if the change had already happened.
#include <functional>
#include <map>
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

TEST_F(ReentryTest, ARemovedCallIsInNoListWhenServicesAreTold) {
  const std::function<void()> removals[] = {
      [] { Controller().RemoveLog(Action(2), 0); },
      [] { Controller().RemoveLogList(Action(2), {0}); },
      [] { Controller().RemoveAllLogsByClickAction(Action(2)); },
  };
  Add(1, "1001", kNow - 1);
  for (const auto& remove : removals) {
    SCOPED_TRACE(&remove - removals);
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

TEST_F(ReentryTest, ACallAddedDuringARemovalIsKept) {
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
  int Below(int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); }
  bool OneIn(int chances) { return Below(chances) == 0; }

  void Begin(unsigned int seed) {
    random.seed(seed);
    for (int i = 0; i < 400; ++i) Add(1 + i % 4, Number(), kNow + Below(50));
    platform->onDisplayChange = [this] {
      if (depth_ == 2 || OneIn(2)) return;
      ++depth_;
      Operate();
      --depth_;
    };
  }

  void Operate() {
    const std::string number = Number();
    const std::string view = Action(Below(5));
    switch (Below(22)) {
      case 0: Controller().RemoveLog(view, Below(100)); break;
      case 1: Controller().RemoveLogList(view, {Below(3), Below(100), Below(100)}); break;
      case 2: OneIn(9) ? Controller().RemoveAllLogsByClickAction(view) : 0; break;
      case 3: RemoveMissedDirtyByNumber(number.c_str()); break;
      case 4: RemoveForwardDirtyByNumber(number.c_str()); break;
      case 5: OneIn(4) ? Names(Below(5)) : Strings(); break;
      case 6: Rename(number); break;
      case 7: OneIn(9) ? CallLog_ResetLogContactName() : 0; break;
      case 8: Controller().SaveToFile(); break;
      case 9: Controller().RedialNumberByClickAction(Action(2)); break;
      case 10: Found(number.substr(0, 1 + static_cast<std::size_t>(Below(3)))); break;
      default: Add(1 + Below(4), number, kNow + Below(50));
    }
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

  // The idle screen counts what the lists of new calls hold, and each call is in one list.
  void CheckAll() {
    MissedNotifyListData missed;
    ForwardedNotifyList forwarded;
    Controller().GetMissedNotifyList(&missed);
    Controller().GetForwardedNotifyList(&forwarded);
    std::map<int, std::string> statuses;
    if (Sum(missed) > 0) statuses[12] = std::to_string(Sum(missed)) + " Missed";
    if (Sum(forwarded) > 0) statuses[15] = std::to_string(Sum(forwarded)) + " Forwarded";
    EXPECT_EQ(platform->display.statuses, statuses);
    const Strings all = Calls(0);
    EXPECT_EQ(Calls(1).size() + Calls(2).size() + Calls(3).size() + Calls(4).size(), all.size());
  }

 private:
  // No more callers than a notification list has room for.
  std::string Number() { return std::to_string(100 + Below(15)); }

  static void Rename(const std::string& number) {
    CallLogUpdateData contact;
    contact.number_1 = number;
    contact.display_name = "name of " + number;
    CallLog_UpdateLog(contact);
  }

  template <class List>
  static int Sum(const List& list) {
    int sum = 0;
    for (const auto& row : list.items) sum += row.count;
    return sum;
  }

  int depth_ = 0;
};

TEST_F(RandomReentryTest, KeepsCountsAndListsConsistent) {
  for (unsigned int seed = 0; seed < 40 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Begin(seed);
    for (int step = 0; step < 400 && !HasFailure(); ++step) {
      Operate();
      if (step % 50 == 0) CheckAll();
    }
    platform->onDisplayChange = nullptr;
    const Strings before = Calls(0);
    Controller().SaveToFile();
    PowerCycle();
    EXPECT_EQ(Calls(0), before);
  }
}

}  // namespace
}  // namespace desk
