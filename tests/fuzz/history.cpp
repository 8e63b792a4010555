// The history file, which a power cut, an older phone or somebody's editor may have left in any
// state. Each call that a strict parser finds is loaded. Whatever is loaded can be looked at, and
// stays as it is when it is saved and loaded again.
#include <algorithm>

#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

constexpr char kRoot[] = "root_call_log";

class HistoryPhone : public FuzzPhone {
 public:
  // Starts with the file that is there, and saves it: all that is shown, and last the file.
  Strings Restart() {
    platform->journal.Clear();
    PowerCycle();
    // What makes the history one to be saved: removing the records of a type that no view shows.
    Controller().RemoveAllLogsByClickAction(Action(7777777));
    EXPECT_EQ(Controller().SaveToFile(), 1);
    Strings shown;
    for (int type = 0; type <= 4; ++type) shown = shown + Names(type);
    for (int row = Size() - 1; row >= 0; --row) {
      const CallLogDetailData call = Detail(0, row);
      shown = shown + Strings{call.display_name, call.number, call.server, call.time_text,
                              call.duration_text};
    }
    return shown + Strings{ReadFile(HistoryFile())};
  }
};

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
  const Strings shown = phone.Restart();
  const auto written = StrictItems(shown.back(), kRoot);
  ASSERT_TRUE(written) << shown.back();
  const auto given = StrictItems(input, kRoot);
  if (given && MustLoad(input, *given)) EXPECT_EQ(written->size(), given->size());
  EXPECT_EQ(phone.Restart(), shown);
}

}  // namespace desk
