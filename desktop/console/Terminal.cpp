#include "desktop/console/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Completion.h"
#include "desktop/console/LineEditor.h"
#include "desktop/console/Pager.h"
#include "desktop/console/Signals.h"
#include "desktop/platform/PrivateFile.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr char kPrompt[] = "phone> ";
constexpr char kHistoryFile[] = "commands";  // in the phone's directory

// Whether the command that is running is to end: Ctrl-C ends it alone. Ctrl-Z is seen to, too.
bool IsCommandInterrupted(Signals& signals) {
  if (signals.Take(SIGTSTP)) signals.Stop();
  return signals.Take(SIGINT) || signals.Ending() != 0;
}

void WriteToTerminal(std::string_view text) {
  [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
}

// Who sets the modes of a terminal that is another's at the time is stopped.
bool HasTerminal() { return tcgetpgrp(STDIN_FILENO) == getpgrp(); }

// Then nobody finds a terminal there whose modes could be set.
void CloseInput() {
  const int nowhere = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(nowhere, STDIN_FILENO);
  close(nowhere);
}

int PollTimeout(Phone& phone) {
  const auto due = phone.platform().timers.NextDue();
  if (!due) return -1;
  const auto left = (*due - phone.platform().clock().Monotonic()).count();
  return static_cast<int>(
      std::max<Milliseconds::rep>(0, std::min<Milliseconds::rep>(left, 60'000)));
}

// The lines of a command that takes a password, and others in which one may stand.
bool MayHoldPassword(const std::string& line) {
  return line.rfind("source", 0) == 0 || strcasestr(line.c_str(), "passw") != nullptr;
}

// The phone's prompt: while the user types, the message loop runs.
class Terminal {
 public:
  Terminal(Console& console, Signals& signals) : console_(console), signals_(signals) {
    PrivateFile::RemoveLeft(kHistoryFile);
    if (!IsOwnFile(kHistoryFile)) return;
    std::ifstream file(kHistoryFile);
    for (std::string line; std::getline(file, line);) editor_.Remember(line);
  }

  void Run() {
    while (!console_.wantsToQuit && signals_.Ending() == 0) {
      const std::optional<std::string> line = editor_.Read();
      if (!line) break;
      CarryOut(*line);
    }
    Keep();
    if (!console_.wantsToQuit) console_.out << "\n";  // behind the prompt
  }

 private:
  void CarryOut(const std::string& line) {
    if (!line.empty()) editor_.Remember(line);
    const Pager pager(&console_.out, TerminalSize(), [this] { return WantsMore(); });
    try {
      RunCommand(console_, line);
    } catch (const CommandError& error) {
      console_.out << "  " << Printable(error.what()) << "\n";
    }
    console_.out << std::flush;
  }

  // Whether the user wants to see more of what a command prints. The phone waits with it.
  bool WantsMore() {
    constexpr std::string_view kQuestion = "-- more; q ends --";
    constexpr std::string_view kNothing = "\r                  \r";
    WriteToTerminal(kQuestion);
    editor_.TakeTerminal();
    pollfd keys = {STDIN_FILENO, POLLIN, 0};
    poll(&keys, 1, -1);
    char key = 'q';
    const bool pressed = !signals_.Take(SIGINT) && read(STDIN_FILENO, &key, 1) == 1;
    editor_.LeaveTerminal();
    WriteToTerminal(kNothing);
    return pressed && key != 'q';
  }

  // What is to be kept comes before the terminal gets its modes back: one that is held up holds up
  // whoever sets them.
  bool WaitForKey() {
    if (GoOnUntilKey()) return true;
    Keep();
    if (!HasTerminal()) CloseInput();
    return false;
  }

  // Signals are looked at after the loop has run, which takes what woke it.
  bool GoOnUntilKey() {
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0},
                        {console_.phone.platform().loop.descriptor(), POLLIN, 0}};
    for (;;) {
      console_.phone.platform().RunDue();
      ReportAboveLine();
      if (signals_.Ending() != 0) return false;
      SeeToStops();
      if (poll(waiting, 2, PollTimeout(console_.phone)) < 0) continue;
      if ((waiting[0].revents & ~POLLIN) != 0) return false;  // the terminal is gone
      if (waiting[0].revents == 0) continue;
      SeeToStops();
      return true;
    }
  }

  // What happened while the user was typing goes above the line that is being edited.
  void ReportAboveLine() {
    const std::vector<News> news = console_.phone.TakeNews();
    if (news.empty()) return;
    editor_.HideLine();
    PrintNews(console_.out, news);
    editor_.ShowLine();
  }

  // At the prompt the terminal is in the editor's modes, and whoever had it meanwhile has left
  // others.
  void SeeToStops() {
    if (signals_.Take(SIGWINCH)) editor_.TakeSize();
    if (signals_.Take(SIGTSTP)) {
      editor_.LeaveTerminal();
      signals_.Stop();
    }
    continued_ = signals_.Take(SIGCONT) || continued_;
    if (!continued_ || !HasTerminal()) return;
    continued_ = false;
    editor_.RetakeTerminal();
    editor_.ShowLine();
  }

  void Keep() {
    console_.phone.Save();
    std::string lines;
    for (const std::string& line : editor_.Lines()) {
      if (!MayHoldPassword(line)) lines.append(line).append("\n");
    }
    PrivateFile file;
    if (file.CreateBeside(kHistoryFile) && file.Write(lines.data(), lines.size()) && file.Close()) {
      file.MoveTo(kHistoryFile);
    }
  }

  Console& console_;
  Signals& signals_;
  LineEditor editor_{kPrompt, [this] { return WaitForKey(); },
                     [this](const std::string& before) { return Complete(console_, before); }};
  bool continued_ = false;  // in the background, at times: then the terminal comes later
};

}  // namespace

void RunTerminal(Console& console, Signals& signals) {
  signals.CatchStops();
  const auto before = std::exchange(console.phone.interrupted,
                                    [&signals] { return IsCommandInterrupted(signals); });
  Terminal(console, signals).Run();
  console.phone.interrupted = before;
}

}  // namespace desk
