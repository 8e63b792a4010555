// Times by Google Benchmark.
#pragma once

#include <string>

#include "benchmarks/Case.h"

namespace bench {

// Measures all cases, one after the other, `rounds` times: a busy moment hits all contestants
// alike. What else the machine does counts little: runs that follow one another are measured in
// processor time; each of those that are timed one by one in that or by the wall clock, whichever
// is less, and their median counts. Shows each case as it ends, and writes a line
// "work;contestant;nanoseconds" for each to the file.
void MeasureTimes(const Cases& cases, int rounds, const std::string& path);

}  // namespace bench
