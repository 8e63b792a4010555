// Switching the phone on and off, letting time pass, and saying what happened by itself.
#include "desktop/phone/Phone.h"

#include <algorithm>

#include "CallLog.h"
#include "desktop/console/Screen.h"
#include "desktop/console/Signals.h"
#include "desktop/platform/Text.h"
#include "guard/RestartHistory.h"

namespace desk {

using NS_CALLLOG::CBSCallLogController;
using NS_CALLLOG::CCallLogController;
using NS_GUARD::HistoryGuard;

namespace {

std::string Describe(const Message& message) {
  if (message.message == MSG_BS_CALLLOG_DOWNLOADED) {
    return std::string(message.lParam == 0 ? "a server list is there: "
                                           : "a server list could not be fetched: ") +
           Printable(MaskCredentials(CString(message.extra)));
  }
  return Format("message 0x%x to the application, wParam %u, lParam %d", message.message,
                message.wParam, message.lParam);
}

}  // namespace

Phone::Phone(const std::filesystem::path& root, const Profile& profile,
             std::unique_ptr<Clock> clock, std::ostream& out)
    : root_(root), out_(out), platform_(profile, std::move(clock)), guard_(HistoryFile()) {
  platform_.loop.SetObserver(
      [this](const Message& message, int result) { OnHandled(message, result); });
  if (platform_.manualClock() != nullptr) platform_.transfers.Hold();
  if (root_.wasOpen()) out_ << "  * other users could read this phone's files; now only you can\n";
  PowerOn();
  ReportGuard();
}

Phone::~Phone() {
  Save();
  ReportGuard();
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
  if (outcome != HistoryGuard::Outcome::kGood) guardNotes_.emplace_back(Describe(outcome));
}

void Phone::ReportGuard() {
  for (const std::string& note : guardNotes_) out_ << "  * " << note << "\n";
  guardNotes_.clear();
}

bool Phone::Wait(Milliseconds span) {
  if (platform_.manualClock() != nullptr) {
    platform_.Advance(span);
    return true;
  }
  const Milliseconds end = platform_.clock().Monotonic() + span;
  for (;;) {
    platform_.RunDue();
    ReportChanges();
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

bool Phone::HasChanges() const {
  return saved_ || !guardNotes_.empty() || !(platform_.display == shown_) ||
         platform_.loop.HasAppMessages();
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
  ReportGuard();
  for (const Message& message : platform_.loop.TakeAppMessages()) {
    out_ << "  * " << Describe(message) << "\n";
  }
}

std::filesystem::path Phone::HistoryFile() const {
  return root_.path() / "config/data/call_data.xml";
}

std::filesystem::path Phone::FromStart(const std::filesystem::path& path) const {
  return root_.startedIn() / path;
}

std::filesystem::path Phone::SourcesFile() const {
  return root_.path() / "config/data/broadsoft_calllog_list.xml";
}

void Phone::ServeDocuments(const std::filesystem::path& directory) {
  // As on real servers, the user id and the password hold what other URLs may not.
  const char* const user = "anna@example.org";
  const char* const password = "p@ss:1";
  logServer_ =
      std::make_unique<LogServer>(LogServer::Settings{FromStart(directory), user, password, 0});
  {
    const SignalsBlocked inItsThreads;
    logServer_->Start();
  }
  auto& controller = *CBSCallLogController::GetInstance();
  int index = 0;
  for (const char* document : {"Missed", "Placed", "Received"}) {
    BroadSoftConfigItem source;
    source.name = std::string(document) + " on the server";
    source.server = std::string("127.0.0.1/com.broadsoft.xsi-actions/v2.0/user/") + user +
                    "/directories/CallLogs/" + document;
    source.port = std::to_string(logServer_->port());
    source.user_name = user;
    source.password = password;
    controller.SetConfigDataByIndex(index++, source);
  }
}

}  // namespace desk
