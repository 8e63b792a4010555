// Commands for the phone's settings, its file and its power.
#include <climits>
#include <cstdlib>
#include <fstream>

#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

const char* OnOff(bool on) { return on ? "on" : "off"; }

void Config(Console& console, Arguments& arguments) {
  auto& config = console.phone.platform().config;
  if (!arguments.HasWord()) {
    for (const auto& [key, value] : config) console.out << "  " << key << " = " << value << "\n";
    return;
  }
  const std::string key = arguments.Word("the key");
  if (arguments.HasWord()) config[key] = ParseInt(arguments.Word("the value"), "the value");
  arguments.Done();
  const auto found = config.find(key);
  console.out << "  " << Printable(key) << " = "
              << (found != config.end() ? std::to_string(found->second) : "(not set)") << "\n";
}

void AccountSwitch(Console& console, Arguments& arguments) {
  Accounts& accounts = console.phone.platform().accounts;
  if (arguments.HasWord()) {
    const std::string name = arguments.Word("the account");
    Account* const account = accounts.Find(name);
    if (account == nullptr) throw CommandError("no account \"" + name + "\"");
    const std::string what = arguments.Word("usable or missed");
    if (what != "usable" && what != "missed") {
      throw CommandError("usable or missed is wanted, not \"" + what + "\"");
    }
    (what == "usable" ? account->usable : account->keeps_missed) =
        ParseSwitch(arguments.Word("on or off"));
    arguments.Done();
  }
  std::vector<std::vector<std::string>> rows;
  for (const Account& account : accounts.All()) {
    rows.push_back({std::to_string(account.id), account.FullName(),
                    std::string("usable ") + OnOff(account.usable),
                    std::string("keeps missed calls ") + OnOff(account.keeps_missed)});
  }
  PrintTable(console.out, rows);
}

void ShowContacts(Console& console, Arguments& arguments) {
  arguments.Done();
  std::vector<std::vector<std::string>> rows;
  for (const Contact& contact : console.phone.platform().contacts.All()) {
    std::string numbers;
    for (const std::string& number : contact.numbers) numbers += Printable(number) + " ";
    rows.push_back({Printable(contact.name), numbers, Printable(contact.photo)});
  }
  PrintTable(console.out, rows);
}

void Network(Console& console, Arguments& arguments) {
  if (arguments.HasWord()) {
    console.phone.platform().networkUp = ParseSwitch(arguments.Word("on or off"));
  }
  arguments.Done();
  console.out << "  network " << OnOff(console.phone.platform().networkUp) << "\n";
}

void Save(Console& console, Arguments& arguments) {
  arguments.Done();
  console.out << (console.phone.Save() ? "  saved\n" : "  nothing to save\n");
}

void ShowFile(Console& console, Arguments& arguments) {
  arguments.Done();
  std::ifstream file(console.phone.HistoryFile());
  if (!file) {
    console.out << "  there is no history file yet\n";
    return;
  }
  for (std::string line; std::getline(file, line);) {
    const bool indented = !line.empty() && line.front() == '\t';
    console.out << (indented ? "    " : "  ") << Printable(line.substr(indented ? 1 : 0)) << "\n";
  }
}

void PowerCycle(Console& console, Arguments& arguments) {
  arguments.Done();
  console.phone.PowerCycle();
  console.out << "  the phone has started again\n";
}

// The platform's broadcast that a configuration item has changed, 0x28 or 0x47 for this module.
void Broadcast(Console& console, Arguments& arguments) {
  const std::string item = arguments.Word("the item");
  arguments.Done();
  char* end = nullptr;
  const unsigned long value = std::strtoul(item.c_str(), &end, 0);
  if (*end != '\0' || item.empty() || value > UINT_MAX) {
    throw CommandError("the item must be a number such as 0x28, not \"" + item + "\"");
  }
  const auto reply = console.phone.platform().loop.Send(
      {BROAD_MSG_CONFIG_CHANGE, static_cast<unsigned int>(value), 0, {}});
  console.out << (reply ? "  replied " + std::to_string(*reply) : "  no reply") << "\n";
}

void ShowJournal(Console& console, Arguments& arguments) {
  const std::string what = arguments.WordOr("20");
  arguments.Done();
  Journal& journal = console.phone.platform().journal;
  if (what == "clear") {
    journal.Clear();
    return;
  }
  const int wanted = ParseInt(what, "the number of lines");
  const std::vector<std::string> lines = journal.Lines();
  const std::size_t count = wanted < 0 ? 0 : static_cast<std::size_t>(wanted);
  for (std::size_t i = lines.size() > count ? lines.size() - count : 0; i < lines.size(); ++i) {
    console.out << "  " << Printable(lines[i]) << "\n";
  }
}

void SetTrace(Console& console, Arguments& arguments) {
  Trace& trace = console.phone.platform().trace;
  const int level = ParseInt(arguments.Word("the level"), "the level");
  const std::string file = arguments.WordOr("");
  arguments.Done();
  if (!file.empty() && !trace.SetFile(console.folder / file))
    throw CommandError("cannot write to " + file);
  trace.SetLevel(level);
}

}  // namespace

CommandGroup SettingCommands() {
  return {
      "The phone",
      {
          {"config", "[KEY [VALUE]]", "configuration values, such as HistorySavedSwitch", Config},
          {"account", "[NAME usable|missed on|off]",
           "the accounts; whether one can be used, and keeps missed calls", AccountSwitch},
          {"contacts", "", "the contact directory", ShowContacts},
          {"network", "[on|off]", "the network", Network},
          {"save", "", "saves the history now", Save},
          {"file", "", "the history file as it stands on the disk", ShowFile},
          {"power-cycle", "", "cuts the power and starts the phone again", PowerCycle},
          {"broadcast", "ITEM",
           "a configuration item changed: 0x28 the server sources, 0x47 a removal", Broadcast},
          {"journal", "[LINES | clear]", "what the module asked the platform to do", ShowJournal},
          {"trace", "LEVEL [FILE]", "writes the trace out up to a level; 0 stops it", SetTrace},
      }};
}

}  // namespace desk
