// The program deskphone: a desktop phone at a terminal, or driven by a script.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "desktop/Demo.h"
#include "desktop/console/CallImport.h"
#include "desktop/console/CommandLine.h"
#include "desktop/console/Console.h"
#include "desktop/console/Script.h"
#include "desktop/console/Signals.h"
#include "desktop/console/Terminal.h"
#include "desktop/console/TimeInput.h"
#include "desktop/phone/RootDirectory.h"
#include "desktop/platform/Profile.h"
#include "desktop/platform/Text.h"
#include "desktop/server/LogServer.h"
#include "desktop/server/ServerProgram.h"

namespace {

namespace fs = std::filesystem;

constexpr int kCannotStart = 1;
constexpr int kCutShort = 1;
constexpr int kWrongCommands = 2;

struct Options {
  fs::path root;
  bool demo = false;
  fs::path profile;
  std::string script;
  fs::path firstDay;  // a script to begin with where there is no history
  int traceLevel = 0;
  fs::path traceFile;
  fs::path documents;
  bool importing = false;
  desk::CallImport import;
};

// A phone with an account, for whoever brings no profile.
desk::Profile DefaultProfile() {
  desk::Profile profile;
  profile.accounts = {desk::Account(0, "100", "sip.example.org")};
  return profile;
}

// Whether a pipe or a file on standard input holds anything; waits for the first byte of a pipe.
bool HasCommands() {
  struct stat input = {};
  if (fstat(STDIN_FILENO, &input) != 0) return false;
  if (S_ISREG(input.st_mode)) return lseek(STDIN_FILENO, 0, SEEK_CUR) < input.st_size;
  pollfd bytes = {STDIN_FILENO, POLLIN, 0};
  return S_ISFIFO(input.st_mode) && poll(&bytes, 1, -1) > 0 && (bytes.revents & POLLIN) != 0;
}

desk::DemoRoot::Use UseOfDemo(const Options& options) {
  const bool atTerminal = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
  if (atTerminal || !options.script.empty()) return desk::DemoRoot::Use::kKept;
  return HasCommands() ? desk::DemoRoot::Use::kCommands : desk::DemoRoot::Use::kScenario;
}

// A phone that is set up with what stands beside the program; what is named goes before it. Its
// root exists as long as what is returned.
std::unique_ptr<desk::DemoRoot> SetUpDemo(Options* options) {
  using Use = desk::DemoRoot::Use;
  const fs::path programs = fs::read_symlink("/proc/self/exe").parent_path();
  const fs::path demo = programs.parent_path() / "share/calllog";
  const Use use = UseOfDemo(*options);
  auto root = std::make_unique<desk::DemoRoot>(options->root, use);
  options->root = root->path();
  if (options->profile.empty()) options->profile = demo / "profile.toml";
  if (options->documents.empty()) options->documents = demo / "server";
  if (use == Use::kScenario) options->script = demo / "scenario.phone";
  const bool isScript = use == Use::kKept && !options->script.empty();
  if (use != Use::kScenario && !isScript) options->firstDay = demo / "first-day.phone";
  return root;
}

// Scripts print the same text every time: their clock is their own and starts at a fixed time.
std::unique_ptr<desk::Clock> MakeClock(bool manual) {
  if (!manual) return std::make_unique<desk::RealClock>();
  return std::make_unique<desk::ManualClock>(desk::ParseLocalTime("2026-10-07 09:00:00"));
}

// The number of wrong lines.
int RunScripts(const Options& options, const desk::Console& console) {
  int wrong = 0;
  if (!options.firstDay.empty() && !fs::exists(console.phone.HistoryFile())) {
    wrong += desk::RunScriptFile(console, options.firstDay, std::cerr);
  }
  if (!options.script.empty()) wrong += desk::RunScriptFile(console, options.script, std::cerr);
  return wrong;
}

// The number of wrong files.
int ImportCalls(const desk::CallImport& import, desk::Console& console) try {
  import.Run(console);
  return 0;
} catch (const desk::CommandError& error) {
  std::cerr << "deskphone: " << desk::Printable(error.what()) << "\n";
  return 1;
}

int UsePhone(const Options& options, desk::Console& console, desk::Signals& signals) {
  if (options.importing) return ImportCalls(options.import, console);
  if (console.logServer != nullptr) desk::SetUpSources(*console.logServer);
  const int wrong = RunScripts(options, console);
  if (!options.script.empty()) return wrong;
  console.out << "\"help\" lists the commands; \"quit\" leaves.\n";
  desk::RunTerminal(console, signals);
  return wrong;
}

// The profile's time zone is in force then.
desk::Profile SetUpProfile(const Options& options, bool scripted) {
  const desk::Profile profile =
      options.profile.empty() ? DefaultProfile() : desk::LoadProfile(options.profile);
  const std::string zone = profile.timezone.empty() && scripted ? "UTC0" : profile.timezone;
  if (!zone.empty()) desk::SetTimeZone(zone);
  const char* const inForce = std::getenv("TZ");
  const bool isFile = inForce != nullptr && std::strchr(":/", *inForce) != nullptr;  // or empty
  if (inForce != nullptr && !isFile) desk::SetTimeZone(inForce);  // which refuses what is none
  return profile;
}

int RunPhone(const Options& options, desk::Signals& signals) {
  const bool scripted = !options.importing && !options.script.empty();
  const desk::Profile profile = SetUpProfile(options, scripted);
  const fs::path start = fs::current_path();
  std::cerr << (options.importing ? "bringing calls into the phone in " : "deskphone in ")
            << fs::absolute(options.root).string() << "\n";
  const bool serves = !options.importing && !options.documents.empty();
  const auto server = serves ? desk::ServeDocuments(options.documents) : nullptr;
  desk::Phone phone(options.root, profile, MakeClock(scripted));
  desk::Console console{phone, std::cout, start, server.get()};
  desk::ReportNews(console);
  signals.WakeUp(phone.platform().loop.descriptor());
  phone.interrupted = [&signals] { return signals.Ending() != 0; };
  desk::SetTrace(console, options.traceLevel, options.traceFile);
  const int wrong = UsePhone(options, console, signals);
  phone.Save();
  desk::ReportNews(console);
  return wrong > 0 ? kWrongCommands : 0;
}

void AddOptions(CLI::App* app, Options* options) {
  app->add_option("--root", options->root, "directory that holds the phone's whole state")
      ->default_str(desk::RootDirectory::Default().string());
  app->add_flag(
      "--demo", options->demo,
      "a phone that is set up, with a first day of calls, in a root of its own beside the "
      "default; without a terminal its scenario, in one that goes at the end");
  app->add_option("--profile", options->profile, "settings, accounts and contacts (TOML)");
  app->add_option("--script", options->script,
                  "runs the commands of a file (\"-\": standard input) on a clock of its own");
  app->add_option("--log-server", options->documents,
                  "serves call logs from this directory, and sets up sources for them");
  app->add_option("--trace", options->traceLevel, "writes the trace out up to this level");
  app->add_option("--trace-file", options->traceFile, "where to, instead of standard error");
}

void AddImport(CLI::App* app, Options* options) {
  options->import.server = "pbx.example.org";
  CLI::App* const cdr =
      app->add_subcommand("cdr", "brings in a PBX's call detail records and shows the lists")
          ->callback([options] { options->importing = true; });
  cdr->add_option("FILE", options->import.file,
                  "Master.csv, or the custom layout; \"-\": standard input")
      ->required();
  cdr->add_option("--extension", options->import.extension, "whose phone this is")->required();
  cdr->add_option("--server", options->import.server, "SIP server of both parties")
      ->capture_default_str();
  cdr->fallthrough();
  for (const char* other : {"--demo", "--script"}) cdr->excludes(app->get_option(other));
}

// What `run` returns; an exception is reported.
int Run(const std::function<int()>& run) {
  try {
    return run();
  } catch (const std::exception& error) {
    std::cout << std::flush;
    std::cerr << "deskphone: " << error.what() << "\n";
    return kCannotStart;
  }
}

int RunPhoneUntilSignal(Options* options) {
  desk::Signals signals;
  const int status = Run([&] {
    const auto demoRoot = options->demo ? SetUpDemo(options) : nullptr;
    if (options->root.empty()) options->root = desk::RootDirectory::Default();
    if (options->script.empty() && isatty(STDIN_FILENO) == 0) options->script = "-";
    return RunPhone(*options, signals);
  });
  // At the prompt a signal is as good an end as any.
  const bool cutShort = signals.Ending() != 0 && (options->importing || !options->script.empty());
  return cutShort ? kCutShort : status;
}

constexpr char kAbout[] =
    "A desk phone's call log on a desktop. At a terminal it takes commands from the keyboard,\n"
    "otherwise from standard input, on a manual clock. SIGHUP, SIGINT, SIGQUIT and SIGTERM end\n"
    "it with everything saved. Exit status: 0; 1 when it cannot start, or a signal cut a script\n"
    "or an import short; 2 when a script held wrong commands, or no call could be brought in.";

std::string OneLine(const CLI::App*, const CLI::Error& error) {
  return std::string("deskphone: ") + error.what() + "\n";
}

}  // namespace

int main(int argc, char** argv) {
  // Nothing else is to be taken for a standard input that is closed.
  if (fcntl(STDIN_FILENO, F_GETFD) == -1) open("/dev/null", O_WRONLY);
  Options options;
  CLI::App app(kAbout);
  app.set_version_flag("--version", "deskphone " DESKPHONE_VERSION);
  app.failure_message(OneLine);
  AddOptions(&app, &options);
  AddImport(&app, &options);
  desk::ServerProgram server(&app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kCannotStart;
  }
  if (server.IsWanted()) return Run([&] { return server.Run(); });
  return RunPhoneUntilSignal(&options);
}
