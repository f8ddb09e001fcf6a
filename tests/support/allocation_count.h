// How often a test program has allocated, for operations that must not.
//
//   long const before = AllocationCount();
//   map.GetCellColor(3, 4);
//   EXPECT_EQ(AllocationCount(), before);
//
// A program that asks counts every operator new; others are left alone.

#pragma once

long AllocationCount();
