// How many files, handles and descriptors this process has open, for tests that look for leaks.
//
//   long const before = OpenHandles();
//   for (int i = 0; i < 1000; ++i) WinExecAndWait("program", 0);
//   EXPECT_EQ(OpenHandles(), before);

#pragma once

long OpenHandles();
