// Feeds imported calls to the module and prints what came of them; reading the records is
// CallRecords'.
#include "desktop/console/CallImport.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>

#include "desktop/cdr/CallRecords.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
#include "desktop/console/ImportedCalls.h"
#include "desktop/console/Input.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr int kTypes = 5;

// How far a large file has been read, on a line of a terminal that is erased in the end.
class ProgressBar {
 public:
  explicit ProgressBar(std::uintmax_t total)
      : total_(isatty(STDERR_FILENO) != 0 && total >= kWorthShowing ? total : 0) {}
  ~ProgressBar() {
    if (shown_ >= 0) std::cerr << "\r\033[K" << std::flush;
  }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Update(std::uintmax_t done) {
    const int percent = total_ == 0 ? -1 : static_cast<int>(std::min(done, total_) * 100 / total_);
    if (percent == shown_) return;
    shown_ = percent;
    const std::string filled(static_cast<std::size_t>(percent / 2), '#');
    std::cerr << Format("\r[%-50s] %3d %%", filled.c_str(), percent) << std::flush;
  }

 private:
  static constexpr std::uintmax_t kWorthShowing = 4 * 1024 * 1024;

  const std::uintmax_t total_;  // 0: nothing is shown
  int shown_ = -1;
};

CdrImport Read(const CallImport& what, Console& console) {
  Input input(console, what.file);
  std::istream file(&input);
  std::error_code unknown;  // of a pipe
  const auto size = std::filesystem::file_size(console.folder / what.file, unknown);
  ProgressBar bar(unknown ? 0 : size);
  const auto goOn = [&] {
    if (console.phone.interrupted()) throw CommandError("interrupted; no call was brought in");
  };
  const auto progress = [&](std::uint64_t done) {
    goOn();
    bar.Update(done);
  };
  CdrImport import = ReadCallRecords(file, {what.extension, what.server, progress});
  goOn();
  if (file.bad()) throw CommandError("cannot read " + input.name() + ": " + input.error());
  return import;
}

// A file of something else, or an extension of somewhere else.
void CheckThatItIsMeant(const CallImport& what, const CdrImport& import) {
  const std::size_t good = import.rows - import.badRows;
  if (import.rows == 0 || good > import.other) return;
  if (good == 0) {
    throw CommandError(what.file + ":" + std::to_string(import.bad.front().line) + ": " +
                       import.bad.front().reason + "; no row is a call record");
  }
  std::string others;
  for (const auto& name : import.extensions) others += (others.empty() ? "" : ", ") + name;
  throw CommandError("no call of " + what.extension + " is in " + what.file + "; it has " +
                     (others.empty() ? "no extension" : others));
}

void PrintBadRows(Console& console, const std::string& file, const CdrImport& import) {
  for (const BadRow& bad : import.bad) {
    console.Say(Printable(file) + ":" + std::to_string(bad.line) + ": " + Printable(bad.reason));
  }
  if (import.badRows > import.bad.size()) {
    console.Say("and " + Counted(import.badRows - import.bad.size(), "more bad row"));
  }
}

struct Outcome {
  std::array<std::size_t, kTypes> stored{};
  std::size_t before = 0;                      // brought in before
  std::map<std::string, std::size_t> refused;  // by reason
};

Outcome Store(const CdrImport& import, Phone& phone) {
  Outcome outcome;
  ImportedCalls imported(phone.HistoryFile().parent_path());
  for (const CdrCall& call : import.calls) {
    const bool before = imported.Has(call);
    const std::string refusal = before ? "" : phone.AddCall(call);
    const auto type = static_cast<std::size_t>(call.type);
    ++(before ? outcome.before : refusal.empty() ? outcome.stored[type] : outcome.refused[refusal]);
    if (refusal.empty()) imported.Note(call);
  }
  if (phone.Save() == NS_GUARD::HistoryGuard::Outcome::kIncomplete) {
    throw CommandError("the calls are in the phone, but could not be saved");
  }
  if (!imported.Save()) {
    throw CommandError(std::string("what was brought in cannot be kept in mind: ") +
                       std::strerror(errno));
  }
  return outcome;
}

void PrintLists(std::ostream& out) {
  constexpr int kRowsShown = 10;
  for (int type = 1; type < kTypes; ++type) {
    CallLogSimpleListData page;
    page.request_count = kRowsShown;
    History().GetLogListByClickAction(&page, ListAction(TypeName(type)));
    PrintCallList(out, TypeName(type), page);
  }
}

}  // namespace

void CallImport::Run(Console& console) const {
  const CdrImport import = Read(*this, console);
  CheckThatItIsMeant(*this, import);
  const Outcome outcome = Store(import, console.phone);
  const auto& stored = outcome.stored;
  console.Say(Counted(import.rows, "record") +
              Format(": %zu outgoing, %zu missed, %zu received; %zu of others, %zu bad", stored[1],
                     stored[2], stored[3], import.other, import.badRows));
  const auto sayIfAny = [&console](std::size_t count, const std::string& what) {
    if (count > 0) console.Say(Counted(count, "call") + " " + what);
  };
  sayIfAny(outcome.before, "brought in before");
  sayIfAny(import.older, "left out: the phone keeps the newest 100 of each type");
  for (const auto& [reason, count] : outcome.refused) sayIfAny(count, "refused: " + reason);
  PrintBadRows(console, file, import);
  ReportNews(console);
  PrintLists(console.out);
}

}  // namespace desk
