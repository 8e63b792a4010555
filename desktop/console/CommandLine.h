// One line that a user types or a script holds: its words, and the options among them.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace desk {

// A command that cannot be carried out as it stands; what() is one line for the user.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Splits a line at blanks. Single quotes keep what is between them as it is; double quotes know \"
// \\ \n \r \t and \xNN. An empty line, and one that begins with "#", has no words.
std::vector<std::string> SplitWords(std::string_view line);

// The words behind a command, taken one by one; what is left over in the end is an error.
class Arguments {
 public:
  Arguments(std::vector<std::string> words, std::string usage);

  bool HasWord() const { return next_ < words_.size(); }
  // The next word; `what` names it in the error when there is none.
  std::string Word(const char* what);
  std::string WordOr(const std::string& fallback);
  std::vector<std::string> RestOfWords();
  // The value of "name=value" among the words.
  std::string Option(const std::string& name, const std::string& fallback = {});
  bool HasOption(const std::string& name) const;

  // Declares which options there are, and takes them out of the words.
  void AllowOptions(const std::vector<std::string>& names);

  // Everything must have been used.
  void Done() const;

  const std::string& usage() const { return usage_; }

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
  std::map<std::string, std::string> options_;
  std::string usage_;
};

// A whole decimal number of int; `what` names it in the error.
int ParseInt(const std::string& text, const char* what);

// "on" or "off".
bool ParseSwitch(const std::string& text);

}  // namespace desk
