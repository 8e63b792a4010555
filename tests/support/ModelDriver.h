// The module and a plain model of it, through random events: calls, new names, removals, searches,
// redials, waiting, saving and power failures. Both must agree in everything that can be seen.
#pragma once

#include <algorithm>
#include <climits>
#include <map>
#include <random>

#include "platform/SettingTime.h"
#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"
#include "tests/support/RowText.h"

namespace desk {

inline const std::map<std::string, std::string> kContacts = {
    {"1001", "Bo"}, {"1002", "Bo"}, {"1003", "Zoë & Co"}};

// Of which names and numbers are made up.
inline const Strings kPieces =
    List("\"", "'", "&", "<", ">", "&lt;", "&#0;", "]]>", "%s%n", "\xC3", "\xE2\x82", "\xF0\x9F",
         "\xF0\x9F\x98", "\xC0\xAF", "\xE0\x9F\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xED\xA0\x80",
         "\xEF\xBB\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80\x80",
         "\xF4\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "é", "😀", "\uFFFD");

class ModelDriver : public virtual PhoneTest {
 protected:
  ModelDriver() {
    platform->accounts =
        Accounts({{1, "anna", "sip.example.org"}, {2, "quiet", "sip.example.org"}});
    platform->accounts.Find("quiet")->keeps_missed = false;
    for (const auto& [number, name] : kContacts)
      platform->contacts.Add({name, {number}, name + ".png"});
  }

  // A phone without a history, and the events of this seed. The power fails every so many events.
  void Begin(unsigned int seed, int stepsBetweenRestarts) {
    std::filesystem::remove(HistoryFile());
    PowerCycle();
    seed_ = seed;
    random_.seed(seed);
    step_ = calls_ = 0;
    stepsBetweenRestarts_ = stepsBetweenRestarts;
    model_ = PlainModel();
    model_.contacts = kContacts;
    model_.withoutMissed = {"quiet@sip.example.org"};
    model_.Wait(platform->clock().Monotonic());
    platform->config["HistorySavedSwitch"] = 1;
  }

  // One event, after which the module and the model are compared: every so often, and after each
  // save and restart, in all they hold.
  void Step() {
    constexpr int kStepsBetweenFullChecks = 200;
    const bool waiting = model_.SaveAt().has_value();
    restarted_ = false;
    const std::string event = Event();
    CheckCheapThings();
    const bool saved = waiting && !model_.SaveAt();
    if (saved || restarted_ || step_ % kStepsBetweenFullChecks == 0) CheckEverything();
    if (HasFailure()) ADD_FAILURE() << "seed " << seed_ << ", step " << step_ << ": " << event;
    ++step_;
  }

  virtual void Restart() {
    PowerCycle();
    model_.PowerCycle();
    restarted_ = true;
  }

  int calls() const { return calls_; }  // that have ended, refused ones among them

  // A random number from 0 to `end` - 1, the same on every machine.
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned int>(end)); }
  bool OneIn(int chances) { return Below(chances) == 0; }
  template <class List>
  const std::string& Pick(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
  }

  void ReadNotifyLists() {
    MissedNotifyListData missed;
    ExpectCallers(2, Controller().GetMissedNotifyList(&missed), missed);
    ForwardedNotifyList forwarded;
    ExpectCallers(4, Controller().GetForwardedNotifyList(&forwarded), forwarded);
  }

  void CheckDetails(int view, int first, int end) {
    const auto calls = model_.View(view);
    for (int row = first; row < end; ++row) {
      CallLogDetailData detail;
      const bool exists = row >= 0 && row < static_cast<int>(calls.size());
      ASSERT_EQ(Controller().GetLogDetailByClickAction(&detail, Action(view), row), exists ? 1 : 0);
      if (exists) ExpectDetail(*calls[static_cast<std::size_t>(row)], detail);
    }
  }

  void CheckCheapThings() {
    Display shown = model_.Shown();
    shown.menuTitles = platform->display.menuTitles;  // no call changes them
    EXPECT_TRUE(platform->display == shown);
    EXPECT_EQ(platform->timers.NextDue(), model_.SaveAt());
    EXPECT_EQ(CallLog_GetLastOutCall(), model_.LastNumber(true));
    EXPECT_EQ(CallLog_GetLastNewInCall(), model_.LastNumber(false));
    const int view = Below(6);
    const int row = RandomRow(view);
    CheckDetails(view, row, row + 2);
  }

