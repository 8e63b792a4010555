// What is in the history, and the file of the hashes.
#include "desktop/console/ImportedCalls.h"

#include <algorithm>
#include <fstream>

#include "CallTypes.h"
#include "desktop/console/CallLists.h"
#include "desktop/platform/PrivateFile.h"
#include "desktop/platform/Text.h"
#include "platform/SettingTime.h"

namespace desk {
namespace {

constexpr std::size_t kRecordsMax = 100'000;

std::string Key(int type, const std::string& number, const std::string& server,
                const std::string& time) {
  return std::to_string(type) + " " + time + " " + number + "@" + server;
}

// Asked call by call: opening a list would mark its calls seen.
std::set<std::string> CallsInHistory() {
  std::set<std::string> calls;
  for (int type = NS_CALLLOG::kOutgoing; type <= NS_CALLLOG::kForwarded; ++type) {
    CallLogDetailData detail;
    const std::string action = ListAction(TypeName(type));
    for (int row = 0; History().GetLogDetailByClickAction(&detail, action, row) == 1; ++row) {
      calls.insert(Key(type, detail.number, detail.server, detail.time_text));
    }
  }
  return calls;
}

}  // namespace

ImportedCalls::ImportedCalls(const std::filesystem::path& folder)
    : file_(folder / "imported_calls"), inHistory_(CallsInHistory()) {
  PrivateFile::RemoveLeft(file_);
  if (!IsOwnFile(file_)) return;
  std::ifstream file(file_);
  for (std::uint64_t record = 0; file >> std::hex >> record;) records_.push_back(record);
  known_.insert(records_.begin(), records_.end());
}

bool ImportedCalls::Has(const CdrCall& call) const {
  return inHistory_.count(Key(call.type, call.remote_sip_name, call.remote_sip_server,
                              Setting_Time2String(call.born_tick, " "))) != 0 ||
         std::any_of(call.records.begin(), call.records.end(),
                     [this](std::uint64_t record) { return known_.count(record) != 0; });
}

void ImportedCalls::Note(const CdrCall& call) {
  for (const std::uint64_t record : call.records) {
    if (known_.count(record) == 0) records_.push_back(record);
  }
}

bool ImportedCalls::Save() const {
  std::string lines;
  const std::size_t forgotten = std::max(records_.size(), kRecordsMax) - kRecordsMax;
  for (std::size_t i = forgotten; i < records_.size(); ++i) {
    lines += Format("%016llx\n", static_cast<unsigned long long>(records_[i]));
  }
  PrivateFile file;
  return file.CreateBeside(file_) && file.Write(lines.data(), lines.size()) && file.Close() &&
         file.MoveTo(file_);
}

}  // namespace desk
