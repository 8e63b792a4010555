// Feeds imported calls to the module and prints what came of them; reading the records is
// CallRecords'.
#include "desktop/console/CallImport.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

#include "CallLog.h"
#include "desktop/cdr/CallRecords.h"
#include "desktop/console/CallType.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
#include "desktop/console/ProgressBar.h"
#include "desktop/console/Screen.h"
#include "desktop/phone/AddCall.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr int kTypes = 5;

CdrImport Read(const CallImport& what, const Console& console) {
  const std::filesystem::path path = console.folder / what.file;
  std::ifstream file(path, std::ios::binary);
  if (!file || !std::filesystem::is_regular_file(path)) {
    throw CommandError("cannot read " + path.string() + ": " +
                       (file ? "not a file" : std::strerror(errno)));
  }
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  ProgressBar bar(std::cerr, isatty(STDERR_FILENO) != 0, unknown ? 0 : size);
  const auto progress = [&](std::uint64_t done) {
    if (console.phone.interrupted()) throw CommandError("interrupted; no call was brought in");
    bar.Update(done);
  };
  CdrImport import = ReadCallRecords(file, {what.extension, what.server, progress});
  if (file.bad()) throw CommandError("cannot read " + path.string() + " to its end");
  return import;
}

void PrintBadRows(std::ostream& out, const std::string& file, const std::vector<BadRow>& bad) {
  constexpr std::size_t kNamed = 20;
  for (std::size_t i = 0; i < bad.size() && i < kNamed; ++i) {
    out << "  " << Printable(file) << ":" << bad[i].line << ": " << Printable(bad[i].reason)
        << "\n";
  }
  if (bad.size() > kNamed) out << "  and " << bad.size() - kNamed << " bad rows more\n";
}

void PrintLists(std::ostream& out) {
  constexpr int kRowsShown = 10;
  for (int type = 1; type < kTypes; ++type) {
    CallLogSimpleListData page;
    page.request_count = kRowsShown;
    NS_CALLLOG::CCallLogController::GetInstance()->GetLogListByClickAction(&page, ListAction(type));
    PrintCallList(out, TypeName(type), page);
  }
}

}  // namespace

void CallImport::Run(Console& console) const {
  std::ostream& out = console.out;
  const CdrImport import = Read(*this, console);
  std::array<int, kTypes> counts{};
  std::map<std::string, int> refused;  // by reason
  for (const CallLogAddItemData& call : import.calls) {
    const std::string refusal = AddCall(console.phone.platform(), call);
    ++(refusal.empty() ? counts[static_cast<std::size_t>(call.type)] : refused[refusal]);
  }
  out << Format("  %zu records: %d outgoing, %d missed, %d received", import.rows, counts[1],
                counts[2], counts[3]);
  out << Format("; %zu of others, %zu bad\n", import.other, import.bad.size());
  for (const auto& [reason, count] : refused) {
    out << "  " << count << (count == 1 ? " call" : " calls") << " refused: " << reason << "\n";
  }
  PrintBadRows(out, file, import.bad);
  ReportNews(console);
  PrintLists(out);
}

}  // namespace desk
