#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> g_allocations{0};
std::atomic<long> g_failing{0};  // by its count; 0 for none
}  // namespace

long AllocationCount() {
  return g_allocations;
}

FailingAllocation::FailingAllocation(long n) {
  g_failing = g_allocations + n;
}
FailingAllocation::~FailingAllocation() {
  g_failing = 0;
}

void *operator new(std::size_t size) {
  if (++g_allocations == g_failing) throw std::bad_alloc();
  for (;;) {
    if (void *memory = std::malloc(size > 0 ? size : 1)) return memory;
    std::new_handler const handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}
void operator delete(void *memory) noexcept {
  std::free(memory);
}
void operator delete(void *memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
