// The program's operator new, which its shared libraries use as well.
#include "tests/memory/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int left = 0;  // allocations up to the first that fails; 0: none fails
thread_local bool lasting = false;
thread_local bool failed = false;

bool Fails() {
  if (left == 0 || --left > 0) return false;
  failed = true;
  if (lasting) left = 1;
  return true;
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Fails() ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size) {
  void* const block = operator new(size, std::nothrow);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }

namespace desk {

void BeginShortage(int n, Shortage shortage) {
  failed = false;
  lasting = shortage == Shortage::kLasting;
  left = n;
}

bool EndShortage() {
  left = 0;
  return failed;
}

}  // namespace desk