  void CheckEverything() {
    for (int view = 0; view <= 4; ++view) {
      CheckDetails(view, -1, static_cast<int>(model_.View(view).size()) + 1);
    }
    ReadNotifyLists();
    EXPECT_TRUE(ReadFile(HistoryFile()) == model_.File());
  }

  PlainModel model_;

 private:
  std::string RandomBytes() {
    std::string bytes;
    for (int i = Below(9); i > 0; --i) {
      if (OneIn(2)) {
        bytes += Pick(kPieces);
      } else {  // one that forms no letter with those before it
        bytes += static_cast<char>(OneIn(8) ? 0xF8 + Below(8) : 1 + Below(0x7F));
      }
    }
    return bytes;
  }

  std::string RandomNumber() {
    if (OneIn(40)) return RandomBytes();
    return OneIn(40) ? "" : std::to_string(1000 + Below(40));
  }

  // Where calls are forwarded to: mostly to somebody who never calls.
  std::string RandomTarget() { return OneIn(4) ? RandomNumber() : std::to_string(2000 + Below(5)); }

  std::string RandomName() {
    static const std::string kNames[] = {
        "", "", "", "Bo", "Anna", "1004", std::string("Z\0e", 3), "Łukasz", "*1Bé"};
    return OneIn(8) ? RandomBytes() : Pick(kNames);
  }

  CallLogAddItemData RandomCall() {
    auto call = MakeCall(OneIn(40) ? 5 * Below(2) : 1 + Below(4), RandomNumber());
    call.born_tick = kNow + step_ / 8 - Below(OneIn(5) ? 500 : 5);
    if (OneIn(5000)) call.born_tick = OneIn(2) ? INT_MIN : INT_MAX;
    call.duration = OneIn(10) ? -Below(3) : Below(400000);
    if (OneIn(10)) call.local_sip_name = OneIn(2) ? "quiet" : RandomBytes();
    if (OneIn(20)) call.local_sip_server = RandomBytes();
    if (OneIn(20)) call.remote_sip_server = RandomBytes();
    call.remote_display_name = RandomName();
    if (call.type == 4 || OneIn(20)) {
      call.forward_sip_name = RandomTarget();
      call.forward_display_name = RandomName();
    }
    return call;
  }

  // Mostly one that exists.
  int RandomRow(int view) { return Below(static_cast<int>(model_.View(view).size()) + 3) - 1; }

  int RandomCount() { return OneIn(20) ? INT_MAX : Below(9); }

  void Update() {
    CallLogUpdateData contact;
    contact.number_1 = OneIn(2) ? RandomNumber() : "";
    contact.number_2 = OneIn(2) ? RandomNumber() : "";
    contact.number_3 = OneIn(2) ? RandomTarget() : "";
    contact.display_name = RandomName();
    EXPECT_EQ(CallLog_UpdateLog(contact), 1);
    model_.Update(contact);
  }

  void UpdateNames() {
    std::list<SuperSearchItemData> names(static_cast<std::size_t>(Below(4)));
    for (SuperSearchItemData& entry : names) {
      entry.number = OneIn(3) ? RandomTarget() : RandomNumber();
      entry.display_name = RandomName();
    }
    Controller().UpdateDispName(names);
    model_.UpdateNames(names);
  }

  void RemoveSeveral() {
    const int view = Below(6);
    std::list<int> rows;
    for (int i = Below(5); i > 0; --i) rows.push_back(RandomRow(view));
    EXPECT_EQ(Controller().RemoveLogList(Action(view), rows), 1);
    model_.Remove(view, {rows.begin(), rows.end()});
  }

