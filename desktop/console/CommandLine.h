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
  // A word "name=value" is an option when "name=" stands in the usage.
  Arguments(std::vector<std::string> words, std::string usage);

  bool HasWord() const { return next_ < words_.size(); }
  // The next word; `what` names it in the error when there is none.
  std::string Word(const std::string& what);
  std::string WordOr(const std::string& fallback);
  // The next word as a whole decimal number.
  int Int(const std::string& what);
  int IntOr(const std::string& what, int fallback);
  // The next word must be one of two: true for the first.
  bool Either(const std::string& first, const std::string& second);
  // The value of "name=value" among the words.
  std::string Option(const std::string& name, const std::string& fallback = {});
  bool HasOption(const std::string& name) const;

  // Everything must have been used.
  void Done() const;

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
  std::map<std::string, std::string> options_;
  std::string usage_;
};

// A whole decimal number of int; `what` names it in the error.
int ParseInt(const std::string& text, const std::string& what);

// True for the first of two words, false for the second; no other will do.
bool ParseEither(const std::string& text, const std::string& first, const std::string& second);

}  // namespace desk
