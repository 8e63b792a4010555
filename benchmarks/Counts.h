// What can be counted of an operation, alike for all contestants.
#pragma once

#include <string>

namespace bench {

struct Counts {
  long allocations = 0;  // malloc and its like, of the whole process
  long bytes = 0;        // that they were asked for
  long written = 0;      // bytes handed to the kernel; a mapped file does not count
};

// Since the process began. Asking counts for nothing.
Counts CountsNow();

// Callgrind's count, which begins switched off. Nothing happens outside valgrind.
void ForgetInstructions();
void ToggleInstructions();
void DumpInstructions(const std::string& name);  // to a file of its own

}  // namespace bench
