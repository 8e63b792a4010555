#include "platform/EtlMisc.h"

#include <filesystem>

bool ETL_MiscHelper::pathFileExist(const char* path) {
  std::error_code ignored;
  return path != nullptr && std::filesystem::exists(path, ignored);
}
