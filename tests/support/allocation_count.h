// How often a test program has allocated, for operations that must not; allocations that fail, for
// operations that must bear it; and memory that runs out.
//
//   long const before = AllocationCount();
//   map.GetCellColor(3, 4);
//   EXPECT_EQ(AllocationCount(), before);
//
//   FailingAllocation const third(3);  // the third from here on fails, once
//   EXPECT_THROW(raster.Redim(10, 10, 2), std::bad_alloc);
//
// A program that asks counts every operator new; others are left alone. The new handler in force is
// called as the standard has it when memory is not there: blocks larger than any object may be are
// never there, nor are those that a test has refused.

#pragma once

#include <cstddef>

long AllocationCount();

/// As long as it lives, the n-th operator new from its start on throws std::bad_alloc.
class FailingAllocation {
 public:
  explicit FailingAllocation(long n);
  ~FailingAllocation();
  FailingAllocation(FailingAllocation const &) = delete;
  FailingAllocation &operator=(FailingAllocation const &) = delete;
};

/// From now on memory for `bytes` or more is not there. 0 brings it back.
void RefuseAllocationsFrom(std::size_t bytes);