  static void ExpectDetail(const PlainCall& call, const CallLogDetailData& detail) {
    EXPECT_EQ(detail.display_name, call.remote_display_name);
    EXPECT_EQ(detail.number, call.remote_sip_name);
    EXPECT_EQ(detail.server, call.remote_sip_server);
    EXPECT_EQ(detail.time_text, Setting_Time2String(call.born_tick, " "));
    EXPECT_EQ(detail.duration_text, DurationText(call.duration));
    const auto contact = kContacts.find(call.remote_sip_name);
    EXPECT_EQ(detail.image_path, contact != kContacts.end() ? contact->second + ".png" : "");
    EXPECT_EQ(detail.type, call.type);
  }

  template <class List>
  void ExpectCallers(int type, int result, const List& list) {
    EXPECT_EQ(result, 1);
    std::vector<std::pair<std::string, int>> rows;
    for (const auto& row : list.items) rows.emplace_back(TextOf(row), row.count);
    EXPECT_EQ(rows, model_.NewCallers(type));
  }

  // A page that holds a row already, which stays; refused, all of it stays.
  template <class Page>
  static Page MakePage(int first, int count) {
    Page page;
    page.items.resize(1);
    page.total = -1;
    page.request_index = first;
    page.request_count = count;
    return page;
  }

  template <class Page>
  void ExpectPage(int result, const Page& page, const std::optional<PlainPage>& expected) {
    ASSERT_EQ(result, expected ? 1 : 0);
    Strings rows;
    for (const auto& row : page.items) rows.push_back(TextOf(row));
    EXPECT_EQ(rows.front(), TextOf(typename decltype(page.items)::value_type()));
    rows.erase(rows.begin());
    EXPECT_TRUE(PlainPage(rows, page.total) == expected.value_or(PlainPage({}, -1)));
  }

  // What a user may be after: a name that is there or not, its key-pad form, a number.
  std::string RandomTyped() {
    const auto calls = model_.View(0);
    const std::size_t row = static_cast<std::size_t>(Below(1 + static_cast<int>(calls.size())));
    const std::string name = row < calls.size() ? calls[row]->Name() : RandomName();
    if (OneIn(3)) return KeysOf(name);
    if (OneIn(3)) return Folded(name);
    return OneIn(2) ? RandomNumber() : name;
  }

  // Some keys, mostly each longer than the one before, on pages that are mostly there.
  void TypeKeys() {
    for (int keys = Below(8); keys > 0; --keys) {
      if (OneIn(5)) typed_ = Letters(RandomTyped()), typedCount_ = 0;
      if (!OneIn(4) && typedCount_ < typed_.size()) ++typedCount_;
      if (OneIn(9) && typedCount_ > 0) --typedCount_;
      if (OneIn(9)) CallLog_Search(nullptr, RandomTyped() + "1");  // finds and changes nothing
      if (OneIn(9)) Save();
      std::string key;
      for (std::size_t i = 0; i < typedCount_; ++i) key += typed_[i].first;
      auto page = MakePage<CallLogSearchListData>(OneIn(3) ? Below(9) - 1 : 0, RandomCount());
      const int result = CallLog_Search(&page, key);
      ExpectPage(result, page, model_.Search(key, page.request_index, page.request_count));
    }
  }

  void ReadMostDialled() {
    const int first = Below(14) - 1;
    const int count = RandomCount();
    auto all = MakePage<CallLogSearchListData>(first, count);
    auto ten = MakePage<SuperSearchListData>(first, count);
    const int result = CallLog_SearchRecentOutCall(&all);
    ExpectPage(result, all, model_.MostDialled(false, first, count));
    const int resultOfTen = CallLog_SuperSearchRecentOutCall(&ten);
    ExpectPage(resultOfTen, ten, model_.MostDialled(true, first, count));
  }

  void SwitchAccounts() {
    model_.usable.clear();
    for (const char* name : {"anna", "quiet"}) {
      Account* const account = platform->accounts.Find(name);
      account->usable = OneIn(2);
      if (account->usable) model_.usable[name] = account->id;
    }
  }

  void Redial() {
    SwitchAccounts();
    platform->talk = Talk();
    Controller().RedialNumberByClickAction(Action(2));
    const std::string number = model_.LastNumber(true);
    ASSERT_EQ(platform->talk.call.has_value(), !number.empty());
    if (number.empty()) return;
    const auto contact = kContacts.find(number);
    EXPECT_EQ(platform->talk.call->number, number);
    EXPECT_EQ(platform->talk.call->name, contact != kContacts.end() ? contact->second : number);
    EXPECT_EQ(platform->talk.call->accountId, model_.RedialAccount());
  }

