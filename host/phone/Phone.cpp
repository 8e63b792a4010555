#include "Phone.h"

#include <algorithm>
#include <thread>

#include "CallLog.h"
#include "Screen.h"
#include "Text.h"

namespace desk {

using NS_CALLLOG::CCallLogController;

Phone::Phone(const std::filesystem::path& root, const Profile& profile,
             std::unique_ptr<Clock> clock, std::ostream& out)
    : root_(root), out_(out), platform_(profile, std::move(clock)) {
  platform_.loop.SetObserver(
      [this](const Message& message, int result) { OnHandled(message, result); });
  PowerOn();
}

Phone::~Phone() {
  CCallLogController::GetInstance()->SaveToFile();
  CCallLogController::ReleaseInstance();
}

void Phone::PowerOn() { CCallLogController::GetInstance(); }

void Phone::PowerCycle() {
  CCallLogController::ReleaseInstance();
  platform_.PowerCycle();
  shown_ = Display();
  PowerOn();
}

void Phone::OnHandled(const Message& message, int result) {
  if (message.message == ThreadTimers::kTimerMessage && result == 1) saved_ = true;
}

void Phone::Wait(Milliseconds span) {
  if (platform_.manualClock() != nullptr) {
    platform_.Advance(span);
    return;
  }
  const Milliseconds end = platform_.clock().Monotonic() + span;
  for (;;) {
    platform_.RunDue();
    ReportChanges();
    const Milliseconds left = end - platform_.clock().Monotonic();
    if (left.count() <= 0) return;
    std::this_thread::sleep_for(std::min(left, Milliseconds(50)));
  }
}

bool Phone::HasChanges() const {
  return saved_ || !(platform_.display == shown_) || platform_.loop.HasAppMessages();
}

void Phone::ReportChanges() {
  if (!(platform_.display == shown_)) {
    shown_ = platform_.display;
    out_ << "  * idle screen: " << IdleLine(shown_) << "\n";
  }
  if (saved_) {
    saved_ = false;
    std::error_code error;
    const auto size = std::filesystem::file_size(HistoryFile(), error);
    out_ << "  * history saved: " << (error ? error.message() : std::to_string(size) + " bytes")
         << "\n";
  }
  for (const Message& message : platform_.loop.TakeAppMessages()) {
    out_ << Format("  * message 0x%x to the application, wParam %u, lParam %d", message.message,
                   message.wParam, message.lParam)
         << "\n";
  }
}

std::filesystem::path Phone::HistoryFile() const {
  return root_.path() / "config/data/call_data.xml";
}

std::filesystem::path Phone::FromStart(const std::filesystem::path& path) const {
  return root_.startedIn() / path;
}

}  // namespace desk
