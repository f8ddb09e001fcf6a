// How often a test program has allocated, for operations that must not; and allocations that fail,
// for operations that must bear it.
//
//   long const before = AllocationCount();
//   map.GetCellColor(3, 4);
//   EXPECT_EQ(AllocationCount(), before);
//
//   FailingAllocation const third(3);  // the third from here on fails, once
//   EXPECT_THROW(raster.Redim(10, 10, 2), std::bad_alloc);
//
// A program that asks counts every operator new; others are left alone.

#pragma once

long AllocationCount();

/// As long as it lives, the n-th operator new from its start on throws std::bad_alloc.
class FailingAllocation {
 public:
  explicit FailingAllocation(long n);
  ~FailingAllocation();
  FailingAllocation(FailingAllocation const &) = delete;
  FailingAllocation &operator=(FailingAllocation const &) = delete;
};
