// Idle statuses go to the display; the key-pad form is KeyPad's.
#include "platform/CommonUnits.h"

#include "desktop/platform/Platform.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/contacts/KeyPad.h"

using desk::Platform;

void CommonUnits_AddStatus(int id, const std::string& text) {
  Platform::Current().display.statuses[id] = text;
  Platform::Current().NoteDisplay(desk::Format("status %d ", id) + text);
}

void CommonUnits_RemoveStatus(int id) {
  Platform::Current().display.statuses.erase(id);
  Platform::Current().NoteDisplay(desk::Format("status %d off", id));
}

std::string CommonUnits_ToKeyString(const std::string& name) { return desk::ToKeyString(name); }
