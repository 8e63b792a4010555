// The history file: save and load. What a contestant writes as a history file must be the same
// bytes.
#include <tinyxml.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "benchmarks/CallDatabase.h"
#include "benchmarks/Floor.h"
#include "benchmarks/Reading.h"
#include "platform/SettingTime.h"

namespace bench {
namespace {

constexpr auto kNothing = [] {};

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A name that is given again is a change, and has to be saved; so is a removal, also of nothing.
void MakeDirty() {
  static const std::list<SuperSearchItemData> names(1, OfficeParties().front());
  Module().UpdateDispName(names);
}

void EmptyModule() { Module().RemoveAllLogsByClickAction(Action(0)); }

Operation SavingModule(int calls) {
  StartModule(OfficeCalls(calls));
  Operation operation;
  operation.run = [] { Module().SaveToFile(); };
  operation.answer = [] { return ReadBytes(kHistoryFile); };
  operation.restore = calls > 0 ? MakeDirty : EmptyModule;
  return operation;
}

Operation SavingByStream() {
  const auto records = std::make_shared<Records>(MakeRecords(OfficeCalls(kCalls)));
  Operation operation;
  operation.run = [records] { SaveByStream("stream.xml", *records); };
  operation.answer = [] { return ReadBytes("stream.xml"); };
  operation.restore = kNothing;
  return operation;
}

// The file of a history of so many calls.
void PutHistoryFile(int calls) {
  const Operation saving = SavingModule(calls);
  saving.restore();
  saving.run();
}

// What the file of a history of so many calls holds; it is there then.
std::shared_ptr<const std::string> HistoryBytes(int calls) {
  PutHistoryFile(calls);
  return std::make_shared<const std::string>(ReadBytes(kHistoryFile));
}

Operation WritingBytes() {
  Operation operation;
  operation.run = [bytes = HistoryBytes(kCalls)] { WriteBytes("bare.xml", *bytes); };
  operation.answer = [] { return ReadBytes("bare.xml"); };
  operation.restore = kNothing;
  return operation;
}

Operation CopyingBytes() {
  const auto bytes = HistoryBytes(kCalls);
  const auto copy = std::make_shared<std::string>(bytes->size(), '\0');
  Operation operation;
  operation.run = [bytes, copy] { std::memcpy(copy->data(), bytes->data(), bytes->size()); };
  operation.answer = [copy] { return *copy; };
  operation.restore = kNothing;
  return operation;
}

Operation ReplacingTable(Storage storage) {
  const auto calls = std::make_shared<std::vector<CallLogAddItemData>>(OfficeCalls(kCalls));
  const auto database = std::make_shared<CallDatabase>(storage);
  database->AddAll(*calls);
  Operation operation;
  operation.run = [calls, database] { database->ReplaceAll(*calls); };
  operation.restore = kNothing;
  return operation;
}

Operation LoadingModule(int calls) {
  PutHistoryFile(calls);
  Operation operation;
  operation.run = [] { Module(); };
  operation.answer = [] { return ModuleRows(0, kCalls); };
  operation.restore = NS_CALLLOG::CCallLogController::ReleaseInstance;
  return operation;
}

Operation ReadingTable() {
  CallDatabase(Storage::kWal).AddAll(OfficeCalls(kCalls));
  const auto calls = std::make_shared<std::vector<CallLogAddItemData>>();
  Operation operation;
  operation.run = [calls] { *calls = CallDatabase::ReadAll(Storage::kWal); };
  operation.answer = [calls] {
    CallLogSimpleListData page;
    for (const CallLogAddItemData& call : *calls) {
      CallLogSimpleData& row = page.items.emplace_back();
      row.display_name = call.remote_display_name;
      row.time_text = Setting_CallLogTime2String(call.born_tick, " ");
      row.type = call.type;
    }
    page.total = static_cast<int>(calls->size());
    return Text(page);
  };
  operation.restore = [calls] { calls->clear(); };
  return operation;
}

Operation Parsing(int calls, bool fromFile) {
  Operation operation;
  operation.run = [text = HistoryBytes(calls), fromFile] {
    fromFile ? ParseFile(kHistoryFile) : ParseText(*text);
  };
  operation.restore = kNothing;
  return operation;
}

}  // namespace

void AppendFileCases(Cases* cases) {
  const std::string save = "save 400", load = "load 400";
  cases->push_back({save, kModule, [] { return SavingModule(kCalls); }, true});
  cases->push_back({save, kStream, SavingByStream, true});
  cases->push_back({save, kWrite, WritingBytes, true});
  cases->push_back({save, kCopy, CopyingBytes, true});
  for (const Storage storage : kStorages) {
    cases->push_back({save, NameOf(storage), [=] { return ReplacingTable(storage); }, true});
  }
  cases->push_back({load, kModule, [] { return LoadingModule(kCalls); }, true});
  cases->push_back({load, kParseFile, [] { return Parsing(kCalls, true); }, true});
  cases->push_back({load, kParseText, [] { return Parsing(kCalls, false); }, true});
  cases->push_back({load, kWal, ReadingTable, true});
  for (int records = 0; records <= kCalls; records += 50) {
    const std::string name = "records " + std::to_string(records);
    cases->push_back({name + " save", kModule, [=] { return SavingModule(records); }, true});
    cases->push_back({name + " load", kModule, [=] { return LoadingModule(records); }, true});
  }
}

}  // namespace bench
