#include "benchmarks/Timing.h"

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <utility>
#include <vector>

namespace bench {
namespace {

// The name under which the median of the runs that are timed one by one is kept.
constexpr char kMedian[] = "median";

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// By the wall clock, which is cheap to ask; by the processor's where that is less, because others
// were let in meanwhile.
double SecondsOf(const std::function<void()>& run) {
  const double processorBegin = ProcessorSeconds();
  const auto begin = std::chrono::steady_clock::now();
  run();
  const auto end = std::chrono::steady_clock::now();
  const double processor = ProcessorSeconds() - processorBegin;
  return std::min(processor, std::chrono::duration<double>(end - begin).count());
}

void Measure(benchmark::State& state, const Case& measured) {
  const Operation operation = measured.prepare();
  if (!measured.restored) {
    operation.run();  // what was freed while the state was made is sorted by then
    for (auto _ : state) operation.run();
    return;
  }
  std::vector<double> seconds;
  seconds.reserve(static_cast<std::size_t>(state.max_iterations));
  for (auto _ : state) {
    operation.restore();
    seconds.push_back(SecondsOf(operation.run));
    state.SetIterationTime(seconds.back());
  }
  state.counters[kMedian] = Median(std::move(seconds));
}

double Nanoseconds(const benchmark::BenchmarkReporter::Run& run) {
  const auto median = run.counters.find(kMedian);
  if (median != run.counters.end()) return median->second * 1e9;
  return run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e9;
}

std::string NameOf(const Case& measured) { return measured.work + ";" + measured.contestant; }

// Keeps what is measured, and shows how far it is.
class Progress : public benchmark::BenchmarkReporter {
 public:
  Progress(std::ostream& out, std::size_t total) : out_(out), total_(total) {}

  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const double nanoseconds = Nanoseconds(run);
      out_ << run.run_name.function_name << ";" << nanoseconds << "\n";
      std::cout << "[" << ++done_ << "/" << total_ << "] " << run.run_name.function_name << "  "
                << nanoseconds << " ns" << std::endl;
    }
  }

 private:
  std::ostream& out_;
  const std::size_t total_;
  std::size_t done_ = 0;
};

}  // namespace

void MeasureTimes(const Cases& cases, int rounds, const std::string& path) {
  char program[] = "calllog_bench", least[] = "--benchmark_min_time=0.01";
  char* arguments[] = {program, least, nullptr};
  int count = 2;
  benchmark::Initialize(&count, arguments);
  for (const Case& measured : cases) {
    auto* const registered = benchmark::RegisterBenchmark(
        NameOf(measured).c_str(),
        [&measured](benchmark::State& state) { Measure(state, measured); });
    if (measured.restored) registered->UseManualTime();
  }
  std::ofstream out(path);
  Progress progress(out, cases.size() * static_cast<std::size_t>(rounds));
  for (int round = 0; round < rounds; ++round) benchmark::RunSpecifiedBenchmarks(&progress);
}

}  // namespace bench
