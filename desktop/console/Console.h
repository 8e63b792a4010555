// What commands act on and print to: a phone in somebody's hands.
#pragma once

#include <filesystem>
#include <ostream>

#include "desktop/phone/Phone.h"

namespace desk {

class LogServer;

struct Console {
  Phone& phone;
  std::ostream& out;
  std::filesystem::path folder = {};  // where a file is that is named without one
  LogServer* logServer = nullptr;     // the phone's own; null: none
  bool wantsToQuit = false;
};

// Prints what the phone has to tell: what was taken from it, or what it has now.
void PrintNews(std::ostream& out, const std::vector<News>& news);
void ReportNews(Console& console);

}  // namespace desk
