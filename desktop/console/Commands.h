// The phone's commands: one table, in groups by what a user wants to do.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "CallLogRecords.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"

namespace desk {

struct Command {
  std::string name;
  std::string arguments;  // as help shows them
  std::string help;       // one line
  std::variant<void (*)(Console&), void (*)(Console&, Arguments&)> run;
};

struct CommandGroup {
  std::string name;  // for help
  std::string title;
  std::vector<Command> commands;
};

const std::vector<CommandGroup>& AllCommands();

// Throws CommandError, with a hint where to look, when there is none.
const Command& FindCommand(const std::string& name, const std::string& hint = {});

// Carries out one line and prints what came of it; throws CommandError for a wrong one.
void RunCommand(Console& console, const std::string& line);

// The page that the next words of a command ask for, which are its last: the first row, and how
// many.
CallLogSimpleListData ParsePage(Arguments& arguments, int rows);

// The groups that have files of their own.
CommandGroup CallCommands();
CommandGroup ListCommands();
CommandGroup SearchCommands();
CommandGroup TalkCommands();
CommandGroup ServerCommands();
CommandGroup SettingCommands();
CommandGroup TimeCommands();

}  // namespace desk
