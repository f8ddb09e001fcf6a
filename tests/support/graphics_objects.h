// How many objects of Windows' graphics system this process has, for tests that look for leaks.
//
//   unsigned long const before = GraphicsObjects();
//   for (int i = 0; i < 1000; ++i) Paint();
//   EXPECT_LT(GraphicsObjects(), before + 500);

#pragma once

#include <algorithm>
#include <vector>
#include <windows.h>

// Wine does not count them; there the number of a new one tells, as it is the next that is free.
inline unsigned long GraphicsObjects() {
  unsigned long count = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
  if (count != 0) return count;
  std::vector<HGDIOBJ> objects(50);
  for (HGDIOBJ &object : objects) {
    object = ::CreateSolidBrush(RGB(128, 128, 128));
    count = std::max<unsigned long>(count, LOWORD(object));
  }
  for (HGDIOBJ const object : objects) ::DeleteObject(object);
  return count;
}
