// Idle statuses, LED, backlight and menu titles: kept for the phone to show, noted in the journal.
#include "desktop/platform/Display.h"

#include <utility>

#include "desktop/platform/Desktop.h"
#include "desktop/platform/Quietly.h"
#include "desktop/platform/Text.h"
#include "platform/Backlight.h"
#include "platform/CommonUnits.h"
#include "platform/LedLamp.h"
#include "platform/MenuTitle.h"

using desk::Desktop;

namespace {

void Note(std::string line) {
  Desktop& desktop = Desktop::Current();
  desktop.journal.Add(std::move(line));
  if (desktop.onDisplayChange) desktop.onDisplayChange();
}

void Switch(std::set<int>& events, int event, bool on, const char* name) {
  desk::Quietly([&] {
    if (on) {
      events.insert(event);
    } else {
      events.erase(event);
    }
    Note(desk::Format("%s %d %s", name, event, on ? "on" : "off"));
  });
}

class DesktopMenuTitleManager : public NS_MENU::CMenuTitleManager {};

}  // namespace

void CommonUnits_AddStatus(int id, const std::string& text) {
  Desktop::Current().display.statuses[id] = text;
  Note(desk::Format("status %d ", id) + text);
}

void CommonUnits_RemoveStatus(int id) {
  Desktop::Current().display.statuses.erase(id);
  Note(desk::Format("status %d off", id));
}

void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE event, bool on) {
  Switch(Desktop::Current().display.ledEvents, event, on, "led");
}

void backlight_RegisterEvent(BACK_LIGHT_TYPE type, bool on) {
  Switch(Desktop::Current().display.backlightEvents, type, on, "backlight");
}

NS_MENU::CMenuTitleManager* NS_MENU::CMenuTitleManager::GetInstance() {
  static DesktopMenuTitleManager manager;
  return Desktop::Current().hasMenu ? &manager : nullptr;
}

void NS_MENU::CMenuTitleManager::SetTitle(const std::string& action, const std::string& title) {
  Desktop::Current().display.menuTitles[action] = title;
  Desktop::Current().journal.Add("title " + action + " " + title);
}
