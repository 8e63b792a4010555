// Commands for the call logs kept on servers.
#include <tinyxml.h>

#include <stdexcept>

#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/console/SourceCheck.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/transfer/TransferUrl.h"
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

void Sources(Console& console) {
  Table rows;
  for (int i = 0; i < Controller().GetTotalConfigurableItemCount(); ++i) {
    const BroadSoftConfigItem& source = *Controller().GetConfigDataByIndex(i);
    rows.push_back({std::to_string(i),
                    Controller().IsItemConfigured(i) ? Printable(source.name) : "(no name)",
                    Place(source)});
  }
  const std::string name = CallLog_GetBSCallLogDisplayName();
  const bool shown = CallLog_IsBroadSoftCallLogConfigured() == 1;
  console.Say(std::string("server call logs are ") + (shown ? "shown" : "not shown") +
              (name.empty() ? "" : " as \"" + Printable(name) + "\""));
  PrintTable(console.out, rows);
}

// What an answer without a page means.
std::string Explain(int result) {
  switch (result) {
    case NS_CALLLOG::BS_LIST_DOWNLOADING: return "downloading; the phone says when it is there";
    case NS_CALLLOG::BS_LIST_FAILED: return "the download could not be started";
    case NS_CALLLOG::BS_LIST_NOT_CONFIGURED: return "no such source, or it has no server";
    case NS_CALLLOG::BS_LIST_NO_NETWORK: return "no network";
    default: return "no such page";
  }
}

// The click action that opens a source's list; one with brackets is taken as it is. A hand can have
// written a source into the file that leads elsewhere, or to nobody.
std::string SourceAction(const std::string& word, bool searches) {
  if (word.find('(') != std::string::npos) return word;
  const int index = ParseInt(word, "the source");
  const auto* const source = Controller().GetConfigDataByIndex(index);
  std::string refusal = source != nullptr ? WhyUnusable(*source) : std::string();
  if (searches && source != nullptr && source->server.find('?') != std::string::npos) {
    refusal = "its server holds a \"?\", so no name can be searched there";
  }
  if (!refusal.empty()) throw CommandError("source " + word + " cannot be used: " + refusal);
  return "OpenCallLogPage(broadsoft_calllog_" + std::to_string(index) + ")";
}

// What is typed arrives as it was typed, unless it is written as in a URL.
std::string QueryFor(const std::string& typed) {
  return typed.rfind(kNameQuery, 0) == 0 ? typed : EscapeQuery(typed);
}

void Server(Console& console, Arguments& arguments) {
  const std::string source = arguments.Word("the source");
  CallLogSimpleListData page = ParsePage(arguments, 20);
  const bool refresh = ParseEither(arguments.Option("refresh", "off"), "on", "off");
  const std::string query = QueryFor(arguments.Option("query"));
  const int result = Controller().GetLogListByClickAction(
      &page, SourceAction(source, !query.empty()), query, refresh);
  if (result != NS_CALLLOG::BS_LIST_OK) return console.Say(Explain(result));
  PrintCallList(console.out, "source " + Printable(source), page);
}

void Entry(Console& console, Arguments& arguments) {
  const int row = arguments.Int("the row");
  arguments.Done();
  CallLogDetailData detail;
  if (!Controller().GetLogDetailByIndex(&detail, row)) return console.Say("no such row");
  PrintDetail(console.out, detail);
}

void Cancel(Console& console) {
  console.Say(Controller().CancelDownload() ? "cancelled; the next request fetches it anew"
                                            : "no list was asked for");
}

void Await(Console& console) {
  if (!console.phone.AwaitTransfers()) {
    console.Say("the wait was interrupted; the download goes on");
  }
}

void Source(Console& console, Arguments& arguments) {
  const int index = arguments.Int("the source");
  arguments.Done();
  const auto* const present = Controller().GetConfigDataByIndex(index);
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
  console.Say("source " + std::to_string(index) + " is set");
}

void Reload(Console& console) {
  const bool loaded = Controller().ReloadBSCallLogConfig();
  console.Say(loaded ? std::to_string(Controller().GetTotalConfigurableItemCount()) + " sources"
                     : "the file cannot be read; there are no sources");
}

// The module takes the name from its file only: a phone's provisioning writes it there.
void DisplayName(Console& console, Arguments& arguments) {
  const std::string name = arguments.WordOr("");
  arguments.Done();
  Controller();  // creates the file when there is none
  const std::string path = console.phone.SourcesFile();
  TiXmlDocument file(path);
  TiXmlElement* const root = file.LoadFile() ? file.RootElement() : nullptr;
  if (root == nullptr) throw CommandError("cannot read " + path);
  root->SetAttribute("display_name", name.c_str());
  if (!file.SaveFile()) throw CommandError("cannot write " + path);
  Controller().ReloadBSCallLogConfig();
}

std::string WhatItHas(const std::string& path, const LogServer& server) {
  std::string names;
  for (const std::string& name : server.Documents()) names += (names.empty() ? "" : ", ") + name;
  return "the log server has no " + path + "; it has " + (names.empty() ? "nothing" : names);
}

void MisbehaveAs(Console& console, Arguments& arguments) {
  const std::string path = arguments.Word("the path");
  const std::string behaviour = arguments.Word("how");
  arguments.Done();
  if (console.logServer == nullptr) throw CommandError("this phone has no log server of its own");
  if (!console.logServer->Has(path)) throw CommandError(WhatItHas(path, *console.logServer));
  try {
    console.logServer->Misbehave(path, ParseBehaviour(behaviour));
  } catch (const std::invalid_argument& error) {
    throw CommandError(error.what());
  }
}

}  // namespace

CommandGroup ServerCommands() {
  return {"servers",
          "Call logs kept on servers",
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
