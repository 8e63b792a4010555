// The comparison: counts, instructions and times of everything that is measured, each mode in a run
// of its own. The tables are report.py's.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

#include "benchmarks/Case.h"
#include "benchmarks/Counts.h"
#include "benchmarks/Module.h"
#include "benchmarks/Timing.h"

namespace bench {
namespace {

constexpr int kCountedRuns = 4;  // as many as there are types of calls

constexpr char kUsage[] =
    "usage: calllog_bench times FILE ROUNDS | counts FILE LARGEST | instructions LARGEST\n"
    "  times         nanoseconds of an operation, by Google Benchmark, as many times over\n"
    "  counts        allocations, their bytes, and bytes written by an operation; and whether all\n"
    "                contestants of a work give the same answer\n"
    "  instructions  under callgrind --collect-atstart=no: a dump per work and contestant\n"
    "LARGEST: without server documents of more entries.\n";

Cases AllCases() {
  Cases cases;
  AppendHistoryCases(&cases);
  AppendSearchCases(&cases);
  AppendFileCases(&cases);
  AppendServerCases(&cases);
  return cases;
}

bool ShowsGrowth(const Case& measured) {
  const std::string word = measured.work.substr(0, measured.work.find(' '));
  return word == "records" || word == "hits" || word == "entries";
}

Cases Compared(int largest) {
  Cases cases = AllCases();
  const auto tooLarge = [largest](const Case& measured) {
    return std::atoi(measured.work.c_str() + measured.work.find_last_of(' ')) > largest;
  };
  cases.erase(std::remove_if(cases.begin(), cases.end(),
                             [&](const Case& measured) {
                               return ShowsGrowth(measured) || tooLarge(measured);
                             }),
              cases.end());
  return cases;
}

void Restore(const Operation& operation) {
  if (operation.restore) operation.restore();
}

// The line of `text` in which the two differ first.
std::string LineOfDifference(const std::string& text, const std::string& other) {
  const auto at = std::mismatch(text.begin(), text.end(), other.begin(), other.end()).first;
  const auto begin = std::find(std::make_reverse_iterator(at), text.rend(), '\n').base();
  return {begin, std::find(at, text.end(), '\n')};
}

// Ends the run when the answer is another than that of the contestants before.
void CheckAnswer(const Case& measured, const Operation& operation) {
  static std::map<std::string, std::string> answers;
  if (!operation.answer) return;
  const std::string answer = operation.answer();
  const std::string& first = answers.emplace(measured.work, answer).first->second;
  if (answer.empty() || answer != first) {
    throw std::runtime_error(measured.work + ": " + measured.contestant + " answers \"" +
                             LineOfDifference(answer, first) + "\" where others answer \"" +
                             LineOfDifference(first, answer) + "\"");
  }
}

void CountAll(const std::string& path, int largest) {
  std::ofstream out(path);
  for (const Case& measured : Compared(largest)) {
    const Operation operation = measured.prepare();
    Restore(operation);
    operation.run();
    CheckAnswer(measured, operation);
    Counts sum;
    for (int i = 0; i < kCountedRuns; ++i) {
      Restore(operation);
      const Counts before = CountsNow();
      operation.run();
      const Counts after = CountsNow();
      sum.allocations += after.allocations - before.allocations;
      sum.bytes += after.bytes - before.bytes;
      sum.written += after.written - before.written;
    }
    out << measured.work << ";" << measured.contestant << ";" << sum.allocations / kCountedRuns
        << ";" << sum.bytes / kCountedRuns << ";" << sum.written / kCountedRuns << "\n";
  }
}

// One run before, so that nothing is counted that only the first run does.
void CountInstructions(int largest) {
  for (const Case& measured : Compared(largest)) {
    const std::string name =
        measured.work + ";" + measured.contestant + ";" + std::to_string(kCountedRuns);
    const Operation operation = measured.prepare();
    Restore(operation);
    operation.run();
    ForgetInstructions();
    for (int i = 0; i < kCountedRuns; ++i) {
      Restore(operation);
      ToggleInstructions();
      operation.run();
      ToggleInstructions();
    }
    DumpInstructions(name);
  }
}

// The process works in a directory of its own, in memory where there is such a file system.
class WorkingDirectory {
 public:
  WorkingDirectory() {
    const bool memory = access("/dev/shm", W_OK) == 0;
    std::string path = (memory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
                       "/calllog-bench-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no directory to work in");
    path_ = path;
    std::filesystem::current_path(path_);
    std::filesystem::create_directories("config/data");
    std::filesystem::create_directory("tmp");
  }
  ~WorkingDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::filesystem::path path_;
};

int Run(const std::vector<std::string>& arguments) {
  const std::string mode = arguments.empty() ? "" : arguments[0];
  const bool known = (arguments.size() == 3 && (mode == "times" || mode == "counts")) ||
                     (arguments.size() == 2 && mode == "instructions");
  if (!known) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  const std::string out = std::filesystem::absolute(arguments[1]).string();
  const int number = std::stoi(arguments.back());
  const WorkingDirectory directory;
  if (mode == "times") MeasureTimes(AllCases(), number, out);
  if (mode == "counts") CountAll(out, number);
  if (mode == "instructions") CountInstructions(number);
  NS_CALLLOG::CCallLogController::ReleaseInstance();
  NS_CALLLOG::CBSCallLogController::ReleaseInstance();
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::Run({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "calllog_bench: %s\n", failure.what());
    return 1;
  }
}
