// Points and rectangles in whole pixels or cells.
//
//   CRect whole;
//   whole.right = map.NCols() - 1;   // the sides are inclusive where a map takes a rectangle
//   whole.bottom = map.NRows() - 1;
//   map.WriteBitmap("year.bmp", 1, whole, "1990");

#pragma once

#include <cstdint>

/// A pair of signed 32-bit integers.
struct CPoint {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

/// A plain rectangle; whether right and bottom are inside is told by the operation that takes it.
struct CRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
};
