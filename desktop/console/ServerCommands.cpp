// Commands for the call logs kept on servers.
#include <tinyxml.h>

#include <stdexcept>

#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/console/SourceCheck.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/TransferUrl.h"
#include "desktop/server/LogServer.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

CBSCallLogController& Controller() { return *CBSCallLogController::GetInstance(); }

// Where a source leads, without what only its server is to know.
std::string Place(const BroadSoftConfigItem& source) {
  const std::string refusal = WhyUnusable(source);
  if (!refusal.empty()) return "(cannot be used: " + refusal + ")";
  return Printable(source.server + (source.port.empty() ? "" : " port " + source.port)) +
         (source.user_name.empty() ? "" : "  " + Printable("as " + source.user_name));
}

void Sources(Console& console, Arguments& arguments) {
  arguments.Done();
  std::vector<std::vector<std::string>> rows;
  for (int i = 0; i < Controller().GetTotalConfigurableItemCount(); ++i) {
    const BroadSoftConfigItem& source = *Controller().GetConfigDataByIndex(i);
    rows.push_back({std::to_string(i),
                    Controller().IsItemConfigured(i) ? Printable(source.name) : "(no name)",
                    Place(source)});
  }
  const std::string name = CallLog_GetBSCallLogDisplayName();
  console.out << "  server call logs are "
              << (CallLog_IsBroadSoftCallLogConfigured() == 1 ? "shown" : "not shown")
              << (name.empty() ? "" : " as \"" + Printable(name) + "\"") << "\n";
  PrintTable(console.out, rows);
}

// What an answer means; empty when the page was filled.
std::string Explain(int result) {
  switch (result) {
    case NS_CALLLOG::BS_LIST_OK: return {};
    case NS_CALLLOG::BS_LIST_DOWNLOADING: return "downloading; the phone says when it is there";
    case NS_CALLLOG::BS_LIST_FAILED: return "the download could not be started";
    case NS_CALLLOG::BS_LIST_NOT_CONFIGURED: return "no such source, or it has no server";
    case NS_CALLLOG::BS_LIST_NO_NETWORK: return "no network";
    default: return "no such page";
  }
}

// A click action with brackets stays as it is.
std::string SourceAction(const std::string& source) {
  if (source.find('(') != std::string::npos) return source;
  return "OpenCallLogPage(broadsoft_calllog_" + std::to_string(ParseInt(source, "the source")) +
         ")";
}

// A hand can have written a source into the file that leads elsewhere, or to nobody.
void CheckSource(const std::string& word) {
  if (word.find('(') != std::string::npos) return;
  const auto* const source = Controller().GetConfigDataByIndex(ParseInt(word, "the source"));
  const std::string refusal = source != nullptr ? WhyUnusable(*source) : std::string();
  if (!refusal.empty()) throw CommandError("source " + word + " cannot be used: " + refusal);
}

// What is typed arrives as it was typed, unless it is written as in a URL.
std::string QueryFor(const std::string& typed) {
  return typed.rfind(kNameQuery, 0) == 0 ? typed : EscapeQuery(typed);
}

void Server(Console& console, Arguments& arguments) {
  arguments.AllowOptions({"query", "refresh"});
  const std::string source = arguments.Word("the source");
  CallLogSimpleListData page;
  page.request_index = ParseInt(arguments.WordOr("0"), "the first row");
  page.request_count = ParseInt(arguments.WordOr("20"), "the number of rows");
  arguments.Done();
  const bool refresh = ParseSwitch(arguments.Option("refresh", "off"));
  CheckSource(source);
  const int result = Controller().GetLogListByClickAction(
      &page, SourceAction(source), QueryFor(arguments.Option("query")), refresh);
  if (result == NS_CALLLOG::BS_LIST_OK) {
    PrintCallList(console.out, "source " + Printable(source), page);
  } else {
    console.out << "  " << Explain(result) << "\n";
  }
}

