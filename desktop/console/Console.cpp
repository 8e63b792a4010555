// The phone's news as lines for a user.
#include "desktop/console/Console.h"

#include "CallLog.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {
namespace {

std::string Line(const RootWasOpen&) {
  return "other users could read this phone's files; now only you can";
}

std::string Line(const Display& shown) { return "idle screen: " + IdleLine(shown); }

std::string Line(const HistorySaved& saved) {
  return "history saved: " +
         (saved.error ? saved.error.message() : std::to_string(saved.bytes) + " bytes");
}

std::string Line(NS_GUARD::HistoryGuard::Outcome outcome) { return Describe(outcome); }

std::string Line(const Message& message) {
  if (message.message == MSG_BS_CALLLOG_DOWNLOADED) {
    return std::string(message.lParam == 0 ? "a server list is there: "
                                           : "a server list could not be fetched: ") +
           Printable(MaskCredentials(CString(message.extra)));
  }
  return Format("message 0x%x to the application, wParam %u, lParam %d", message.message,
                message.wParam, message.lParam);
}

}  // namespace

void PrintNews(std::ostream& out, const std::vector<News>& news) {
  for (const News& one : news) {
    out << "  * " << std::visit([](const auto& what) { return Line(what); }, one) << "\n";
  }
}

void ReportNews(Console& console) { PrintNews(console.out, console.phone.TakeNews()); }

void SetTrace(Console& console, int level, const std::filesystem::path& file) {
  Trace& trace = console.phone.platform().trace;
  if (!file.empty() && !trace.SetFile(console.folder / file)) {
    throw CommandError("cannot write to " + file.string());
  }
  trace.SetLevel(level);
}

}  // namespace desk
