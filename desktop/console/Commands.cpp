// The table of all commands, how one line is carried out, and help.
#include "desktop/console/Commands.h"

#include <utility>

#include "desktop/console/Screen.h"

namespace desk {
namespace {

// The group's commands, in as many rows as a narrow terminal needs.
void AddRows(const CommandGroup& group, Table* rows) {
  constexpr std::size_t kWidest = 60;
  rows->push_back({group.name, ""});
  for (const Command& command : group.commands) {
    if (rows->back()[1].size() + command.name.size() > kWidest) rows->push_back({"", ""});
    rows->back()[1] += command.name + (&command == &group.commands.back() ? "" : ", ");
  }
}

void ShowGroups(Console& console) {
  Table rows;
  for (const CommandGroup& group : AllCommands()) AddRows(group, &rows);
  PrintTable(console.out, rows);
  console.Say("\"help GROUP\" explains a row's commands, \"help COMMAND\" shows its arguments.");
  console.Say("Words with blanks go into quotes: name=\"Anna Berg\".");
}

void ShowGroup(Console& console, const CommandGroup& group) {
  console.Say(group.title);
  Table rows;
  for (const Command& command : group.commands) rows.push_back({" " + command.name, command.help});
  PrintTable(console.out, rows);
}

void ShowCommand(Console& console, const Command& command) {
  console.Say(command.name + " " + command.arguments);
  console.Say(command.help);
}

void Help(Console& console, Arguments& arguments) {
  if (!arguments.HasWord()) return ShowGroups(console);
  const std::string name = arguments.Word("the command");
  arguments.Done();
  for (const CommandGroup& group : AllCommands()) {
    if (group.name == name) return ShowGroup(console, group);
  }
  ShowCommand(console, FindCommand(name, " (help lists them)"));
}

void Quit(Console& console) { console.wantsToQuit = true; }

CommandGroup HelpCommands() {
  return {"prompt",
          "Help and the end",
          {
              {"help", "[GROUP|COMMAND]", "the commands, those of a group, or the arguments of one",
               Help},
              {"quit", "", "saves and switches the phone off", Quit},
          }};
}

void Run(const Command& command, Console& console, Arguments& arguments) {
  if (const auto* const run = std::get_if<void (*)(Console&, Arguments&)>(&command.run)) {
    return (*run)(console, arguments);
  }
  arguments.Done();
  std::get<void (*)(Console&)>(command.run)(console);
}

}  // namespace

const std::vector<CommandGroup>& AllCommands() {
  static const std::vector<CommandGroup> kGroups = {
      CallCommands(),   ListCommands(),    SearchCommands(), TalkCommands(),
      ServerCommands(), SettingCommands(), TimeCommands(),   HelpCommands()};
  return kGroups;
}

const Command& FindCommand(const std::string& name, const std::string& hint) {
  for (const CommandGroup& group : AllCommands()) {
    for (const Command& command : group.commands) {
      if (command.name == name) return command;
    }
  }
  throw CommandError("unknown command \"" + name + "\"" + hint);
}

CallLogSimpleListData ParsePage(Arguments& arguments, int rows) {
  CallLogSimpleListData page;
  page.request_index = arguments.IntOr("the first row", 0);
  page.request_count = arguments.IntOr("the number of rows", rows);
  arguments.Done();
  return page;
}

void RunCommand(Console& console, const std::string& line) {
  std::vector<std::string> words = SplitWords(line);
  if (words.empty()) return;
  const Command& command = FindCommand(words.front(), " (help lists them)");
  words.erase(words.begin());
  Arguments arguments(std::move(words), command.name + " " + command.arguments);
  Run(command, console, arguments);
  console.phone.platform().RunDue();
  ReportNews(console);
}

}  // namespace desk
