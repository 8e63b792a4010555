#include "platform/EtlTrace.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Quietly.h"
#include "desktop/platform/Text.h"

void ETL_TraceHelper::etlTrace(int level, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  desk::Quietly(
      [&] { desk::Platform::Current().trace.Write(level, desk::FormatV(format, arguments)); });
  va_end(arguments);
}