  void OpenList() {
    // At times nobody looks at the phone, so that many callers gather.
    const bool attended = step_ / 500 % 2 == 0;
    const int any = Below(6);
    const int view = attended || any % 2 == 1 ? any : 3;
    auto page = MakePage<CallLogSimpleListData>(RandomRow(view), RandomCount());
    Strings rows;
    for (const PlainCall* call : model_.View(view)) rows.push_back(RowOf(*call));
    auto expected = PageOf(rows, page.request_index, page.request_count);
    if (view > 4) expected.reset();
    const int result = Controller().GetLogListByClickAction(&page, Action(view));
    ExpectPage(result, page, expected);
    if (expected) model_.See(view);
  }

  void EndCall() {
    const CallLogAddItemData call = RandomCall();
    ++calls_;
    EXPECT_EQ(CallLog_AddLog(call), model_.Add(call));
  }

  void Remove() {
    const int view = Below(6);
    const int row = RandomRow(view);
    EXPECT_EQ(Controller().RemoveLog(Action(view), row), model_.Remove(view, {row}));
  }

  void RemoveAll() {
    const int view = Below(6);
    EXPECT_EQ(Controller().RemoveAllLogsByClickAction(Action(view)), 1);
    model_.RemoveAll(view);
  }

  void DealWithNumber() {
    const std::string number = RandomNumber();
    const bool missed = OneIn(2);
    (missed ? RemoveMissedDirtyByNumber : RemoveForwardDirtyByNumber)(number.c_str());
    model_.See(missed ? 2 : 4, number);
  }

  void Wait() {
    const Milliseconds span(Below(OneIn(25) ? 7000 : 90));
    platform->Advance(span);
    model_.Wait(span);
  }

  void Save() { EXPECT_EQ(Controller().SaveToFile(), model_.Save()); }

  void ForgetNames() {
    EXPECT_EQ(CallLog_ResetLogContactName(), 1);
    model_.ForgetNames();
  }

  void Switch() {
    model_.saving = !OneIn(8);
    platform->config["HistorySavedSwitch"] = model_.saving ? 1 : Below(2) * 2;
  }

  struct Happening {
    int chances;
    const char* what;
    void (ModelDriver::*happens)();
  };
  static constexpr Happening kEvents[] = {{640, "call", &ModelDriver::EndCall},
                                          {80, "update", &ModelDriver::Update},
                                          {70, "remove", &ModelDriver::Remove},
                                          {30, "remove several", &ModelDriver::RemoveSeveral},
                                          {2, "remove all", &ModelDriver::RemoveAll},
                                          {40, "deal with a number", &ModelDriver::DealWithNumber},
                                          {10, "read notify lists", &ModelDriver::ReadNotifyLists},
                                          {48, "open a list", &ModelDriver::OpenList},
                                          {65, "wait", &ModelDriver::Wait},
                                          {5, "save", &ModelDriver::Save},
                                          {25, "search", &ModelDriver::TypeKeys},
                                          {15, "most dialled", &ModelDriver::ReadMostDialled},
                                          {10, "redial", &ModelDriver::Redial},
                                          {9, "refresh names", &ModelDriver::UpdateNames},
                                          {1, "forget names", &ModelDriver::ForgetNames},
                                          {10, "switch", &ModelDriver::Switch}};

  // One random event; what it was.
  std::string Event() {
    if (OneIn(stepsBetweenRestarts_)) return Restart(), "power cycle";
    int chance = Below(1060);
    for (const Happening& event : kEvents) {
      chance -= event.chances;
      if (chance < 0) return (this->*event.happens)(), event.what;
    }
    return "";
  }

  std::mt19937 random_;
  unsigned int seed_ = 0;
  int step_ = 0;
  int calls_ = 0;
  int stepsBetweenRestarts_ = 1;
  bool restarted_ = false;     // by the event of this step
  std::vector<Letter> typed_;  // a text of which some letters are typed
  std::size_t typedCount_ = 0;
};

}  // namespace desk
