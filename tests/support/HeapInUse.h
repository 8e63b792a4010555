// How much memory the program's heap holds.
#pragma once

#include <malloc.h>

#include <cstddef>

// Sanitizers bring an allocator of their own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace desk {

inline bool IsSanitized() { return __sanitizer_get_current_allocated_bytes != nullptr; }

// Bytes that are allocated and not yet freed, by anybody in the process.
inline std::size_t HeapInUse() {
  if (IsSanitized()) return __sanitizer_get_current_allocated_bytes();
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

}  // namespace desk
