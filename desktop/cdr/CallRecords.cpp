// Brings the file's rows and the extension's calls together, and keeps count of the rows.
#include "desktop/cdr/CallRecords.h"

#include "desktop/cdr/CdrCalls.h"
#include "desktop/cdr/CdrFile.h"

namespace desk {
namespace {

constexpr std::size_t kBadNamed = 20;

}  // namespace

CdrImport ReadCallRecords(std::istream& in, const CdrOptions& options) {
  CdrImport import;
  CdrFile file(in, options.progress);
  CdrCalls calls(options.extension, options.server);
  CdrRow row;
  while (file.Next(&row)) {
    ++import.rows;
    if (!row.fault.empty()) {
      if (++import.badRows <= kBadNamed) import.bad.push_back({row.line, row.fault});
    } else if (!calls.Add(row.leg)) {
      ++import.other;
    }
  }
  import.calls = calls.Take();
  import.older = calls.older();
  import.extensions = calls.OtherExtensions();
  return import;
}

}  // namespace desk
