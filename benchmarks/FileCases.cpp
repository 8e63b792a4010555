// The history file: save and load. What a contestant writes as a history file must be the same
// bytes.
#include <fstream>
#include <iterator>
#include <memory>

#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Module.h"
#include "platform/SettingTime.h"

namespace bench {
namespace {

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A name that is given again is a change, and has to be saved.
void MakeDirty() {
  static const std::list<SuperSearchItemData> names(1, OfficeParties().front());
  Module().UpdateDispName(names);
}

Operation SavingModule(int calls) {
  StartModule(OfficeCalls(calls));
  return {[] { Module().SaveToFile(); }, [] { return ReadBytes(kHistoryFile); }, MakeDirty};
}

Operation SavingByStream() {
  return {[records = MakeRecords(OfficeCalls(kCalls))] { SaveByStream("stream.xml", records); },
          [] { return ReadBytes("stream.xml"); }, kNothing};
}

// The file of a history of so many calls.
void PutHistoryFile(int calls) {
  const Operation saving = SavingModule(calls);
  saving.restore();
  saving.run();
}

Operation WritingBytes() {
  PutHistoryFile(kCalls);
  return {[bytes = ReadBytes(kHistoryFile)] { WriteBytes("bare.xml", bytes); },
          [] { return ReadBytes("bare.xml"); }, kNothing};
}

Operation Printing() {
  PutHistoryFile(kCalls);
  const std::shared_ptr<Tree> tree = MakeTree(MakeRecords(OfficeCalls(kCalls)));
  return {[tree, size = ReadBytes(kHistoryFile).size()] { PrintTree("tree.xml", *tree, size); },
          [] { return ReadBytes("tree.xml"); }, kNothing};
}

Operation ReplacingTable(const char* storage) {
  const auto calls = OfficeCalls(kCalls);
  const auto database = std::make_shared<CallDatabase>(storage, calls);
  return {[calls, database] { database->ReplaceAll(calls); }, {}, kNothing};
}

Operation LoadingModule(int calls) {
  PutHistoryFile(calls);
  return {[] { Module(); }, ModuleRows, NS_CALLLOG::CCallLogController::ReleaseInstance};
}

std::string Rows(const std::vector<CallLogAddItemData>& calls) {
  CallLogSimpleListData page;
  for (const CallLogAddItemData& call : calls) {
    CallLogSimpleData& row = page.items.emplace_back();
    row.display_name = call.remote_display_name;
    row.time_text = Setting_CallLogTime2String(call.born_tick, " ");
    row.type = call.type;
  }
  page.total = static_cast<int>(calls.size());
  return Text(page);
}

Operation ReadingTable() {
  { const CallDatabase filled(kFile, OfficeCalls(kCalls)); }
  const auto calls = std::make_shared<std::vector<CallLogAddItemData>>();
  return {[calls] { *calls = CallDatabase::ReadFile(); }, [calls] { return Rows(*calls); },
          [calls] { calls->clear(); }};
}

Operation Parsing() {
  PutHistoryFile(kCalls);
  return {[] { ParseFile(kHistoryFile); }, {}, kNothing};
}

}  // namespace

void AppendFileCases(Cases* cases) {
  const std::string save = "save 400", load = "load 400";
  cases->push_back({save, kModule, [] { return SavingModule(kCalls); }});
  cases->push_back({save, kStream, SavingByStream});
  cases->push_back({save, kPrint, Printing});
  cases->push_back({save, kWrite, WritingBytes});
  for (const char* const storage : kStorages) {
    cases->push_back({save, storage, [storage] { return ReplacingTable(storage); }});
  }
  cases->push_back({load, kModule, [] { return LoadingModule(kCalls); }});
  cases->push_back({load, kParse, Parsing});
  cases->push_back({load, kFile, ReadingTable});
  for (int records = 50; records <= kCalls; records += 50) {
    const std::string name = "records " + std::to_string(records);
    cases->push_back({name + " save", kModule, [=] { return SavingModule(records); }});
    cases->push_back({name + " load", kModule, [=] { return LoadingModule(records); }});
  }
}

}  // namespace bench
