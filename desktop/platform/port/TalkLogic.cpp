// Calls begin here; hanging up is the user's, and so a command's.
#include "platform/TalkLogic.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Text.h"

using desk::Platform;

// One line: a second call waits until the first has ended, here as on a phone with one line.
bool talkLogic_CallOut(const std::string& number, const std::string& name, int accountId) {
  Platform& platform = Platform::Current();
  platform.journal.Add("call-out " + number + " " + name + desk::Format(" account %d", accountId));
  if (number.empty() || platform.talk.call) return false;
  platform.talk.dialScreen.reset();
  platform.talk.call = desk::TalkCall{number, name, accountId, platform.clock().Wall()};
  return true;
}

void talkLogic_EnterDialUI(const std::string& number, int accountId, bool editable) {
  Platform& platform = Platform::Current();
  platform.journal.Add("dial-screen " + number +
                       desk::Format(" account %d editable %d", accountId, editable ? 1 : 0));
  platform.talk.dialScreen = number;
}
