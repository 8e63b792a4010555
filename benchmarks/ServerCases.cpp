// Call logs of servers: a document arrives, and pages are asked for.
#include <fstream>

#include "benchmarks/EntryDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Module.h"
#include "benchmarks/Platform.h"

namespace bench {
namespace {

using NS_CALLLOG::CBSCallLogController;

constexpr char kDocument[] = "tmp/BroadSoftCallLog.xml";
constexpr char kSource[] = "OpenSubPage(broadsoft_calllog_0)";

// The document of `entries` entries stands where transfers leave it.
void PutDocument(int entries) {
  std::ofstream(kDocument, std::ios::binary) << ServerDocument(entries);
}

CBSCallLogController& Servers() {
  CBSCallLogController& servers = *CBSCallLogController::GetInstance();
  if (!servers.IsItemConfigured(0)) {
    BroadSoftConfigItem source;
    source.name = "Missed";
    source.server = "logs.example.org";
    servers.SetConfigDataByIndex(0, source);
  }
  return servers;
}

void Ask(CallLogSimpleListData* page, bool refresh = false) {
  Servers().GetLogListByClickAction(page, kSource, "", refresh);
}

// Drops what was loaded.
void StartTransfer() {
  CallLogSimpleListData page;
  Ask(Request(&page, 0), true);
}

std::string FirstRows() {
  CallLogSimpleListData page;
  Ask(Request(&page, 0));
  return Text(page);
}

Operation LoadingModule(int entries) {
  PutDocument(entries);
  return {CompleteTransfer, FirstRows, StartTransfer};
}

Operation LoadingTable(int entries) {
  PutDocument(entries);
  const auto database = std::make_shared<EntryDatabase>();
  const auto firstRows = [database] {
    CallLogSimpleListData page;
    database->GetPage(Request(&page, 0));
    return Text(page);
  };
  return {[database] { database->Load(kDocument); }, firstRows, [database] { database->Clear(); }};
}

Operation Parsing(int entries) {
  PutDocument(entries);
  return {[] { ParseFile(kDocument); }, {}, kNothing};
}

Operation ReadingModule(int entries, int row) {
  const Operation loading = LoadingModule(entries);
  loading.restore();
  loading.run();
  return Reading<CallLogSimpleListData>([row](auto* page) { Ask(Request(page, row)); });
}

Operation ReadingTable(int entries, int row) {
  PutDocument(entries);
  const auto table = std::make_shared<EntryDatabase>();
  table->Load(kDocument);
  return Reading<CallLogSimpleListData>(
      [row, table](auto* page) { table->GetPage(Request(page, row)); });
}

void AppendLoad(Cases* cases, const std::string& work, int entries) {
  cases->push_back({work, kModule, [=] { return LoadingModule(entries); }});
  cases->push_back({work, kParse, [=] { return Parsing(entries); }});
  cases->push_back({work, kMemory, [=] { return LoadingTable(entries); }});
}

void AppendPage(Cases* cases, const std::string& work, int entries, int row) {
  cases->push_back({work, kModule, [=] { return ReadingModule(entries, row); }});
  cases->push_back({work, kMemory, [=] { return ReadingTable(entries, row); }});
}

}  // namespace

void AppendServerCases(Cases* cases) {
  for (const int entries : {20, 1000}) {
    const std::string count = std::to_string(entries);
    AppendLoad(cases, "server, load " + count, entries);
    AppendPage(cases, "server, first page of " + count, entries, 0);
    AppendPage(cases, "server, last page of " + count, entries, entries - kPage);
  }
}

}  // namespace bench
