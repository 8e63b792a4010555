// Times by Google Benchmark.
#pragma once

#include "benchmarks/Case.h"

namespace bench {

// By Google Benchmark's options (behind a first that is none), under "work;contestant". Runs that
// follow one another are measured in processor time; those that are timed by themselves each in
// that or by the wall clock, whichever is less, and the counter "median" is theirs, in nanoseconds.
void MeasureTimes(const Cases& cases, int count, char** options);

}  // namespace bench
