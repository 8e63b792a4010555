// The table of all commands, and how one line is carried out.
#include "desktop/console/Commands.h"

#include <utility>

namespace desk {

const std::vector<CommandGroup>& AllCommands() {
  static const std::vector<CommandGroup> kGroups = {
      CallCommands(),   ListCommands(),    SearchCommands(), TalkCommands(),
      ServerCommands(), SettingCommands(), TimeCommands(),   HelpCommands()};
  return kGroups;
}

const Command* FindCommand(const std::string& name) {
  for (const CommandGroup& group : AllCommands()) {
    for (const Command& command : group.commands) {
      if (command.name == name) return &command;
    }
  }
  return nullptr;
}

void RunCommand(Console& console, const std::string& line) {
  std::vector<std::string> words = SplitWords(line);
  if (words.empty()) return;
  const Command* const command = FindCommand(words.front());
  if (command == nullptr) {
    throw CommandError("unknown command \"" + words.front() + "\" (help lists them)");
  }
  words.erase(words.begin());
  Arguments arguments(std::move(words), command->name + " " + command->arguments);
  command->run(console, arguments);
  console.phone.platform().RunDue();
  ReportNews(console);
}

}  // namespace desk
