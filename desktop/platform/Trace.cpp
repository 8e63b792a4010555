// One line per call, with credentials masked, to the journal and, by level, out of the process.
#include "desktop/platform/Trace.h"

#include "desktop/platform/Journal.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {

void Trace::Write(int level, const std::string& text) {
  const std::string masked = MaskCredentials(text);
  journal_.Add(Format("trace %d ", level) + masked);
  if (level > level_) return;
  // One call per line, so that lines of two threads never mix.
  std::FILE* out = file_ ? file_.get() : stderr;
  std::fprintf(out, "[%d] %s\n", level, Printable(masked).c_str());
  std::fflush(out);
}

bool Trace::SetFile(const std::filesystem::path& file) {
  file_.reset(std::fopen(file.c_str(), "ae"));
  return file_ != nullptr;
}

}  // namespace desk
