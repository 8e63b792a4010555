// The talk logic's two operations; hanging up is the user's, and so a command's.
#include "desktop/platform/Talk.h"

#include "desktop/platform/Desktop.h"
#include "desktop/platform/Text.h"
#include "platform/TalkLogic.h"

using desk::Desktop;

// One line: a second call waits until the first has ended, here as on a phone with one line.
bool talkLogic_CallOut(const std::string& number, const std::string& name, int accountId) {
  Desktop& desktop = Desktop::Current();
  desktop.journal.Add("call-out " + number + " " + name + desk::Format(" account %d", accountId));
  if (number.empty() || desktop.talk.call) return false;
  desktop.talk.dialScreen.reset();
  desktop.talk.call = desk::TalkCall{number, name, accountId, desktop.clock().Wall()};
  return true;
}

void talkLogic_EnterDialUI(const std::string& number, int accountId, bool editable) {
  Desktop& desktop = Desktop::Current();
  desktop.journal.Add("dial-screen " + number +
                      desk::Format(" account %d editable %d", accountId, editable ? 1 : 0));
  desktop.talk.dialScreen = number;
}
