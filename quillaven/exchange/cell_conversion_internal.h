// Cells from one number type to another, as every file format of the library does it.

#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include <quillaven/foundation/rounding_internal.h>

/// The low 16 bits of a number truncated toward zero, whatever its size: no integer needs to hold
/// it. What is no number, or is infinite, has none set.
inline std::int32_t LowBits(double value) {
  return std::isfinite(value) ? static_cast<std::int32_t>(std::fmod(value, 65536.0)) : 0;
}

/// A float becomes an integer by truncation toward zero and keeps its low bits; an integer keeps
/// its low bits in a narrower one. A double that no float holds is infinite as one.
template <class To, class From>
To ConvertCell(From value) {
  if constexpr (std::is_floating_point_v<From> && !std::is_floating_point_v<To>) {
    static_assert(sizeof(To) <= 2);
    constexpr double kHeld = 2147483648.0;  // below this an int holds it, as nearly always
    double const number = value;
    bool const fits = number > -kHeld && number < kHeld;
    return static_cast<To>(fits ? static_cast<std::int32_t>(number) : LowBits(number));
  } else if constexpr (std::is_same_v<From, double> && std::is_same_v<To, float>) {
    return NearestFloat(value);
  } else {
    return static_cast<To>(value);
  }
}
