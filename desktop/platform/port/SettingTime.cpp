#include "platform/SettingTime.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/TimeText.h"

std::string Setting_CallLogTime2String(long time, const std::string& separator) {
  return desk::ListTimeText(time, desk::Platform::Current().clock().Wall(), separator);
}

std::string Setting_Time2String(long time, const std::string& separator) {
  return desk::FullTimeText(time, separator);
}
