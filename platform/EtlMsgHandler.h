// Messages of the UI process: what a message looks like to a handler, how handlers are registered,
// and how a module tells the applications something.
//
// Thread: handlers are called on the UI application's message thread only. The two registration
// calls are made on that thread as well; the two notify calls may be made from any thread.
#pragma once

// The broadcast that a configuration item has changed; wParam names the item.
constexpr unsigned int BROAD_MSG_CONFIG_CHANGE = 0x10007;

// The item of the server call logs' sources: their file was changed, by whoever provisions the
// phone.
constexpr unsigned int ST_BS_CALLLOG = 0x28;

namespace ETL_MsgQueueHelper {

// One message on its way through a handler. The platform owns it; it is valid only during the call.
class msgObject {
 public:
  unsigned int message = 0;  // message number
  unsigned int wParam = 0;   // first parameter; for 0x8113 the timer's id
  int lParam = 0;            // second parameter

  // Answers the sender. At most one answer counts, the first; without a waiting sender it is
  // dropped. Never throws.
  void ReplyMessage(int result);
};

}  // namespace ETL_MsgQueueHelper

// A message handler; its result tells the message loop whether the message was dealt with.
using EtlMsgHandle = int (*)(ETL_MsgQueueHelper::msgObject& msg);

// Adds `handle` for every message from `first` to `last` (both inclusive). From then on the message
// loop calls it with each such message, after the handlers registered before it.
// True when it was added; false when `handle` is null, the range is empty, or the same function
// already stands for the same range.
bool EtlMsgHandler_RegisterMsgHandle(unsigned int first, unsigned int last, EtlMsgHandle handle);

// Removes what RegisterMsgHandle added with the same range and function. A handler may remove
// itself while it runs. False when there is no such registration.
bool EtlMsgHandler_UnregisterMsgHandle(unsigned int first, unsigned int last, EtlMsgHandle handle);

// Sends a message to the application and returns without waiting for it. `sync` is the platform's
// wait flag; the module always passes false. True when the message was queued.
bool EtlMsgHandler_NotifyApp(bool sync, unsigned int message, unsigned int wParam, int lParam);

// The same for all applications, with `extraSize` bytes at `extra`, which are copied before the
// call returns. `extra` may be null when `extraSize` is 0.
bool EtlMsgHandler_NotifyAppEx(bool sync, unsigned int message, unsigned int wParam, int lParam,
                               int extraSize, const void* extra);
