// Whether a shape that a file asks for is believed.

#pragma once

#include <algorithm>
#include <cstdint>

/// A file that is merely cut gets its shape, but one with room for a few cells cannot ask for all
/// memory. `room` is the number of cells that the file can hold. A row without cells counts as one.
inline bool AreCellsBelievable(int rows, int cols, std::uint64_t room) {
  constexpr std::uint64_t kAlways = std::uint64_t{1} << 26;
  auto const along = [](int cells) { return static_cast<std::uint64_t>(std::max(cells, 1)); };
  std::uint64_t const cells = along(rows) * along(cols);
  return cells <= kAlways || cells <= room;
}
