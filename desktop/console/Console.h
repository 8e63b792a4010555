// What commands act on and print to: a phone in somebody's hands.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include "desktop/phone/Phone.h"

namespace desk {

class LogServer;

struct Console {
  Phone& phone;
  std::ostream& out;
  std::filesystem::path folder = {};  // where a file is that is named without one
  LogServer* logServer = nullptr;     // the phone's own; null: none
  bool wantsToQuit = false;

  // One line of an answer.
  void Say(const std::string& line) const { out << "  " << line << "\n"; }
};

// Prints what the phone has to tell: what was taken from it, or what it has now.
void PrintNews(std::ostream& out, const std::vector<News>& news);
void ReportNews(Console& console);

// Writes the trace out up to this level, to a file when one is named. Throws CommandError when that
// cannot be written to.
void SetTrace(Console& console, int level, const std::filesystem::path& file);

}  // namespace desk
