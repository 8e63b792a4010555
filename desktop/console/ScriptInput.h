// The bytes of a script, from a file, a pipe or standard input. A read that waits for more lets the
// phone work meanwhile, and ends when the phone is interrupted.
#pragma once

#include <array>
#include <streambuf>
#include <string>

namespace desk {

class Phone;
struct Console;

class ScriptInput : public std::streambuf {
 public:
  // "-": standard input. Throws CommandError when the file cannot be opened.
  ScriptInput(Console& console, const std::string& name);
  ~ScriptInput() override;
  ScriptInput(const ScriptInput&) = delete;
  ScriptInput& operator=(const ScriptInput&) = delete;

 protected:
  int_type underflow() override;

 private:
  bool WaitForBytes();

  Phone& phone_;
  int descriptor_;
  std::array<char, 4096> bytes_;
};

}  // namespace desk
