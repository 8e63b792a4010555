// Readline in its callback mode, so that one thread waits for keys, timers and transfers at once.
#include "desktop/console/Terminal.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>  // readline's header needs FILE
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include <readline/history.h>
#include <readline/readline.h>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Signals.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr char kPrompt[] = "phone> ";
constexpr char kHistoryFile[] = "commands";  // in the phone's directory
constexpr int kHistoryLength = 500;

// Readline calls back without a context of ours.
Console* terminal = nullptr;
Signals* terminalSignals = nullptr;

void OnLine(char* text) {
  const std::unique_ptr<char, decltype(&std::free)> line(text, std::free);
  Console& console = *terminal;
  if (line == nullptr) {
    rl_callback_handler_remove();
    console.out << "\n";
    console.wantsToQuit = true;
    return;
  }
  if (*line != '\0') add_history(line.get());
  try {
    RunCommand(console, line.get());
  } catch (const CommandError& error) {
    console.out << "  " << Printable(error.what()) << "\n";
  }
  console.out << std::flush;
  if (terminalSignals->Ending() != 0) console.wantsToQuit = true;
  if (console.wantsToQuit) rl_callback_handler_remove();  // which would show the prompt again
}

// Readline asks until there is none, and sorts them.
char* NextCommand(const char* prefix, int state) {
  static std::vector<std::string> names;
  for (const CommandGroup& group : AllCommands()) {
    for (const Command& command : group.commands) {
      if (state == 0 && command.name.rfind(prefix, 0) == 0) names.push_back(command.name);
    }
  }
  if (names.empty()) return nullptr;
  char* const name = strdup(names.back().c_str());
  names.pop_back();
  return name;
}

// Commands for the first word, files for the others.
char** Complete(const char* text, int start, int /*end*/) {
  return start == 0 ? rl_completion_matches(text, NextCommand) : nullptr;
}

// Shows the line that is being edited again, below what `print` prints.
template <typename Print>
void Redisplay(Print print) {
  rl_clear_visible_line();
  print();
  rl_on_new_line();
  rl_redisplay();
}

// What happened while the user was typing goes above the line that is being edited.
void ReportAboveLine(Console& console) {
  const std::vector<News> news = console.phone.TakeNews();
  if (news.empty()) return;
  Redisplay([&] {
    PrintNews(console.out, news);
    console.out << std::flush;
  });
}

// Whether the command that is running is to end: Ctrl-C ends it alone. Ctrl-Z is seen to, too.
bool IsCommandInterrupted(Signals& signals) {
  if (signals.Take(SIGTSTP)) signals.Stop();
  return signals.Take(SIGINT) || signals.Ending() != 0;
}

// Who sets the modes of a terminal that is another's at the time is stopped.
bool HasTerminal() { return tcgetpgrp(STDIN_FILENO) == getpgrp(); }

// At the prompt the terminal is in readline's modes, and whoever had it meanwhile has left others.
void SeeToStops(Signals& signals) {
  if (signals.Take(SIGTSTP)) {
    rl_deprep_terminal();
    signals.Stop();
  }
  static bool continued = false;  // in the background, at times: then the terminal comes later
  continued = signals.Take(SIGCONT) || continued;
  if (!continued || !HasTerminal()) return;
  continued = false;
  rl_deprep_terminal();
  rl_prep_terminal(1);
  Redisplay([] {});
}

int PollTimeout(Phone& phone) {
  const auto due = phone.platform().timers.NextDue();
  if (!due) return -1;
  const auto left = (*due - phone.platform().clock().Monotonic()).count();
  return static_cast<int>(
      std::max<Milliseconds::rep>(0, std::min<Milliseconds::rep>(left, 60'000)));
}

// Signals are looked at after the loop has run, which takes what woke it.
void RunPrompt(Console& console, Signals& signals) {
  pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0},
                      {console.phone.platform().loop.descriptor(), POLLIN, 0}};
  while (!console.wantsToQuit) {
    console.phone.platform().RunDue();
    ReportAboveLine(console);
    if (signals.Ending() == 0) SeeToStops(signals);
    if (signals.Ending() != 0) return;
    if (poll(waiting, 2, PollTimeout(console.phone)) < 0) continue;
    if ((waiting[0].revents & ~POLLIN) != 0) return;  // the terminal is gone
    if (waiting[0].revents == 0) continue;
    SeeToStops(signals);
    rl_callback_read_char();
  }
}

void StartReadline() {
  rl_readline_name = "deskphone";
  rl_catch_signals = 0;
  rl_attempted_completion_function = Complete;
  using_history();
  read_history(kHistoryFile);
  rl_callback_handler_install(kPrompt, OnLine);
}

// The lines of a command that takes a password, and others in which one may stand.
bool MayHoldPassword(const char* line) {
  return std::strncmp(line, "source", std::strlen("source")) == 0 ||
         strcasestr(line, "passw") != nullptr;
}

void WriteLines() {
  for (int i = history_length - 1; i >= 0; --i) {
    if (MayHoldPassword(history_get(history_base + i)->line)) free_history_entry(remove_history(i));
  }
  stifle_history(kHistoryLength);
  write_history(kHistoryFile);
}

// What is to be kept comes first: a terminal that is held up holds up whoever writes to it.
void EndReadline(Phone& phone) {
  phone.Save();
  WriteLines();
  if (HasTerminal()) rl_callback_handler_remove();
}

}  // namespace

void RunTerminal(Console& console, Signals& signals) {
  terminal = &console;
  terminalSignals = &signals;
  signals.CatchStops();
  const auto before = std::exchange(console.phone.interrupted,
                                    [&signals] { return IsCommandInterrupted(signals); });
  StartReadline();
  RunPrompt(console, signals);
  EndReadline(console.phone);
  if (!console.wantsToQuit) console.out << "\n";  // behind the prompt
  console.phone.interrupted = before;
}

}  // namespace desk
