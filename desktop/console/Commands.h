// The phone's commands: one table, in groups by what a user wants to do.
#pragma once

#include <string>
#include <vector>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"

namespace desk {

struct Command {
  std::string name;
  std::string arguments;  // as help shows them
  std::string help;       // one line
  void (*run)(Console& console, Arguments& arguments);
};

struct CommandGroup {
  std::string title;
  std::vector<Command> commands;
};

const std::vector<CommandGroup>& AllCommands();

// Null when there is no such command.
const Command* FindCommand(const std::string& name);

// Carries out one line and prints what came of it; throws CommandError for a wrong one.
void RunCommand(Console& console, const std::string& line);

// The groups, each in its own file.
CommandGroup CallCommands();
CommandGroup ListCommands();
CommandGroup SearchCommands();
CommandGroup TalkCommands();
CommandGroup ServerCommands();
CommandGroup SettingCommands();
CommandGroup TimeCommands();
CommandGroup HelpCommands();

}  // namespace desk
