// Messages and handlers, over the message loop.
#include "platform/EtlMsgHandler.h"

#include <utility>

#include "desktop/platform/Platform.h"
#include "desktop/platform/Quietly.h"

void ETL_MsgQueueHelper::msgObject::ReplyMessage(int result) {
  desk::Quietly([&] { desk::Platform::Current().loop.Reply(*this, result); });
}

bool EtlMsgHandler_RegisterMsgHandle(unsigned int first, unsigned int last, EtlMsgHandle handle) {
  return desk::Platform::Current().loop.Register(first, last, handle);
}

bool EtlMsgHandler_UnregisterMsgHandle(unsigned int first, unsigned int last, EtlMsgHandle handle) {
  return desk::Platform::Current().loop.Unregister(first, last, handle);
}

bool EtlMsgHandler_NotifyApp(bool /*sync*/, unsigned int message, unsigned int wParam, int lParam) {
  desk::Platform::Current().loop.NotifyApp({message, wParam, lParam, {}});
  return true;
}

bool EtlMsgHandler_NotifyAppEx(bool /*sync*/, unsigned int message, unsigned int wParam, int lParam,
                               int extraSize, const void* extra) {
  if (extraSize < 0 || (extraSize > 0 && extra == nullptr)) return false;
  std::string copy;
  if (extraSize > 0) {
    copy.assign(static_cast<const char*>(extra), static_cast<std::size_t>(extraSize));
  }
  desk::Platform::Current().loop.NotifyApp({message, wParam, lParam, std::move(copy)});
  return true;
}
