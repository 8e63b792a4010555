#include "desktop/console/LineEditor.h"

#include <fcntl.h>
#include <langinfo.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iostream>
#include <utility>

#include <histedit.h>

#include "desktop/console/Columns.h"

namespace desk {
namespace {

constexpr int kLinesKept = 500;

// Texts are UTF-8 here, whatever the user's language.
void UseUtf8() {
  const bool set = std::setlocale(LC_CTYPE, "") != nullptr;
  if (!set || std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

bool CanMoveCursor() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

int WidthOf(const wchar_t* begin, const wchar_t* end) {
  return std::max(0, wcswidth(begin, static_cast<std::size_t>(end - begin)));
}

std::size_t CharactersIn(const std::string& text) {
  return std::mbstowcs(nullptr, text.c_str(), 0);
}

bool IsText(const std::string& text) {
  return std::mbstowcs(nullptr, text.c_str(), 0) != static_cast<std::size_t>(-1);
}

std::string CommonBeginning(const std::vector<std::string>& words) {
  std::string common = words.front();
  for (const std::string& word : words) {
    const auto end = std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first;
    common.erase(end, common.end());
  }
  while (!IsText(common)) common.pop_back();  // of a character that they share in part
  return common;
}

void PrintWords(const std::vector<std::string>& words) {
  const auto longest = std::max_element(
      words.begin(), words.end(), [](const auto& a, const auto& b) { return a.size() < b.size(); });
  const std::size_t width = longest->size() + 2;
  const std::size_t inRow =
      std::max<std::size_t>(1, static_cast<std::size_t>(TerminalSize().columns) / width);
  for (std::size_t i = 0; i < words.size(); ++i) {
    const bool last = i + 1 == words.size() || (i + 1) % inRow == 0;
    std::cout << words[i] << (last ? "\n" : std::string(width - words[i].size(), ' '));
  }
  std::cout << std::flush;
}

}  // namespace

LineEditor::LineEditor(const char* prompt, WaitForKey wait, Complete complete)
    : prompt_(prompt), wait_(std::move(wait)), complete_(std::move(complete)) {
  UseUtf8();
  HistEvent event;
  lines_ = history_init();
  ::history(lines_, &event, H_SETSIZE, kLinesKept);
  editor_ = el_init("deskphone", stdin, stdout, stderr);
  el_set(editor_, EL_CLIENTDATA, this);
  el_set(editor_, EL_PROMPT, Prompt);
  el_set(editor_, EL_EDITOR, "emacs");
  el_set(editor_, EL_HIST, ::history, lines_);
  el_set(editor_, EL_GETCFN, ReadCharacter);
  el_wset(editor_, EL_ADDFN, L"complete-word", L"completes a word", OnTab);
  el_set(editor_, EL_BIND, "^I", "complete-word", nullptr);
  el_source(editor_, nullptr);
}

LineEditor::~LineEditor() {
  el_end(editor_);
  history_end(lines_);
}

std::optional<std::string> LineEditor::Read() {
  int length = 0;
  if (std::exchange(hasOldSize_, false)) el_resize(editor_);
  TakeTerminal();
  const char* const line = el_gets(editor_, &length);
  if (line == nullptr || length <= 0) return std::nullopt;
  std::string text(line, static_cast<std::size_t>(length));
  if (text.back() == '\n') text.pop_back();
  return text;
}

void LineEditor::HideLine() {
  if (!CanMoveCursor()) {
    std::cout << "\n";
    return;
  }
  const LineInfoW& line = *el_wline(editor_);
  const int before = static_cast<int>(prompt_.size()) + WidthOf(line.buffer, line.cursor);
  for (int row = before / TerminalSize().columns; row > 0; --row) std::cout << "\x1b[A";
  std::cout << "\r\x1b[J";
}

void LineEditor::ShowLine() {
  std::cout << (CanMoveCursor() ? "\r\x1b[J" : "\r") << std::flush;
  el_set(editor_, EL_REFRESH);
}

void LineEditor::LeaveTerminal() { el_set(editor_, EL_PREP_TERM, 0); }

void LineEditor::TakeTerminal() { el_set(editor_, EL_PREP_TERM, 1); }

void LineEditor::RetakeTerminal() {
  termios modes = {};
  const bool isAnothers = tcgetattr(STDIN_FILENO, &modes) == 0 && (modes.c_lflag & ICANON) != 0;
  if (!isAnothers) return;
  LeaveTerminal();
  TakeTerminal();
}

void LineEditor::TakeSize() {
  const LineInfoW& line = *el_wline(editor_);
  const ScreenSize size = TerminalSize();
  const int width = static_cast<int>(prompt_.size()) + WidthOf(line.buffer, line.lastchar);
  const bool fits = width / size.columns + 1 < size.rows;
  hasOldSize_ = !fits;
  if (!fits) return;
  HideLine();  // as the terminal has wrapped it anew
  el_resize(editor_);
  ShowLine();
}

void LineEditor::Remember(const std::string& line) {
  HistEvent event;
  ::history(lines_, &event, H_ENTER, line.c_str());
}

std::vector<std::string> LineEditor::Lines() const {
  std::vector<std::string> lines;
  HistEvent event;
  for (int more = ::history(lines_, &event, H_LAST); more != -1;
       more = ::history(lines_, &event, H_PREV)) {
    lines.emplace_back(event.str);
  }
  return lines;
}

LineEditor& LineEditor::Of(editline* editor) {
  void* self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return *static_cast<LineEditor*>(self);
}

char* LineEditor::Prompt(editline* editor) { return Of(editor).prompt_.data(); }

// One, or 0 at the end.
int LineEditor::ReadCharacter(editline* editor, wchar_t* character) {
  std::mbstate_t state = {};
  char byte = 0;
  while (Of(editor).wait_() && read(STDIN_FILENO, &byte, 1) == 1) {
    const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
    if (length == static_cast<std::size_t>(-2)) continue;
    if (length == static_cast<std::size_t>(-1)) *character = L'?';
    return 1;
  }
  return 0;
}

// Between them stands the editor, which is C.
unsigned char LineEditor::OnTab(editline* editor, int /*key*/) try {
  return Of(editor).CompleteWord();
} catch (const std::exception&) {
  return CC_ERROR;
}

// Puts in what all that may be meant have in common, and lists them when that is nothing new.
unsigned char LineEditor::CompleteWord() {
  const LineInfo& line = *el_line(editor_);
  const std::string before(line.buffer, line.cursor);
  const Completions found = complete_(before);
  if (found.words.empty()) return CC_ERROR;
  const std::string begun = before.substr(found.begin);
  const bool only = found.words.size() == 1;
  std::string word = CommonBeginning(found.words);
  if (only && word.back() != '/') word += " ";
  const bool goesOn = word.size() > begun.size() && word.rfind(begun, 0) == 0;
  if (!only && !goesOn) {
    std::cout << "\n";
    PrintWords(found.words);
    return CC_REDISPLAY;
  }
  el_deletestr(editor_, static_cast<int>(CharactersIn(begun)));
  el_insertstr(editor_, word.c_str());
  return CC_REFRESH;
}

}  // namespace desk
