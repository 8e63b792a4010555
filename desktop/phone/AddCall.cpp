// The module only says that it refused a call; the reasons are in what it asked the phone.
#include "desktop/phone/AddCall.h"

#include "CallLog.h"
#include "desktop/platform/Platform.h"
#include "desktop/platform/Text.h"
#include "platform/ConfigParser.h"

namespace desk {

std::string AddCall(Platform& platform, const CallLogAddItemData& call) {
  constexpr int kMissed = 2;
  if (CallLog_AddLog(call) == 0) return {};
  if (configParser_GetConfigInt("HistorySavedSwitch") != 1) {
    return "the history is switched off (HistorySavedSwitch is not 1)";
  }
  const std::string name = call.local_sip_name + "@" + call.local_sip_server;
  const Account* const account = platform.accounts.FindByFullName(name);
  if (call.type == kMissed && account != nullptr && !account->keeps_missed) {
    return "the account " + Printable(name) + " keeps no missed calls";
  }
  if (call.type < 1 || call.type > 4) return "a call is outgoing, missed, received or forwarded";
  return "out of memory";
}

}  // namespace desk
