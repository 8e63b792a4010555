// One run of a phone, from its start to its end, for faults.py, which makes the system fail under
// it: history_run ROOT [guard] [fill] [add N] [long] [list]
//   guard: under the history guard
//   fill: 400 calls, a hundred of each type
//   add: one missed call from number N, N seconds newer than these; long: with 8 KB of a name
//   list: prints the calls that are there at the end
// What was added is saved by the timer. Prints how many calls were found at the start, what the
// timer's message answered, and what the guard had to tell. ROOT/config/data/ is not created.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CallLog.h"
#include "desktop/platform/Platform.h"
#include "guard/HistoryGuard.h"
#include "guard/RestartHistory.h"

namespace {

using NS_CALLLOG::CCallLogController;

constexpr int kNow = 1791363600;
constexpr int kFullHistory = 400;

void Add(int type, int number, int time, const std::string& name) {
  CallLogAddItemData call;
  call.type = type;
  call.born_tick = time;
  call.duration = type;
  call.local_sip_name = "anna";
  call.local_sip_server = "sip.example.org";
  call.remote_display_name = name;
  call.remote_sip_name = std::to_string(number);
  call.remote_sip_server = "pbx.example.org";
  CallLog_AddLog(call);
}

void Fill() {
  for (int i = 0; i < kFullHistory; ++i) Add(1 + i % 4, 1000 + i, kNow - i, "Caller of some day");
}

std::list<CallLogSimpleData> Calls() {
  CallLogSimpleListData page;
  page.request_count = kFullHistory + 1;
  CCallLogController::GetInstance()->GetLogListByClickAction(&page, "OpenSubPage(call_log_0)");
  return page.items;
}

void PrintCalls() {
  int row = 0;
  for (const CallLogSimpleData& call : Calls()) {
    CallLogDetailData detail;
    CCallLogController::GetInstance()->GetLogDetailByClickAction(&detail, "call_log_0", row++);
    std::printf("%d %s <%s@%s> %s %s\n", call.type, call.display_name.c_str(),
                detail.number.c_str(), detail.server.c_str(), detail.time_text.c_str(),
                detail.duration_text.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const auto word = [&](const char* text) { return std::find(words.begin(), words.end(), text); };
  const auto given = [&](const char* text) { return word(text) != words.end(); };
  if (words.empty() || (given("add") && word("add") + 1 == words.end())) return 2;
  std::filesystem::current_path(words[0]);
  desk::Profile profile;
  profile.config = {{"HistorySavedSwitch", 1}};
  desk::Platform platform(profile, std::make_unique<desk::ManualClock>(kNow));
  NS_GUARD::HistoryGuard guard("./config/data/call_data.xml");

  if (given("guard")) std::printf("%s; ", Describe(guard.Start(NS_GUARD::RestartHistory)));
  std::printf("%zu calls at the start", Calls().size());
  platform.loop.SetObserver([&](const desk::Message&, int result) {
    std::printf("; saved %d", result);
    if (result == 1 && given("guard")) std::printf("; %s", Describe(guard.AfterSave()));
  });
  if (given("fill")) Fill();
  if (given("add")) {
    const int number = std::stoi(*(word("add") + 1));
    Add(2, number, kNow + number, given("long") ? std::string(8192, 'x') : "New");
  }
  platform.Advance(desk::Milliseconds(5000));
  std::printf("\n");
  if (given("list")) PrintCalls();
  CCallLogController::ReleaseInstance();
}
