// Words, quotes and options of a line. What they mean is the commands'.
#include "desktop/console/CommandLine.h"

#include <charconv>
#include <utility>

#include "desktop/platform/WholeNumber.h"

namespace desk {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// The byte of the two digits at the position, which is behind them then.
char HexByte(std::string_view line, std::size_t* position) {
  const std::string_view digits = line.substr(*position, 2);
  unsigned int value = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value, 16);
  if (digits.size() != 2 || error != std::errc() || end != digits.end()) {
    throw CommandError("\\x needs two hexadecimal digits");
  }
  *position += digits.size();
  return static_cast<char>(value);
}

// What a backslash stands for in double quotes; `position` is at the letter behind it.
char Escaped(std::string_view line, std::size_t* position) {
  if (*position == line.size()) throw CommandError("a quote is not closed");
  switch (const char letter = line[(*position)++]) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    case 'x': return HexByte(line, position);
    default: return letter;
  }
}

// Appends what stands in quotes; `position` is behind the opening one, and then behind the closing
// one.
void AppendQuoted(std::string_view line, char quote, std::size_t* position, std::string* word) {
  while (*position < line.size()) {
    const char letter = line[(*position)++];
    if (letter == quote) return;
    word->push_back(quote == '"' && letter == '\\' ? Escaped(line, position) : letter);
  }
  throw CommandError("a quote is not closed");
}

// Takes a word off the line, at whose `position` it begins; then that is behind it.
std::string TakeWord(std::string_view line, std::size_t* position) {
  std::string word;
  while (*position < line.size() && kBlanks.find(line[*position]) == std::string_view::npos) {
    const char letter = line[(*position)++];
    if (letter == '"' || letter == '\'') {
      AppendQuoted(line, letter, position, &word);
    } else {
      word.push_back(letter);
    }
  }
  return word;
}

// Whether "name=" stands in the usage of a command.
bool IsOption(const std::string& name, const std::string& usage) {
  return name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string::npos &&
         (usage.find("[" + name + "=") != std::string::npos ||
          usage.find(" " + name + "=") != std::string::npos);
}

}  // namespace

std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t position = line.find_first_not_of(kBlanks);
  if (position == std::string_view::npos || line[position] == '#') return words;
  while (position != std::string_view::npos) {
    words.push_back(TakeWord(line, &position));
    position = line.find_first_not_of(kBlanks, position);
  }
  return words;
}

Arguments::Arguments(std::vector<std::string> words, std::string usage) : usage_(std::move(usage)) {
  for (std::string& word : words) {
    const std::string name = word.substr(0, word.find('='));
    if (name.size() == word.size() || !IsOption(name, usage_)) {
      words_.push_back(std::move(word));
    } else if (!options_.emplace(name, word.substr(name.size() + 1)).second) {
      throw CommandError(name + "= stands twice");
    }
  }
}

std::string Arguments::Word(const std::string& what) {
  if (!HasWord()) throw CommandError(what + " is missing: " + usage_);
  return words_[next_++];
}

std::string Arguments::WordOr(const std::string& fallback) {
  return HasWord() ? words_[next_++] : fallback;
}

int Arguments::Int(const std::string& what) { return ParseInt(Word(what), what); }

int Arguments::IntOr(const std::string& what, int fallback) {
  return HasWord() ? Int(what) : fallback;
}

bool Arguments::Either(const std::string& first, const std::string& second) {
  return ParseEither(Word(first + " or " + second), first, second);
}

std::string Arguments::Option(const std::string& name, const std::string& fallback) {
  const auto found = options_.find(name);
  return found != options_.end() ? found->second : fallback;
}

bool Arguments::HasOption(const std::string& name) const { return options_.count(name) > 0; }

void Arguments::Done() const {
  if (HasWord()) throw CommandError("\"" + words_[next_] + "\" is too much: " + usage_);
}

int ParseInt(const std::string& text, const std::string& what) {
  if (const auto number = WholeNumber(text)) return *number;
  throw CommandError(what + " must be a whole number, not \"" + text + "\"");
}

bool ParseEither(const std::string& text, const std::string& first, const std::string& second) {
  if (text == first) return true;
  if (text == second) return false;
  throw CommandError(first + " or " + second + " is wanted, not \"" + text + "\"");
}

}  // namespace desk
