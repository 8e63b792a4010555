// Runs lines one after the other; a wrong one is named and passed over.
#include "desktop/console/Script.h"

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Input.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

// What is shown of a line: up to a password.
std::string WithoutPassword(const std::string& line) {
  constexpr char kOption[] = "password=";
  const std::size_t at = line.find(kOption);
  return at == line.npos ? line : line.substr(0, at) + kOption + "***";
}

// False for a wrong line.
bool RunLine(Console& console, const std::string& line, const std::string& place,
             std::ostream& errors) {
  console.out << (line.empty() || line.front() == '#' ? "" : "phone> ")
              << Printable(WithoutPassword(line)) << "\n";
  try {
    RunCommand(console, line);
    return true;
  } catch (const CommandError& error) {
    console.out << std::flush;
    errors << place << ": " << Printable(error.what()) << std::endl;
    return false;
  }
}

}  // namespace

int RunScript(Console& console, std::istream& lines, const std::string& name,
              std::ostream& errors) {
  int wrong = 0;
  int number = 0;
  for (std::string line; !console.wantsToQuit && std::getline(lines, line);) {
    if (console.phone.interrupted()) break;  // it may be half a line
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!RunLine(console, line, name + ":" + std::to_string(++number), errors)) ++wrong;
  }
  console.out << std::flush;
  return wrong;
}

int RunScriptFile(Console console, const std::string& name, std::ostream& errors) {
  const bool isFile = name != Input::kStandard;
  Input input(console, name);
  std::istream lines(&input);
  if (isFile) console.folder /= std::filesystem::path(name).parent_path();
  const int wrong = RunScript(console, lines, input.name(), errors);
  if (lines.bad()) throw CommandError("cannot read " + input.name() + ": " + input.error());
  return wrong;
}

}  // namespace desk