void Entry(Console& console, Arguments& arguments) {
  const int row = ParseInt(arguments.Word("the row"), "the row");
  arguments.Done();
  CallLogDetailData detail;
  if (Controller().GetLogDetailByIndex(&detail, row)) {
    PrintDetail(console.out, detail);
  } else {
    console.out << "  no such row\n";
  }
}

void Cancel(Console& console, Arguments& arguments) {
  arguments.Done();
  console.out << (Controller().CancelDownload() ? "  cancelled; the next request fetches it anew\n"
                                                : "  no list was asked for\n");
}

void Await(Console& console, Arguments& arguments) {
  arguments.Done();
  if (!console.phone.AwaitTransfers())
    console.out << "  the wait was interrupted; the download goes on\n";
}

void Source(Console& console, Arguments& arguments) {
  arguments.AllowOptions({"name", "server", "port", "user", "password"});
  const int index = ParseInt(arguments.Word("the source"), "the source");
  arguments.Done();
  const BroadSoftConfigItem* const present = Controller().GetConfigDataByIndex(index);
  if (present == nullptr) throw CommandError("no source " + std::to_string(index));
  BroadSoftConfigItem source = *present;
  source.name = arguments.Option("name", source.name);
  source.server = arguments.Option("server", source.server);
  source.port = arguments.Option("port", source.port);
  source.user_name = arguments.Option("user", source.user_name);
  source.password = arguments.Option("password", source.password);
  const std::string refusal = WhyUnusable(source);
  if (!refusal.empty()) throw CommandError(refusal);
  Controller().SetConfigDataByIndex(index, source);
  console.out << "  source " << index << " is set\n";
}

void Reload(Console& console, Arguments& arguments) {
  arguments.Done();
  const bool loaded = Controller().ReloadBSCallLogConfig();
  console.out << (loaded ? "  " + std::to_string(Controller().GetTotalConfigurableItemCount()) +
                               " sources\n"
                         : "  the file cannot be read; there are no sources\n");
}

// The module takes the name from its file only: a phone's provisioning writes it there.
void DisplayName(Console& console, Arguments& arguments) {
  const std::string name = arguments.WordOr("");
  arguments.Done();
  Controller();  // creates the file when there is none
  TiXmlDocument file(console.phone.SourcesFile().string());
  TiXmlElement* const root = file.LoadFile() ? file.RootElement() : nullptr;
  if (root == nullptr) throw CommandError("cannot read " + console.phone.SourcesFile().string());
  root->SetAttribute("display_name", name.c_str());
  if (!file.SaveFile()) throw CommandError("cannot write " + console.phone.SourcesFile().string());
  Controller().ReloadBSCallLogConfig();
}

void MisbehaveAs(Console& console, Arguments& arguments) {
  const std::string path = arguments.Word("the path");
  const std::string behaviour = arguments.Word("how");
  arguments.Done();
  if (console.logServer == nullptr) throw CommandError("this phone has no log server of its own");
  try {
    console.logServer->Misbehave(path, ParseBehaviour(behaviour));
  } catch (const std::invalid_argument& error) {
    throw CommandError(error.what());
  }
}

}  // namespace

CommandGroup ServerCommands() {
  return {"Call logs kept on servers",
          {
              {"sources", "", "the sources, and whether they are shown", Sources},
              {"server", "SOURCE [FIRST [COUNT]] [query=NAME] [refresh=on]",
               "a source's list: starts its download, or pages through it", Server},
              {"entry", "ROW", "one entry of the list asked for last", Entry},
              {"cancel", "", "discards what is being downloaded", Cancel},
              {"await", "", "waits until nothing is being downloaded", Await},
              {"source", "INDEX [name=N] [server=S] [port=P] [user=U] [password=P]",
               "sets a source", Source},
              {"display-name", "[NAME]", "the name under which the menu shows them", DisplayName},
              {"reload", "", "reads the sources' file again", Reload},
              {"misbehave",
               "PATH document|hold|delay:SECONDS|stall|cut|endless|page|STATUS|redirect:URL",
               "how the phone's own log server answers a path from now on", MisbehaveAs},
          }};
}

}  // namespace desk
