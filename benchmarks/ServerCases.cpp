// Call logs of servers: a document arrives, and pages are asked for.
#include <fstream>

#include "benchmarks/EntryDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Platform.h"
#include "benchmarks/Reading.h"

namespace bench {
namespace {

using NS_CALLLOG::CBSCallLogController;

constexpr char kDocument[] = "tmp/BroadSoftCallLog.xml";
constexpr char kSource[] = "OpenSubPage(broadsoft_calllog_0)";

// The document of `entries` entries stands where transfers leave it.
void PutDocument(int entries) {
  static int there = 0;
  if (there == entries) return;
  std::ofstream(kDocument, std::ios::binary) << ServerDocument(entries);
  there = entries;
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

int Ask(CallLogSimpleListData* page, bool refresh) {
  return Servers().GetLogListByClickAction(page, kSource, "", refresh);
}

// Drops what was loaded, and starts the transfer anew.
void StartTransfer() {
  CallLogSimpleListData page;
  page.request_count = kPage;
  Ask(&page, true);
}

std::string FirstRows() {
  CallLogSimpleListData page;
  page.request_count = kPage;
  Ask(&page, false);
  return Text(page);
}

Operation LoadingModule(int entries) {
  PutDocument(entries);
  Operation operation;
  operation.run = bench::CompleteTransfer;
  operation.answer = FirstRows;
  operation.restore = StartTransfer;
  return operation;
}

Operation LoadingTable(int entries) {
  PutDocument(entries);
  const auto database = std::make_shared<EntryDatabase>();
  Operation operation;
  operation.run = [database] { database->Load(kDocument); };
  operation.answer = [database] {
    CallLogSimpleListData page;
    page.request_count = kPage;
    database->GetPage(&page);
    return Text(page);
  };
  operation.restore = [database] { database->Clear(); };
  return operation;
}

Operation Parsing(int entries, bool fromFile) {
  PutDocument(entries);
  const auto text = std::make_shared<std::string>(fromFile ? "" : ServerDocument(entries));
  Operation operation;
  operation.run = [text, fromFile] { fromFile ? ParseFile(kDocument) : ParseText(*text); };
  operation.restore = [] {};
  return operation;
}

bool IsLoaded(int entries) {
  CallLogSimpleListData page;
  page.request_count = kPage;
  return Ask(&page, false) == NS_CALLLOG::BS_LIST_OK && page.total == entries;
}

// What is loaded stays for the next work on as many entries: to load many takes long.
Operation ReadingModule(int entries, int row) {
  if (!IsLoaded(entries)) {
    const Operation loading = LoadingModule(entries);
    loading.restore();
    loading.run();
  }
  return Reading<CallLogSimpleListData>([row](auto* page) { Ask(Request(page, row), false); });
}

Operation ReadingTable(int entries, int row) {
  static std::shared_ptr<EntryDatabase> table;
  static int loaded = 0;
  if (loaded != entries) {
    PutDocument(entries);
    table = std::make_shared<EntryDatabase>();
    table->Load(kDocument);
    loaded = entries;
  }
  return Reading<CallLogSimpleListData>(
      [row, table = table](auto* page) { table->GetPage(Request(page, row)); });
}

void AppendLoad(Cases* cases, const std::string& work, int entries) {
  cases->push_back({work, kModule, [=] { return LoadingModule(entries); }, true});
  cases->push_back({work, kParseFile, [=] { return Parsing(entries, true); }, true});
  cases->push_back({work, kParseText, [=] { return Parsing(entries, false); }, true});
  cases->push_back({work, kMemory, [=] { return LoadingTable(entries); }, true});
}

void AppendPage(Cases* cases, const std::string& work, int entries, int row) {
  cases->push_back({work, kModule, [=] { return ReadingModule(entries, row); }});
  cases->push_back({work, kMemory, [=] { return ReadingTable(entries, row); }});
}

}  // namespace

void AppendServerCases(Cases* cases) {
  for (const int entries : {20, 1000, 100000}) {
    const std::string count = std::to_string(entries);
    AppendLoad(cases, "server, load " + count, entries);
    AppendPage(cases, "server, first page of " + count, entries, 0);
    AppendPage(cases, "server, last page of " + count, entries, entries - kPage);
  }
  for (const int entries : {10, 100, 1000, 10000, 100000}) {
    const std::string name = "entries " + std::to_string(entries);
    AppendLoad(cases, name + " load", entries);
    AppendPage(cases, name + " last page", entries, entries - kPage);
  }
}

}  // namespace bench
