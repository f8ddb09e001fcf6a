// How often a test program has allocated, for operations that must not; and memory that runs out.
//
//   long const before = AllocationCount();
//   map.GetCellColor(3, 4);
//   EXPECT_EQ(AllocationCount(), before);
//
// A program that asks counts every operator new; others are left alone. The new handler in force is
// called as the standard has it when memory is not there: what no object may be as large as is
// never there, nor is what a test has refused.

#pragma once

#include <cstddef>

long AllocationCount();

/// From now on an allocation of `bytes` or more fails. 0 refuses none.
void RefuseAllocationsFrom(std::size_t bytes);
