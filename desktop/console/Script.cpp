// Runs lines one after the other; a wrong one is named and passed over.
#include "desktop/console/Script.h"

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/platform/Text.h"

namespace desk {

int RunScript(Console& console, std::istream& lines, const std::string& name,
              std::ostream& errors) {
  int wrong = 0;
  int number = 0;
  for (std::string line; !console.wantsToQuit && std::getline(lines, line);) {
    if (console.phone.interrupted()) break;  // it may be half a line
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    console.out << (line.empty() || line.front() == '#' ? "" : "phone> ") << Printable(line)
                << "\n";
    try {
      RunCommand(console, line);
    } catch (const CommandError& error) {
      ++wrong;
      console.out << std::flush;
      errors << name << ":" << number << ": " << Printable(error.what()) << std::endl;
    }
  }
  console.out << std::flush;
  return wrong;
}

}  // namespace desk
