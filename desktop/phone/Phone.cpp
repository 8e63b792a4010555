// Switching the phone on and off, letting time pass, and keeping what there is to tell.
#include "desktop/phone/Phone.h"

#include <algorithm>
#include <utility>

#include "CallLog.h"
#include "CallTypes.h"
#include "desktop/platform/Text.h"
#include "guard/RestartHistory.h"
#include "platform/ConfigParser.h"

namespace desk {

using NS_CALLLOG::CBSCallLogController;
using NS_CALLLOG::CCallLogController;
using NS_GUARD::HistoryGuard;

Phone::Phone(const std::filesystem::path& root, const Profile& profile,
             std::unique_ptr<Clock> clock)
    : root_(root),
      platform_(profile, std::move(clock)),
      guard_(HistoryFile()),
      wasOpen_(root_.wasOpen()) {
  platform_.loop.SetObserver(
      [this](const Message& message, int result) { OnHandled(message, result); });
  if (platform_.manualClock() != nullptr) platform_.transfers.Hold();
  PowerOn();
}

Phone::~Phone() {
  Save();
  CBSCallLogController::ReleaseInstance();
  CCallLogController::ReleaseInstance();
}

// As a UI process starts: the handler first, then the history.
void Phone::PowerOn() {
  CallLog_RegisterMessage();
  NoteGuard(guard_.Start(NS_GUARD::RestartHistory));
}

void Phone::PowerCycle() {
  CBSCallLogController::ReleaseInstance();
  CCallLogController::ReleaseInstance();
  platform_.PowerCycle();
  shown_ = Display();
  PowerOn();
}

void Phone::OnHandled(const Message& message, int result) {
  if (message.message != ThreadTimers::kTimerMessage || result != 1) return;
  saved_ = NoteGuard(guard_.AfterSave()) != HistoryGuard::Outcome::kIncomplete;
}

std::optional<HistoryGuard::Outcome> Phone::Save() {
  auto* const controller = CCallLogController::GetInstance();
  if (controller == nullptr || controller->SaveToFile() != 1) return std::nullopt;
  return NoteGuard(guard_.AfterSave());
}

HistoryGuard::Outcome Phone::NoteGuard(HistoryGuard::Outcome outcome) {
  if (outcome != HistoryGuard::Outcome::kGood) guardNotes_.push_back(outcome);
  return outcome;
}

// The module only says that it refused a call; the reasons are in what it asked the phone.
std::string Phone::AddCall(const CallLogAddItemData& call) {
  if (CallLog_AddLog(call) == 0) return {};
  if (configParser_GetConfigInt("HistorySavedSwitch") != 1) {
    return "the history is switched off (HistorySavedSwitch is not 1)";
  }
  const std::string name = call.local_sip_name + "@" + call.local_sip_server;
  const Account* const account = platform_.accounts.FindByFullName(name);
  if (call.type == NS_CALLLOG::kMissed && account != nullptr && !account->keeps_missed) {
    return "the account " + Printable(name) + " keeps no missed calls";
  }
  if (call.type < NS_CALLLOG::kOutgoing || call.type > NS_CALLLOG::kForwarded) {
    return "a call is outgoing, missed, received or forwarded";
  }
  return "out of memory";
}

bool Phone::Wait(Milliseconds span, const std::function<void()>& eachTime) {
  if (platform_.manualClock() != nullptr) {
    platform_.Advance(span);
    return true;
  }
  const Milliseconds end = platform_.clock().Monotonic() + span;
  for (;;) {
    platform_.RunDue();
    eachTime();
    if (interrupted()) return false;
    const Milliseconds now = platform_.clock().Monotonic();
    if (now >= end) return true;
    platform_.loop.WaitForPost(std::min(end, platform_.timers.NextDue().value_or(end)) - now);
  }
}

bool Phone::AwaitTransfers() {
  constexpr Milliseconds kLook(1000);
  for (;;) {
    platform_.RunDue();
    platform_.transfers.LetThrough();
    if (platform_.transfers.Running() == 0) return true;
    if (interrupted()) return false;
    platform_.loop.WaitForPost(kLook);
  }
}

News Phone::NewsOf(Message message) {
  if (message.message != MSG_BS_CALLLOG_DOWNLOADED) return message;
  ListFetched list{CString(message.extra), {}};
  const std::string failure = platform_.transfers.TakeFailure(list.url);
  if (message.lParam != 0) list.error = failure.empty() ? "it is no call log" : failure;
  return list;
}

std::vector<News> Phone::TakeNews() {
  std::vector<News> news;
  if (std::exchange(wasOpen_, false)) news.emplace_back(RootWasOpen());
  if (!(platform_.display == shown_)) news.emplace_back(shown_ = platform_.display);
  if (std::exchange(saved_, false)) {
    HistorySaved saved;
    saved.bytes = std::filesystem::file_size(HistoryFile(), saved.error);
    news.emplace_back(saved);
  }
  for (const auto outcome : std::exchange(guardNotes_, {})) news.emplace_back(outcome);
  for (Message& message : platform_.loop.TakeAppMessages()) {
    news.push_back(NewsOf(std::move(message)));
  }
  return news;
}

std::filesystem::path Phone::HistoryFile() const {
  return root_.path() / "config/data/call_data.xml";
}

std::filesystem::path Phone::SourcesFile() const {
  return root_.path() / "config/data/broadsoft_calllog_list.xml";
}

}  // namespace desk
