// Scripts for the desktop phone. Whatever a line is, the phone goes on: each wrong one is named,
// what is shown is printable, and the history stands in its file in the end.
#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
#include "desktop/console/Script.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

// The lines that do not reach beyond this phone, to other files or the network.
std::string LinesThatStay(const std::string& input) {
  static const std::set<std::string> kBeyond = {"network", "trace", "cdr"};
  std::istringstream lines(input);
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    try {
      const Strings words = SplitWords(line);
      if (!words.empty() && kBeyond.count(words[0]) > 0) continue;
    } catch (const CommandError&) {
    }
    kept += line + "\n";
  }
  return kept;
}

// What the phone prints for the script, all of it printable.
std::string Play(Phone& phone, const std::string& script) {
  std::istringstream lines(script);
  std::ostringstream errors;
  std::ostringstream out;
  Console console{phone, out};
  const int wrong = RunScript(console, lines, "script", errors);
  const std::string complaints = errors.str();
  EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), wrong);
  EXPECT_TRUE(IsPrintableText(complaints)) << complaints;
  EXPECT_TRUE(IsPrintableText(out.str())) << out.str();
  return out.str();
}

}  // namespace

void FuzzOne(const std::string& input) {
  static TemporaryDirectory root;
  std::filesystem::remove_all(root.path() / "config");
  setenv("TZ", "UTC0", 1);
  Profile profile;
  profile.config = {{"HistorySavedSwitch", 1}, {"BDDirectoryShowSwitch", 1}};
  profile.accounts = {Account(7, "anna", "sip.example.org")};
  profile.contacts = {{"Zo\u00EB", {"612", "613"}, "zoe.png"}};
  profile.network_up = false;
  Phone phone(root.path(), profile, std::make_unique<ManualClock>(1791363600));
  Play(phone, LinesThatStay(input));
  Play(phone, "save");
  phone.PowerCycle();
  const std::string calls = Play(phone, "list all 0 400");
  // Saved again, which the removal of a type without calls brings about, it is the same.
  Play(phone, "remove (call_log_77) all\nsave");
  phone.PowerCycle();
  EXPECT_EQ(Play(phone, "list all 0 400"), calls);
}

}  // namespace desk
