// Whether a shape that a file asks for is believed.
//
//   if (!AreCellsBelievable(rows, cols, [&] { return BytesLeft() / sizeof(float); })) return false;
//   raster.Redim(rows, cols, DefaultFineResolution());

#pragma once

#include <algorithm>
#include <cstdint>

/// A file that is merely cut gets its shape, but one with room for a few cells cannot ask for all
/// memory. `room` tells how many cells the file can hold; it is asked about large shapes alone, as
/// not every file can tell. A row without cells counts as one cell, for the pointer to it, and a
/// shape without rows costs nothing, however many columns it has.
template <class Room>
bool AreCellsBelievable(int rows, int cols, Room room) {
  constexpr std::uint64_t kAlways = std::uint64_t{1} << 26;
  if (rows < 1) return true;
  std::uint64_t const cells =
      static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(std::max(cols, 1));
  return cells <= kAlways || cells <= static_cast<std::uint64_t>(room());
}
