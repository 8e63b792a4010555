// Help and leaving.
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"

namespace desk {
namespace {

void ShowCommand(std::ostream& out, const std::string& name) {
  const Command* const command = FindCommand(name);
  if (command == nullptr) throw CommandError("unknown command \"" + name + "\"");
  out << "  " << command->name << " " << command->arguments << "\n  " << command->help << "\n";
}

void ShowCommands(std::ostream& out) {
  for (const CommandGroup& group : AllCommands()) {
    out << "  " << group.title << "\n";
    std::vector<std::vector<std::string>> rows;
    for (const Command& command : group.commands) {
      rows.push_back({" " + command.name, command.help});
    }
    PrintTable(out, rows);
  }
  out << "  \"help COMMAND\" shows its arguments. Words with blanks go into quotes: "
         "name=\"Anna Berg\".\n";
}

void Help(Console& console, Arguments& arguments) {
  if (!arguments.HasWord()) return ShowCommands(console.out);
  const std::string name = arguments.Word("the command");
  arguments.Done();
  ShowCommand(console.out, name);
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
