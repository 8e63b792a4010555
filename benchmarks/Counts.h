// What can be counted of an operation, alike for all contestants.
#pragma once

#include <string>

namespace bench {

struct Counts {
  long allocations = 0;  // malloc and its like, of the whole process
  long bytes = 0;        // that they were asked for
  long written = 0;      // bytes handed to the kernel; a mapped file does not count
};

// What is done between the two is added to what was counted before.
void BeginCounting();
void EndCounting();

// What was counted since this was asked last. Under callgrind, which begins switched off, the
// instructions go to a file of their own, under this name.
Counts TakeCounts(const std::string& name);

}  // namespace bench
