// Readline in its callback mode, so that one thread waits for keys, timers and transfers at once.
#include "Terminal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdio>  // readline's header needs FILE
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include <readline/history.h>
#include <readline/readline.h>

#include "CommandLine.h"
#include "Commands.h"
#include "Text.h"

namespace desk {
namespace {

constexpr char kPrompt[] = "phone> ";
constexpr char kHistoryFile[] = "commands";  // in the phone's directory
constexpr int kHistoryLength = 500;

// Readline calls back without a context of ours.
Phone* terminalPhone = nullptr;

void OnLine(char* text) {
  const std::unique_ptr<char, decltype(&std::free)> line(text, std::free);
  Phone& phone = *terminalPhone;
  if (line == nullptr) {
    phone.out() << "\n";
    phone.wantsToQuit = true;
    return;
  }
  if (*line != '\0') add_history(line.get());
  try {
    RunCommand(phone, line.get());
  } catch (const CommandError& error) {
    phone.out() << "  " << Printable(error.what()) << "\n";
  }
  phone.out() << std::flush;
}

char* NextCommand(const char* prefix, int state) {
  static std::vector<std::string> names;
  static std::size_t next = 0;
  if (state == 0) {
    next = 0;
    names.clear();
    for (const CommandGroup& group : AllCommands()) {
      for (const Command& command : group.commands) names.push_back(command.name);
    }
  }
  while (next < names.size()) {
    const std::string& name = names[next++];
    if (name.rfind(prefix, 0) == 0) return strdup(name.c_str());
  }
  return nullptr;
}

// Commands for the first word, files for the others.
char** Complete(const char* text, int start, int /*end*/) {
  return start == 0 ? rl_completion_matches(text, NextCommand) : nullptr;
}

// What happened while the user was typing goes above the line that is being edited.
void ReportAboveLine(Phone& phone) {
  if (!phone.HasChanges()) return;
  rl_clear_visible_line();
  phone.ReportChanges();
  phone.out() << std::flush;
  rl_on_new_line();
  rl_redisplay();
}

int PollTimeout(Phone& phone) {
  const auto due = phone.platform().timers.NextDue();
  if (!due) return -1;
  const auto left = (*due - phone.platform().clock().Monotonic()).count();
  return static_cast<int>(
      std::max<Milliseconds::rep>(0, std::min<Milliseconds::rep>(left, 60'000)));
}

void Drain(int wakeUp) {
  eventfd_t count = 0;
  eventfd_read(wakeUp, &count);
}

}  // namespace

void RunTerminal(Phone& phone) {
  terminalPhone = &phone;
  const int wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  phone.platform().loop.SetWakeUp([wakeUp] { eventfd_write(wakeUp, 1); });
  rl_readline_name = "deskphone";
  rl_attempted_completion_function = Complete;
  using_history();
  read_history(kHistoryFile);
  rl_callback_handler_install(kPrompt, OnLine);
  while (!phone.wantsToQuit) {
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {wakeUp, POLLIN, 0}};
    poll(waiting, 2, PollTimeout(phone));
    if (waiting[1].revents != 0) Drain(wakeUp);
    phone.platform().RunDue();
    ReportAboveLine(phone);
    if (waiting[0].revents != 0) rl_callback_read_char();
  }
  rl_callback_handler_remove();
  stifle_history(kHistoryLength);
  write_history(kHistoryFile);
  phone.platform().loop.SetWakeUp(nullptr);
  close(wakeUp);
}

}  // namespace desk
