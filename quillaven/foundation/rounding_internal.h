// Numbers as the integers that they are taken for.

#pragma once

#include <limits>

/// Truncates toward zero; what no int holds goes to the nearest end, and what is no number to the
/// lower.
inline int Truncated(double value) {
  constexpr double kLowest = std::numeric_limits<int>::min();
  constexpr double kHighest = std::numeric_limits<int>::max();
  if (!(value > kLowest)) return std::numeric_limits<int>::min();
  if (value >= kHighest) return std::numeric_limits<int>::max();
  return static_cast<int>(value);
}

/// The float next to a number; infinite for one that lies beyond all floats.
inline float NearestFloat(double value) {
  constexpr float kHighest = std::numeric_limits<float>::max();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  // Half a step above the highest float. Below it lies what the digits of that float read as.
  constexpr double kBeyond = 0x1.ffffffp127;
  if (value > static_cast<double>(kHighest)) return value < kBeyond ? kHighest : kInfinity;
  if (value < -static_cast<double>(kHighest)) return value > -kBeyond ? -kHighest : -kInfinity;
  return static_cast<float>(value);
}

/// The integer that a text begins with, behind blanks; 0 if there is none. What no int holds goes
/// to the nearest end. `end`, if given, becomes where the integer ends, or the text itself without
/// one.
int LeadingInteger(char const *text, char const **end = nullptr);
