// Words, quotes and options of a line. What they mean is the commands'.
#include "desktop/console/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "desktop/platform/WholeNumber.h"

namespace desk {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

char HexByte(std::string_view digits) {
  unsigned int value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  if (digits.size() != 2 || error != std::errc() || stop != end) {
    throw CommandError("\\x needs two hexadecimal digits");
  }
  return static_cast<char>(value);
}

// What a backslash stands for in double quotes; `position` is at the letter behind it.
char Escaped(std::string_view line, std::size_t* position) {
  if (*position == line.size()) throw CommandError("a quote is not closed");
  switch (const char letter = line[(*position)++]) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    case 'x': {
      const char byte = HexByte(line.substr(*position, 2));
      *position += 2;
      return byte;
    }
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

}  // namespace

std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t position = line.find_first_not_of(kBlanks);
  if (position == std::string_view::npos || line[position] == '#') return words;
  while (position < line.size()) {
    std::string word;
    while (position < line.size() && kBlanks.find(line[position]) == std::string_view::npos) {
      const char letter = line[position++];
      if (letter == '"' || letter == '\'') {
        AppendQuoted(line, letter, &position, &word);
      } else {
        word.push_back(letter);
      }
    }
    words.push_back(std::move(word));
    position = std::min(line.find_first_not_of(kBlanks, position), line.size());
  }
  return words;
}

Arguments::Arguments(std::vector<std::string> words, std::string usage)
    : words_(std::move(words)), usage_(std::move(usage)) {}

std::string Arguments::Word(const char* what) {
  if (!HasWord()) throw CommandError(std::string(what) + " is missing: " + usage_);
  return words_[next_++];
}

std::string Arguments::WordOr(const std::string& fallback) {
  return HasWord() ? words_[next_++] : fallback;
}

std::vector<std::string> Arguments::RestOfWords() {
  std::vector<std::string> rest(words_.begin() + static_cast<std::ptrdiff_t>(next_), words_.end());
  next_ = words_.size();
  return rest;
}

std::string Arguments::Option(const std::string& name, const std::string& fallback) {
  const auto found = options_.find(name);
  return found != options_.end() ? found->second : fallback;
}

bool Arguments::HasOption(const std::string& name) const { return options_.count(name) > 0; }

void Arguments::AllowOptions(const std::vector<std::string>& names) {
  std::vector<std::string> others;
  for (std::string& word : words_) {
    const std::size_t equals = word.find('=');
    const std::string name = equals == std::string::npos ? std::string() : word.substr(0, equals);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      others.push_back(std::move(word));
    } else if (!options_.emplace(name, word.substr(equals + 1)).second) {
      throw CommandError(name + "= stands twice");
    }
  }
  words_ = std::move(others);
}

void Arguments::Done() const {
  if (HasWord()) throw CommandError("\"" + words_[next_] + "\" is too much: " + usage_);
}

int ParseInt(const std::string& text, const char* what) {
  if (const auto number = WholeNumber(text)) return *number;
  throw CommandError(std::string(what) + " must be a whole number, not \"" + text + "\"");
}

bool ParseSwitch(const std::string& text) {
  if (text == "on") return true;
  if (text == "off") return false;
  throw CommandError("on or off is wanted, not \"" + text + "\"");
}

}  // namespace desk
