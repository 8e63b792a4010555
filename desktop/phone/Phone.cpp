// Switching the phone on and off, letting time pass, and keeping what there is to tell.
#include "desktop/phone/Phone.h"

#include <algorithm>
#include <utility>

#include "CallLog.h"
#include "guard/RestartHistory.h"

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
  CBSCallLogController::ReleaseInstance();
  CCallLogController::ReleaseInstance();
  platform_.PowerCycle();
  shown_ = Display();
  PowerOn();
}

void Phone::OnHandled(const Message& message, int result) {
  if (message.message != ThreadTimers::kTimerMessage || result != 1) return;
  saved_ = true;
  NoteGuard(guard_.AfterSave());
}

bool Phone::Save() {
  auto* const controller = CCallLogController::GetInstance();
  if (controller == nullptr || controller->SaveToFile() != 1) return false;
  NoteGuard(guard_.AfterSave());
  return true;
}

void Phone::NoteGuard(HistoryGuard::Outcome outcome) {
  if (outcome != HistoryGuard::Outcome::kGood) guardNotes_.push_back(outcome);
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
    const Milliseconds left = end - platform_.clock().Monotonic();
    if (left.count() <= 0) return true;
    const Milliseconds due = platform_.timers.NextDue().value_or(end);
    platform_.loop.WaitForPost(std::min(left, due - platform_.clock().Monotonic()));
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
  for (Message& message : platform_.loop.TakeAppMessages()) news.emplace_back(std::move(message));
  return news;
}

std::filesystem::path Phone::HistoryFile() const {
  return root_.path() / "config/data/call_data.xml";
}

std::filesystem::path Phone::SourcesFile() const {
  return root_.path() / "config/data/broadsoft_calllog_list.xml";
}

}  // namespace desk
