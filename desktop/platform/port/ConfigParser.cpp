#include "platform/ConfigParser.h"

#include "desktop/platform/Platform.h"

int configParser_GetConfigInt(const char* key) {
  const auto& config = desk::Platform::Current().config;
  const auto found = key != nullptr ? config.find(key) : config.end();
  return found != config.end() ? found->second : 0;
}
