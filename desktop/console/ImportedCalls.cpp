// Reads the history's file and that of the hashes, and writes the latter.
#include "desktop/console/ImportedCalls.h"

#include <algorithm>
#include <fstream>

#include "desktop/platform/PrivateFile.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr std::size_t kRecordsMax = 100'000;

// A call's line there but for the name, which a contact may have changed. One with a character that
// XML writes otherwise is not found.
std::string InHistory(const CdrCall& call) {
  return Format("\t<item type=\"%d\" born_tick=\"%d\"", call.type, call.born_tick) +
         " local_sip_name=\"" + call.local_sip_name + "\" local_sip_server=\"" +
         call.local_sip_server + "\" remote_sip_name=\"" + call.remote_sip_name +
         "\" remote_sip_server=\"" + call.remote_sip_server +
         Format("\" duration=\"%d\"/>", call.duration);
}

std::set<std::string> ReadHistory(const std::filesystem::path& file) {
  std::set<std::string> calls;
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t name = line.find(" remote_display_name=");
    const std::size_t rest = line.rfind(" remote_sip_name=");
    if (rest != line.npos && name < rest) calls.insert(line.erase(name, rest - name));
  }
  return calls;
}

}  // namespace

ImportedCalls::ImportedCalls(const std::filesystem::path& history)
    : file_(history.parent_path() / "imported_calls"), inHistory_(ReadHistory(history)) {
  PrivateFile::RemoveLeft(file_);
  std::ifstream file(file_);
  for (std::uint64_t record = 0; file >> std::hex >> record;) records_.push_back(record);
  known_.insert(records_.begin(), records_.end());
}

bool ImportedCalls::Has(const CdrCall& call) const {
  return inHistory_.count(InHistory(call)) != 0 ||
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
