// The place of a word is found in its command's arguments as help shows them: capitals stand for
// something of a kind, anything else for itself.
#include "desktop/console/Completion.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <sstream>
#include <system_error>

#include "CallLog.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/Commands.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/contacts/TextMatch.h"

namespace desk {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

bool Begins(const std::string& word, const std::string& begun) { return word.rfind(begun, 0) == 0; }

Words ThatBegin(Words words, const std::string& begun) {
  const auto other = [&](const std::string& word) { return !Begins(word, begun); };
  words.erase(std::remove_if(words.begin(), words.end(), other), words.end());
  return words;
}

Words CommandNames(const Console& /*console*/, const std::string& /*begun*/) {
  Words names;
  for (const CommandGroup& group : AllCommands()) {
    for (const Command& command : group.commands) names.push_back(command.name);
  }
  return names;
}

Words HelpTopics(const Console& console, const std::string& begun) {
  Words topics = CommandNames(console, begun);
  for (const CommandGroup& group : AllCommands()) topics.push_back(group.name);
  return topics;
}

Words TypeNames(const Console& /*console*/, const std::string& /*begun*/) {
  return {TypeName(0), TypeName(1), TypeName(2), TypeName(3), TypeName(4)};
}

// A contact's numbers stand for its name, too.
Words Numbers(const Console& console, const std::string& begun) {
  Words numbers;
  for (const Contact& contact : console.phone.platform().contacts.All()) {
    const bool named = !begun.empty() && BeginsWith(contact.name, begun);
    for (const std::string& number : contact.numbers) {
      if (named || Begins(number, begun)) numbers.push_back(number);
    }
  }
  return numbers;
}

Words AccountNames(const Console& console, const std::string& /*begun*/) {
  Words names;
  for (const Account& account : console.phone.platform().accounts.All()) {
    names.push_back(account.FullName());
  }
  return names;
}

Words ConfigKeys(const Console& console, const std::string& /*begun*/) {
  Words keys;
  for (const auto& [key, value] : console.phone.platform().config) keys.push_back(key);
  return keys;
}

Words SourceRows(const Console& /*console*/, const std::string& /*begun*/) {
  Words rows;
  const int count =
      NS_CALLLOG::CBSCallLogController::GetInstance()->GetTotalConfigurableItemCount();
  for (int i = 0; i < count; ++i) rows.push_back(std::to_string(i));
  return rows;
}

// The files below `folder` whose path from there begins so; a directory ends with a slash.
Words FilesBelow(const fs::path& folder, const std::string& begun) {
  const fs::path typed(begun);
  Words files;
  std::error_code unreadable;
  for (const auto& entry : fs::directory_iterator(folder / typed.parent_path(), unreadable)) {
    const std::string name = entry.path().filename().string();
    const bool hidden = name.front() == '.' && typed.filename().string().rfind('.', 0) != 0;
    if (hidden) continue;
    const bool isFolder = entry.is_directory(unreadable);
    files.push_back((typed.parent_path() / name).string() + (isFolder ? "/" : ""));
  }
  return files;
}

Words Files(const Console& console, const std::string& begun) {
  return FilesBelow(console.folder, begun);
}

Words Zones(const Console& /*console*/, const std::string& begun) {
  return FilesBelow("/usr/share/zoneinfo", begun);
}

struct Kind {
  const char* name;
  Words (*words)(const Console& console, const std::string& begun);
};

constexpr Kind kKinds[] = {
    {"GROUP|COMMAND", HelpTopics},
    {"TYPE", TypeNames},
    {"ACCOUNT", AccountNames},
    {"SETTING", ConfigKeys},
    {"SOURCE", SourceRows},
    {"INDEX", SourceRows},
    {"FILE", Files},
    {"ZONE", Zones},
};

// What may stand for one word of a command's arguments.
Words WordsFor(const std::string& argument, const Console& console, const std::string& begun) {
  if (argument == "NUMBER") return Numbers(console, begun);
  const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                 [&](const Kind& each) { return argument == each.name; });
  if (kind != std::end(kKinds)) return ThatBegin(kind->words(console, begun), begun);
  Words choices;
  std::istringstream alternatives(argument);
  for (std::string choice; std::getline(alternatives, choice, '|');) {
    const bool variable = std::any_of(choice.begin(), choice.end(), ::isupper);
    if (!variable) choices.push_back(choice);
  }
  return ThatBegin(choices, begun);
}

struct Syntax {
  std::vector<Words> places;  // what may stand there, one place behind the other
  Words options;              // "name="
};

// "TYPE ROW... | TYPE all" has two places with two ways each.
Syntax ReadSyntax(const std::string& arguments) {
  Syntax syntax;
  std::size_t place = 0;
  std::istringstream words(arguments);
  for (std::string word; words >> word;) {
    word.erase(
        std::remove_if(word.begin(), word.end(), [](char c) { return c == '[' || c == ']'; }),
        word.end());
    if (word == "|") {
      place = 0;
    } else if (word.find('=') != std::string::npos) {
      syntax.options.push_back(word.substr(0, word.find('=') + 1));
    } else {
      if (syntax.places.size() <= place) syntax.places.emplace_back();
      syntax.places[place++].push_back(word);
    }
  }
  return syntax;
}

bool IsOption(const std::string& word) { return word.find('=') != std::string::npos; }

// `line` holds the words before the one that is begun.
Words CandidatesFor(const Console& console, const Words& line, const std::string& begun) {
  if (line.empty()) return ThatBegin(CommandNames(console, begun), begun);
  const Syntax syntax = ReadSyntax(FindCommand(line.front()).arguments);
  const auto place =
      static_cast<std::size_t>(std::count_if(line.begin() + 1, line.end(), std::not_fn(IsOption)));
  Words candidates;
  for (const std::string& argument :
       place < syntax.places.size() ? syntax.places[place] : Words()) {
    const Words words = WordsFor(argument, console, begun);
    candidates.insert(candidates.end(), words.begin(), words.end());
  }
  return candidates.empty() ? ThatBegin(syntax.options, begun) : candidates;
}

// As it must be typed; a directory's end stays open.
std::string Quoted(const std::string& word) {
  if (word.find_first_of(" '") == std::string::npos) return word;
  return "\"" + word + (word.back() == '/' ? "" : "\"");
}

// Behind the quote that is still open, or behind the last blank.
std::size_t BeginOfWord(const std::string& before) {
  const bool isOpen = std::count(before.begin(), before.end(), '"') % 2 != 0;
  return isOpen ? before.rfind('"') : before.find_last_of(' ') + 1;
}

}  // namespace

Completions Complete(const Console& console, const std::string& before) try {
  Completions found;
  found.begin = BeginOfWord(before);
  std::string begun = before.substr(found.begin);
  if (begun.rfind('"', 0) == 0) begun.erase(0, 1);
  found.words = CandidatesFor(console, SplitWords(before.substr(0, found.begin)), begun);
  const auto unfit = [](const std::string& word) { return word != Printable(word); };
  found.words.erase(std::remove_if(found.words.begin(), found.words.end(), unfit),
                    found.words.end());
  std::transform(found.words.begin(), found.words.end(), found.words.begin(), Quoted);
  std::sort(found.words.begin(), found.words.end());
  found.words.erase(std::unique(found.words.begin(), found.words.end()), found.words.end());
  return found;
} catch (const CommandError&) {  // of words that are none, or a command that is none
  return {};
}

}  // namespace desk
