#include "platform/MenuTitle.h"

#include "desktop/platform/Platform.h"

using desk::Platform;

namespace {

class DesktopMenuTitleManager : public NS_MENU::CMenuTitleManager {};

}  // namespace

NS_MENU::CMenuTitleManager* NS_MENU::CMenuTitleManager::GetInstance() {
  static DesktopMenuTitleManager manager;
  return Platform::Current().hasMenu ? &manager : nullptr;
}

void NS_MENU::CMenuTitleManager::SetTitle(const std::string& action, const std::string& title) {
  Platform::Current().display.menuTitles[action] = title;
  Platform::Current().journal.Add("title " + action + " " + title);
}
