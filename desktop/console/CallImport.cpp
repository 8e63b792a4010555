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
#include <fstream>
#include <iostream>
#include <map>

#include "desktop/cdr/CallRecords.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
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

CdrImport Read(const CallImport& what, const Console& console) {
  const std::filesystem::path path = console.folder / what.file;
  const auto fail = [&](const std::string& why) {
    throw CommandError("cannot read " + path.string() + why);
  };
  std::ifstream file(path, std::ios::binary);
  if (!file) fail(std::string(": ") + std::strerror(errno));
  if (!std::filesystem::is_regular_file(path)) fail(": not a file");
  ProgressBar bar(std::filesystem::file_size(path));
  const auto progress = [&](std::uint64_t done) {
    if (console.phone.interrupted()) throw CommandError("interrupted; no call was brought in");
    bar.Update(done);
  };
  CdrImport import = ReadCallRecords(file, {what.extension, what.server, progress});
  if (file.bad()) fail(" to its end");
  return import;
}

void PrintBadRows(Console& console, const std::string& file, const std::vector<BadRow>& bad) {
  constexpr std::size_t kNamed = 20;
  for (std::size_t i = 0; i < std::min(bad.size(), kNamed); ++i) {
    console.Say(Printable(file) + ":" + std::to_string(bad[i].line) + ": " +
                Printable(bad[i].reason));
  }
  if (bad.size() > kNamed) {
    console.Say("and " + std::to_string(bad.size() - kNamed) + " bad rows more");
  }
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
  std::array<std::size_t, kTypes> stored{};
  std::map<std::string, std::size_t> refused;  // by reason
  for (const CallLogAddItemData& call : import.calls) {
    const std::string refusal = console.phone.AddCall(call);
    ++(refusal.empty() ? stored[static_cast<std::size_t>(call.type)] : refused[refusal]);
  }
  console.Say(Format("%zu records: %zu outgoing, %zu missed, %zu received; %zu of others, %zu bad",
                     import.rows, stored[1], stored[2], stored[3], import.other,
                     import.bad.size()));
  for (const auto& [reason, count] : refused) {
    console.Say(Counted(count, "call") + " refused: " + reason);
  }
  PrintBadRows(console, file, import.bad);
  ReportNews(console);
  PrintLists(console.out);
}

}  // namespace desk
