// The phone's news as lines for a user.
#include "desktop/console/Console.h"

#include "CallLog.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Screen.h"
#include "desktop/console/SourceCheck.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {
namespace {

// A source's list, by the source's name and what was searched there; the URL when no source has it.
std::string ListName(const std::string& url) {
  const auto& controller = *NS_CALLLOG::CBSCallLogController::GetInstance();
  for (int i = 0; i < controller.GetTotalConfigurableItemCount(); ++i) {
    const std::string own = SourceUrl(*controller.GetConfigDataByIndex(i));
    if (own.empty() || url.rfind(own, 0) != 0) continue;
    const std::string query = url.substr(own.size());
    if (!query.empty() && query.rfind(kNameQuery, 0) != 0) continue;
    const std::string name = controller.GetConfiguredItemName(i);
    const std::string shown = name.empty() ? "source " + std::to_string(i) : name;
    if (query.empty()) return shown;
    return shown + ", for \"" + UnescapeQuery(query.substr(kNameQuery.size())) + "\"";
  }
  return MaskCredentials(url);
}

std::string Line(const RootWasOpen&) {
  return "other users could read this phone's files; now only you can";
}

std::string Line(const Display& shown) { return "idle screen: " + IdleLine(shown); }

std::string Line(const HistorySaved& saved) {
  return "history saved: " +
         (saved.error ? saved.error.message() : std::to_string(saved.bytes) + " bytes");
}

std::string Line(NS_GUARD::HistoryGuard::Outcome outcome) { return Describe(outcome); }

std::string Line(const ListFetched& list) {
  const std::string name = Printable(ListName(list.url));
  if (list.error.empty()) return "a server list is there: " + name;
  return "a server list could not be fetched: " + name + ": " + Printable(list.error);
}

std::string Line(const Message& message) {
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
