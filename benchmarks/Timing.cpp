#include "benchmarks/Timing.h"

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace bench {
namespace {

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

void MeasureTogether(benchmark::State& state, const Operation& operation) {
  operation.run();  // what was freed while the state was made is sorted by then
  for (auto _ : state) operation.run();
}

void MeasureOneByOne(benchmark::State& state, const Operation& operation) {
  std::vector<double> seconds;
  seconds.reserve(static_cast<std::size_t>(state.max_iterations));
  for (auto _ : state) {
    operation.restore();
    seconds.push_back(SecondsOf(operation.run));
  }
  state.counters["median"] = Median(std::move(seconds)) * 1e9;
}

void Measure(benchmark::State& state, const Case& measured) {
  const Operation operation = measured.prepare();
  operation.restore ? MeasureOneByOne(state, operation) : MeasureTogether(state, operation);
}

}  // namespace

void MeasureTimes(const Cases& cases, int count, char** options) {
  benchmark::Initialize(&count, options);
  for (const Case& measured : cases) {
    benchmark::RegisterBenchmark(
        (measured.work + ";" + measured.contestant).c_str(),
        [&measured](benchmark::State& state) { Measure(state, measured); });
  }
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace bench
