// Cells from one number type to another, as every file format of the library does it.

#pragma once

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
