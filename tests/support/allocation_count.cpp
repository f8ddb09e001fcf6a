#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

// No machine has that much; the allocator of a checked build ends the process instead of saying so.
constexpr std::size_t kLargestObject = std::size_t{1} << 40;

std::atomic<long> g_allocations{0};
std::atomic<long> g_failing{0};  // by its count; 0 for none
std::atomic<std::size_t> g_refusedFrom{kLargestObject};

void *Allocate(std::size_t size) {
  return size < g_refusedFrom ? std::malloc(size > 0 ? size : 1) : nullptr;
}

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

void RefuseAllocationsFrom(std::size_t bytes) {
  g_refusedFrom = bytes > 0 ? bytes : kLargestObject;
}

void *operator new(std::size_t size) {
  if (++g_allocations == g_failing) throw std::bad_alloc();
  for (;;) {
    if (void *memory = Allocate(size)) return memory;
    std::new_handler const handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}
void *operator new(std::size_t size, std::nothrow_t const & /*tag*/) noexcept {
  try {
    return ::operator new(size);
  } catch (std::bad_alloc const &) {
    return nullptr;
  }
}
// The forms for arrays too: where the C++ runtime is a library of its own, its forms know ours not.
void *operator new[](std::size_t size) {
  return ::operator new(size);
}
void *operator new[](std::size_t size, std::nothrow_t const &tag) noexcept {
  return ::operator new(size, tag);
}
void operator delete(void *memory) noexcept {
  std::free(memory);
}
void operator delete[](void *memory) noexcept {
  std::free(memory);
}
void operator delete[](void *memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void *memory, std::nothrow_t const & /*tag*/) noexcept {
  std::free(memory);
}
void operator delete(void *memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete(void *memory, std::nothrow_t const & /*tag*/) noexcept {
  std::free(memory);
}
