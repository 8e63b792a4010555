// Commands for the phone's settings, its file, its power and its clocks.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <fstream>

#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/console/TimeInput.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

void Config(Console& console, Arguments& arguments) {
  auto& config = console.phone.platform().config;
  if (!arguments.HasWord()) {
    for (const auto& [key, value] : config)
      console.Say(Printable(key) + " = " + std::to_string(value));
    return;
  }
  const std::string key = arguments.Word("the key");
  if (arguments.HasWord()) config[key] = arguments.Int("the value");
  arguments.Done();
  const auto found = config.find(key);
  console.Say(Printable(key) + " = " +
              (found != config.end() ? std::to_string(found->second) : "(not set)"));
}

void SetAccount(Accounts& accounts, Arguments& arguments) {
  const std::string name = arguments.Word("the account");
  Account* const account = accounts.Find(name);
  if (account == nullptr) throw CommandError("no account \"" + name + "\"");
  bool& setting = arguments.Either("usable", "missed") ? account->usable : account->keeps_missed;
  const bool on = arguments.Either("on", "off");
  arguments.Done();
  setting = on;
}

void AccountSwitch(Console& console, Arguments& arguments) {
  Accounts& accounts = console.phone.platform().accounts;
  if (arguments.HasWord()) SetAccount(accounts, arguments);
  Table rows;
  for (const Account& account : accounts.All()) {
    rows.push_back({std::to_string(account.id), Printable(account.FullName()),
                    std::string("usable ") + OnOff(account.usable),
                    std::string("keeps missed calls ") + OnOff(account.keeps_missed)});
  }
  PrintTable(console.out, rows);
}

void ShowContacts(Console& console) {
  Table rows;
  for (const Contact& contact : console.phone.platform().contacts.All()) {
    std::string numbers;
    for (const std::string& number : contact.numbers) numbers += Printable(number) + " ";
    rows.push_back({Printable(contact.name), numbers, Printable(contact.photo)});
  }
  PrintTable(console.out, rows);
}

void Network(Console& console, Arguments& arguments) {
  bool& up = console.phone.platform().networkUp;
  if (arguments.HasWord()) up = arguments.Either("on", "off");
  arguments.Done();
  console.Say(std::string("network ") + OnOff(up));
}

void Save(Console& console) {
  const auto outcome = console.phone.Save();
  const bool whole = outcome != NS_GUARD::HistoryGuard::Outcome::kIncomplete;
  console.Say(!outcome ? "nothing to save" : whole ? "saved" : "not saved");
}

void ShowFile(Console& console) {
  std::ifstream file(console.phone.HistoryFile());
  if (!file) return console.Say("there is no history file yet");
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() == '\t') line.replace(0, 1, "  ");
    console.Say(Printable(line));
  }
}

void PowerCycle(Console& console) {
  console.phone.PowerCycle();
  console.Say("the phone has started again");
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
  console.Say(reply ? "replied " + std::to_string(*reply) : "no reply");
}

void ShowJournal(Console& console, Arguments& arguments) {
  const std::string what = arguments.WordOr("20");
  arguments.Done();
  Journal& journal = console.phone.platform().journal;
  if (what == "clear") return journal.Clear();
  const std::vector<std::string> lines = journal.Lines();
  const int count =
      std::clamp(ParseInt(what, "the number of lines"), 0, static_cast<int>(lines.size()));
  for (auto line = lines.end() - count; line != lines.end(); ++line) console.Say(Printable(*line));
}

void TraceTo(Console& console, Arguments& arguments) {
  const int level = arguments.Int("the level");
  const std::string file = arguments.WordOr("");
  arguments.Done();
  SetTrace(console, level, file);
}

void PrintClock(Console& console) {
  console.Say(FullTimeText(console.phone.platform().clock().Wall(), " "));
}

void Wait(Console& console, Arguments& arguments) {
  const Milliseconds span = ParseSpan(arguments.Word("how long"));
  arguments.Done();
  if (!console.phone.Wait(span, [&] { ReportNews(console); })) {
    console.Say("the wait was interrupted");
  }
}

void WallClock(Console& console, Arguments& arguments) {
  if (arguments.HasWord()) {
    const std::time_t time = ParseLocalTime(arguments.Word("the time"));
    arguments.Done();
    ManualClock* const clock = console.phone.platform().manualClock();
    if (clock == nullptr) throw CommandError("the clock is the machine's; a script has its own");
    clock->SetWall(time);
  }
  PrintClock(console);
}

void TimeZone(Console& console, Arguments& arguments) {
  SetTimeZone(arguments.Word("the time zone"));
  arguments.Done();
  PrintClock(console);
}

}  // namespace

CommandGroup SettingCommands() {
  return {
      "phone",
      "The phone",
      {
          {"config", "[SETTING [VALUE]]", "configuration values, such as HistorySavedSwitch",
           Config},
          {"account", "[ACCOUNT usable|missed on|off]",
           "the accounts; whether one can be used, and keeps missed calls", AccountSwitch},
          {"contacts", "", "the contact directory", ShowContacts},
          {"network", "[on|off]", "the network", Network},
          {"save", "", "saves the history now", Save},
          {"file", "", "the history file as it stands on the disk", ShowFile},
          {"power-cycle", "", "cuts the power and starts the phone again", PowerCycle},
          {"broadcast", "ITEM",
           "a configuration item changed: 0x28 the server sources, 0x47 a removal", Broadcast},
          {"journal", "[LINES | clear]", "what the module asked the platform to do", ShowJournal},
          {"trace", "LEVEL [FILE]", "writes the trace out up to a level; 0 stops it", TraceTo},
      }};
}

CommandGroup TimeCommands() {
  return {"time",
          "Time",
          {
              {"wait", "SPAN", "lets time pass, such as 5s or 2h; at once in a script", Wait},
              {"clock", "[TIME]", "the wall clock; a script can set it", WallClock},
              {"timezone", "ZONE", "another time zone, such as Europe/Berlin", TimeZone},
          }};
}

}  // namespace desk
