// Cells from one number type to another, as every file format of the library does it.

#pragma once

#include <cstdint>
#include <type_traits>

#include <quillaven/foundation/rounding_internal.h>

/// A float becomes an integer by truncation toward zero; an integer keeps its low bits in a
/// narrower one.
template <class To, class From>
To ConvertCell(From value) {
  if constexpr (std::is_floating_point_v<From> && !std::is_floating_point_v<To>) {
    return static_cast<To>(Truncated(value));
  } else {
    return static_cast<To>(value);
  }
}

/// Whether a shape that a file asks for is believed: a file that is merely cut gets its shape, but
/// one with room for a few cells cannot ask for all memory.
inline bool AreCellsBelievable(int rows, int cols, std::uint64_t room) {
  constexpr std::uint64_t kAlways = std::uint64_t{1} << 26;
  if (rows < 1 || cols < 1) return true;
  std::uint64_t const cells = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols);
  return cells <= kAlways || cells <= room;
}
