// One hostile call after the other: any byte and any length in each field, then as search key, as
// new name and as the number dealt with. A plain model says what must be left each time; ordinary
// calls are found throughout.
#include <algorithm>

#include "tests/support/HeapInUse.h"
#include "tests/support/ModelDriver.h"

namespace desk {
namespace {

using Field = std::string CallLogAddItemData::*;

constexpr Field kFields[] = {
    &CallLogAddItemData::local_sip_name,      &CallLogAddItemData::local_sip_server,
    &CallLogAddItemData::remote_sip_name,     &CallLogAddItemData::remote_sip_server,
    &CallLogAddItemData::remote_display_name, &CallLogAddItemData::forward_sip_name,
    &CallLogAddItemData::forward_sip_server,  &CallLogAddItemData::forward_display_name};

constexpr std::size_t kForwardFields = 5;  // those from there on

constexpr std::size_t kLengths[] = {0, 1, 260, 261, 65536, 1 << 20};

class HostileCallsTest : public ModelDriver {
 protected:
  // An ordinary call of each type, newer than all that follow.
  HostileCallsTest() {
    Begin(1, INT_MAX);
    for (int type = 1; type <= 4; ++type) {
      CallLogAddItemData call = MakeCall(type, "900" + std::to_string(type), kNow + type);
      call.remote_display_name = "Bo " + std::to_string(type);
      Add(call);
    }
  }

  void Add(const CallLogAddItemData& call) {
    ASSERT_EQ(CallLog_AddLog(call), model_.Add(call)) << "call " << sent_;
    ++sent_;
  }

  // For each field a call that is ordinary but for it; each older than those before.
  void AddWith(const std::string& text) {
    for (std::size_t i = 0; i < std::size(kFields); ++i) {
      const auto turn = static_cast<std::size_t>(sent_) / std::size(kFields);
      const int type = i < kForwardFields ? 1 + static_cast<int>((turn + i) % 4) : 4;
      CallLogAddItemData call = MakeCall(type, "5" + std::to_string(sent_), kNow - sent_);
      call.*kFields[i] = text;
      Add(call);
    }
  }

  static bool Finds(const std::string& key, const std::string& name, const std::string& number) {
    CallLogSearchListData page;
    page.request_count = 1000;
    EXPECT_EQ(CallLog_Search(&page, key), key.empty() ? 0 : 1);
    return std::any_of(page.items.begin(), page.items.end(), [&](const auto& hit) {
      return hit.display_name == name && hit.number == number;
    });
  }

  static void ExpectOrdinaryFound() {
    for (const char* key : {"bo 1", "9001", "261"}) EXPECT_TRUE(Finds(key, "Bo 1", "9001")) << key;
  }

  void SaveAndRestart() {
    ASSERT_EQ(Controller().SaveToFile(), model_.Save());
    Restart();
    CheckEverything();
    ExpectOrdinaryFound();
  }

  int sent_ = 0;
};

TEST_F(HostileCallsTest, AnyByteInAnyField) {
  for (int byte = 0; byte < 256 && !HasFailure(); ++byte) {
    AddWith({static_cast<char>(byte), 'x', static_cast<char>(byte)});
    ReadNotifyLists();
    CheckCheapThings();
    if (byte % 4 == 3) {  // before there are more than one request of callers shows
      Names(0);
      model_.See(0);
    }
    if (byte % 16 == 15) SaveAndRestart();
  }
  for (int type = 1; type <= 4; ++type) EXPECT_EQ(model_.View(type).size(), 100u);
}

TEST_F(HostileCallsTest, AnyLengthInAnyField) {
  for (const std::size_t length : kLengths) {
    AddWith(std::string(length, '~'));
    ReadNotifyLists();
    CheckCheapThings();
  }
  SaveAndRestart();
}

TEST_F(HostileCallsTest, AnyTextAsKeyNameAndNumber) {
  std::vector<std::string> texts;
  for (int byte = 0; byte < 256; ++byte) texts.emplace_back(2, static_cast<char>(byte));
  for (const char* piece : {"~", "1", "\u00E9", "\xC3"}) {
    for (const std::size_t length : {260u, 261u, 65536u}) {
      std::string text;
      while (text.size() < length) text += piece;
      texts.push_back(text);
    }
  }
  texts.push_back(std::string(1 << 20, '~'));
  CallLogAddItemData call = MakeCall(2, "", kNow - 1);
  for (const std::string& text : texts) {
    call.remote_sip_name = text;
    Add(call);
    EXPECT_NE(Finds(text, text, text), text.empty());
    CallLogUpdateData contact;
    contact.number_2 = contact.display_name = text;
    EXPECT_EQ(CallLog_UpdateLog(contact), 1);
    model_.Update(contact);
    SuperSearchItemData name;
    name.display_name = name.number = text;
    Controller().UpdateDispName({name});
    model_.UpdateNames({name});
    ReadNotifyLists();
    RemoveMissedDirtyByNumber(text.c_str());
    RemoveForwardDirtyByNumber(text.c_str());
    model_.See(2, text.c_str());
    ReadNotifyLists();
    CheckCheapThings();
    ExpectOrdinaryFound();
    if (HasFailure()) FAIL() << "text " << &text - texts.data();
  }
  SaveAndRestart();
}

TEST_F(HostileCallsTest, NothingGrowsButTheHistory) {
  constexpr int kName = 16384;
  const auto addMany = [] {
    for (int i = 0; i < 400; ++i) {
      CallLogAddItemData call = MakeCall(1 + i % 4, "555");
      call.remote_display_name = std::string(kName, '~');
      EXPECT_EQ(CallLog_AddLog(call), 0);
    }
    return HeapInUse();
  };
  const std::size_t full = addMany();
  EXPECT_LT(addMany(), full + 200 * kName);
}

}  // namespace
}  // namespace desk
