#include "platform/NetStatus.h"

#include "desktop/platform/Platform.h"

int netGetNetworkSta() {
  constexpr int kAvailable = 2;
  return desk::Platform::Current().networkUp ? kAvailable : 0;
}
