// The line that a user edits at a terminal, with the lines before it and what Tab makes of a word.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct editline;
struct history;

namespace desk {

// What may stand in the place of a word that has been begun.
struct Completions {
  std::size_t begin = 0;  // where the word begins, in bytes
  std::vector<std::string> words;
};

class LineEditor {
 public:
  // Returns when standard input has a byte; false: no line is wanted any more. Other things may go
  // on meanwhile.
  using WaitForKey = std::function<bool()>;
  // What the text before the cursor can be completed to.
  using Complete = std::function<Completions(const std::string& before)>;

  LineEditor(const char* prompt, WaitForKey wait, Complete complete);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // The next line, without its end; nothing when the input has ended. The terminal is in the
  // editor's modes meanwhile.
  std::optional<std::string> Read();

  // Between these two, while a line is read, something may be printed above it.
  void HideLine();
  void ShowLine();

  // The terminal's modes, while a line is read: as they were, and the editor's again.
  void LeaveTerminal();
  void TakeTerminal();
  void RetakeTerminal();  // from somebody who may have left others
  // The terminal has another size now. The editor cannot shrink below the line that it holds: it
  // goes on as before until the next line then.
  void TakeSize();

  // The lines before this one, the oldest first.
  void Remember(const std::string& line);
  std::vector<std::string> Lines() const;

 private:
  static LineEditor& Of(editline* editor);
  static char* Prompt(editline* editor);
  static int ReadCharacter(editline* editor, wchar_t* character);
  static unsigned char OnTab(editline* editor, int key);
  unsigned char CompleteWord();

  std::string prompt_;
  WaitForKey wait_;
  Complete complete_;
  history* lines_;
  editline* editor_;
  bool hasOldSize_ = false;
};

}  // namespace desk
