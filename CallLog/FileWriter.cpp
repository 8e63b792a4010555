#include "CallLog/FileWriter.h"

#include <fstream>

namespace NS_CALLLOG {

void RewriteFile(const std::string& path, const std::string& text) {
  char noBuffer[1];
  std::ofstream file;
  file.rdbuf()->pubsetbuf(noBuffer, sizeof noBuffer);
  file.open(path, std::ios::out | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace NS_CALLLOG
