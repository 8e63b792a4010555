// Help and leaving.
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"

namespace desk {
namespace {

void Help(Console& console, Arguments& arguments) {
  if (arguments.HasWord()) {
    const std::string name = arguments.Word("the command");
    arguments.Done();
    const Command* const command = FindCommand(name);
    if (command == nullptr) throw CommandError("unknown command \"" + name + "\"");
    console.out << "  " << command->name << " " << command->arguments << "\n  " << command->help
                << "\n";
    return;
  }
  for (const CommandGroup& group : AllCommands()) {
    console.out << "  " << group.title << "\n";
    std::vector<std::vector<std::string>> rows;
    for (const Command& command : group.commands) {
      rows.push_back({" " + command.name, command.help});
    }
    PrintTable(console.out, rows);
  }
  console.out << "  \"help COMMAND\" shows its arguments. Words with blanks go into quotes: "
                 "name=\"Anna Berg\".\n";
}

void Quit(Console& console, Arguments& arguments) {
  arguments.Done();
  console.wantsToQuit = true;
}

}  // namespace

CommandGroup HelpCommands() {
  return {"Help",
          {
              {"help", "[COMMAND]", "the commands, or the arguments of one", Help},
              {"quit", "", "saves and switches the phone off", Quit},
          }};
}

}  // namespace desk
