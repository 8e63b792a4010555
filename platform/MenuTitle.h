// Titles of menu entries, which come from a file: any text, any length, must not throw but for want
// of memory. Message thread only.
#pragma once

#include <string>

namespace NS_MENU {

class CMenuTitleManager {
 public:
  // The one manager, or null while the phone has no menu.
  static CMenuTitleManager* GetInstance();

  // Sets the title of the menu entry that opens with the click action `action`.
  void SetTitle(const std::string& action, const std::string& title);

 protected:
  CMenuTitleManager() = default;
  ~CMenuTitleManager() = default;
};

}  // namespace NS_MENU
