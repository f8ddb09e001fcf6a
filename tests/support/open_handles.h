// How many files, handles and descriptors this process has open, for tests that look for leaks.
//
//   long const before = OpenHandles();
//   for (int i = 0; i < kManyLaunches; ++i) WinExecAndWait("program", 0);
//   EXPECT_EQ(OpenHandles(), before);

#pragma once

long OpenHandles();

/// The same of a process that has just begun, but for what each has: the standard streams, and the few
/// small handles that Windows gives it, none of which is of a file.
long InheritedHandles();

/// A hundred where a start takes 30 ms, as it does under emulation, else a thousand.
extern int const kManyLaunches;
