// What the phone shows without being asked: idle statuses, LED, backlight and menu titles.
#pragma once

#include <map>
#include <set>
#include <string>

namespace desk {

struct Display {
  std::map<int, std::string> statuses;  // by status id
  std::set<int> ledEvents;
  std::set<int> backlightEvents;
  std::map<std::string, std::string> menuTitles;  // by click action

  bool operator==(const Display& other) const {
    return statuses == other.statuses && ledEvents == other.ledEvents &&
           backlightEvents == other.backlightEvents && menuTitles == other.menuTitles;
  }
};

}  // namespace desk
