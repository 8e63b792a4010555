// The history file, which a power cut, an older phone or somebody's editor may have left in any
// state. What a strict parser reads is loaded. Whatever is loaded is within the limits, can be
// looked at, and stays as it is when it is saved and loaded again.
#include <algorithm>
#include <climits>
#include <set>

#include "desktop/platform/TextMatch.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

constexpr char kRoot[] = "root_call_log";

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

class HistoryPhone : public FuzzPhone {
 public:
  void Start() {
    platform->journal.Clear();
    PowerCycle();
    // What makes the history one to be saved: removing the records of a type that no view shows.
    Controller().RemoveAllLogsByClickAction(Action(7777777));
  }

  // The file that is written now.
  std::string Save() {
    EXPECT_EQ(Controller().SaveToFile(), 1);
    return ReadFile(HistoryFile());
  }

  // All that the views show; a name that does not look like a number is found by itself.
  std::string Views() {
    MissedNotifyListData missed;
    EXPECT_EQ(Controller().GetMissedNotifyList(&missed), 1);
    EXPECT_TRUE(missed.items.empty()) << "nothing loaded is new";
    std::string shown;
    for (int type = 0; type <= 4; ++type) {
      const Strings names = Names(type);
      for (std::size_t row = 0; row < names.size(); ++row) {
        const CallLogDetailData detail = Detail(type, static_cast<int>(row));
        EXPECT_EQ(names[row], detail.display_name.empty() ? detail.number : detail.display_name);
        if (type > 0) EXPECT_EQ(detail.type, type);
        if (type == 0 && row < 3) Search(detail.display_name);
        for (const std::string& text : {detail.display_name, detail.number, detail.server,
                                        detail.time_text, detail.duration_text}) {
          shown += text + '\0';
        }
      }
    }
    return shown;
  }

 private:
  static void Search(const std::string& name) {
    const std::string key = FoldText(name);
    CallLogSearchListData page;
    page.request_count = 1;
    EXPECT_EQ(CallLog_Search(&page, name), key.empty() ? 0 : 1);
    const bool isNumber = key.find_first_of("0123456789*#") == 0;
    if (!key.empty() && !isNumber) EXPECT_GT(page.total, 0) << name;
  }
};

// Limits and order of what was written.
void CheckWritten(const Items& items) {
  std::map<std::string, int> perType;
  int before = INT_MAX;
  for (auto item : items) {
    EXPECT_EQ(item.size(), 8u);
    EXPECT_LE(++perType[item["type"]], 100);
    EXPECT_LE(std::stoi(item["born_tick"]), before);
    before = std::stoi(item["born_tick"]);
  }
}

// The texts of all items, but for blanks, which strict parsers change in attributes; sorted.
std::multiset<std::string> TextsOf(const Items& items) {
  std::multiset<std::string> texts;
  for (auto item : items) {
    std::string text;
    for (const char* name : {"local_sip_name", "local_sip_server", "remote_display_name",
                             "remote_sip_name", "remote_sip_server"}) {
      text += item[name] + "|";
    }
    text.erase(std::remove_if(text.begin(), text.end(), IsBlank), text.end());
    texts.insert(text);
  }
  return texts;
}

// Whether a file that a strict parser reads must be read here: nothing is in it that is left out on
// purpose, as namespaces, other encodings, document types, deep nesting, further records and, in a
// tag, the sign for bytes that are no text are.
bool MustLoad(const std::string& input, const Items& items) {
  constexpr std::string_view kHeader = "<?xml version='1.0' encoding='utf-8' ?>";
  const bool ours = input.compare(0, kHeader.size(), kHeader) == 0;
  for (const char* word : {":", "encoding", "<!", "7777777", "\xEF\xBF\xBD"}) {
    if (input.find(word, ours ? kHeader.size() : 0) != std::string::npos) return false;
  }
  return items.size() <= 100 && std::count(input.begin(), input.end(), '<') < 128;
}

}  // namespace

void FuzzOne(const std::string& input) {
  static HistoryPhone phone;
  WriteFile(phone.HistoryFile(), input);
  phone.Start();
  const std::string views = phone.Views();
  const std::string first = phone.Save();
  const auto written = StrictItems(first, kRoot);
  ASSERT_TRUE(written) << first;
  EXPECT_EQ(written->size(), phone.Names(0).size());
  CheckWritten(*written);
  const auto given = StrictItems(input, kRoot);
  if (given && MustLoad(input, *given)) EXPECT_EQ(TextsOf(*written), TextsOf(*given));
  phone.Start();
  EXPECT_EQ(phone.Views(), views);
  EXPECT_EQ(phone.Save(), first);
}

}  // namespace desk
