#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> g_allocations{0};
}

long AllocationCount() {
  return g_allocations;
}

void *operator new(std::size_t size) {
  ++g_allocations;
  if (void *memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void *memory) noexcept {
  std::free(memory);
}
void operator delete(void *memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
