// Scripts for the desktop phone. Whatever a line is, the phone goes on: each wrong one is named,
// what is shown is printable, and the history stands in its file in the end.
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Script.h"
#include "desktop/phone/Phone.h"
#include "tests/fuzz/Fuzz.h"

namespace desk {
namespace {

// False for a line that would reach beyond this phone: other files, the network.
bool StaysHere(const std::string& line) {
  try {
    const std::vector<std::string> words = SplitWords(line);
    return words.empty() || (words[0] != "network" && words[0] != "trace" && words[0] != "cdr");
  } catch (const CommandError&) {
    return true;
  }
}

std::string LinesThatStay(const std::string& input) {
  std::istringstream lines(input);
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    if (StaysHere(line)) kept += line + "\n";
  }
  return kept;
}

// What the phone prints for the script, all of it printable.
std::string Play(Phone& phone, const std::string& script, std::ostringstream* out) {
  std::istringstream lines(script);
  std::ostringstream errors;
  out->str("");
  phone.wantsToQuit = false;
  const int wrong = RunScript(phone, lines, "script", errors);
  const std::string complaints = errors.str();
  EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), wrong);
  EXPECT_TRUE(IsPrintableText(complaints)) << complaints;
  EXPECT_TRUE(IsPrintableText(out->str())) << out->str();
  return out->str();
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
  std::ostringstream out;
  Phone phone(root.path(), profile, std::make_unique<ManualClock>(1791363600), out);
  Play(phone, LinesThatStay(input), &out);
  Play(phone, "save", &out);
  phone.PowerCycle();
  const std::string calls = Play(phone, "list all 0 400", &out);
  if (std::filesystem::exists(phone.HistoryFile())) {
    EXPECT_TRUE(StrictItems(ReadFile(phone.HistoryFile()), "root_call_log"));
  }
  // Saved again, which the removal of a type without calls brings about, it is the same.
  Play(phone, "remove (call_log_77) all\nsave", &out);
  phone.PowerCycle();
  EXPECT_EQ(Play(phone, "list all 0 400", &out), calls);
}

}  // namespace desk
