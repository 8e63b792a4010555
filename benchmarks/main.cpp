// The comparison: counts, instructions and times of everything that is measured, each in a run of
// its own, in an empty working directory. The tables are report.py's.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
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

// A line of counts: work;contestant;allocations;bytes;written. A dump's name: work;contestant;runs.
constexpr char kUsage[] =
    "usage: calllog_bench counts | times [--benchmark_...]\n"
    "  counts  of an operation; under callgrind --collect-atstart=no a dump of each, too\n"
    "  times   by Google Benchmark, as its options say\n";

Cases AllCases() {
  Cases cases;
  AppendHistoryCases(&cases);
  AppendSearchCases(&cases);
  AppendFileCases(&cases);
  AppendServerCases(&cases);
  return cases;
}

bool ShowsGrowth(const Case& measured) {
  return measured.work.rfind("records ", 0) == 0 || measured.work.rfind("hits ", 0) == 0;
}

// Ends the run when the answer is another than that of the contestants before.
void CheckAnswer(const Case& measured, const Operation& operation) {
  static std::map<std::string, std::string> answers;
  if (!operation.answer) return;
  const std::string answer = operation.answer();
  const std::string& first = answers.emplace(measured.work, answer).first->second;
  if (!answer.empty() && answer == first) return;
  const auto at = std::mismatch(answer.begin(), answer.end(), first.begin(), first.end()).first;
  const auto same = static_cast<std::size_t>(at - answer.begin());
  throw std::runtime_error(measured.work + ": " + measured.contestant + " answers \"" +
                           answer.substr(same, 60) + "\" where others answer \"" +
                           first.substr(same, 60) + "\"");
}

// One run before, so that nothing is counted that only the first does.
void RunCounted(const Operation& operation) {
  for (int i = 0; i <= kCountedRuns; ++i) {
    if (operation.restore) operation.restore();
    if (i > 0) BeginCounting();
    operation.run();
    if (i > 0) EndCounting();
  }
}

void CountAll() {
  for (const Case& measured : AllCases()) {
    if (ShowsGrowth(measured)) continue;
    const Operation operation = measured.prepare();
    RunCounted(operation);
    const std::string name = measured.work + ";" + measured.contestant;
    const Counts counts = TakeCounts(name + ";" + std::to_string(kCountedRuns));
    CheckAnswer(measured, operation);
    std::printf("%s;%ld;%ld;%ld\n", name.c_str(), counts.allocations / kCountedRuns,
                counts.bytes / kCountedRuns, counts.written / kCountedRuns);
  }
}

int Run(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode != "times" && (mode != "counts" || argc > 2)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  std::filesystem::create_directories("config/data");
  std::filesystem::create_directory("tmp");
  mode == "times" ? MeasureTimes(AllCases(), argc - 1, argv + 1) : CountAll();
  NS_CALLLOG::CCallLogController::ReleaseInstance();
  NS_CALLLOG::CBSCallLogController::ReleaseInstance();
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::Run(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "calllog_bench: %s\n", failure.what());
    return 1;
  }
}
