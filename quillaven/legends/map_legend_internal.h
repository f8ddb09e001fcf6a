// What the rooms of CMapLegend share: constants, and numbers held to what they index.

#pragma once

#include <vector>

#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/maps/base_map.h>

constexpr int kCategorial = 0;
constexpr int kNumeric = 1;
constexpr int kExplicitIntervals = 2;  // what the library stores in StateScale for them
constexpr int kNamesOfTheirOwn = 3;    // StateLabel
constexpr int kRangeLabel = 4;         // StateLabel

// Bounds are floats, and so are these: a bound that is written as 1e36 is open.
constexpr float kNoLowerEnd = -1e36F;
constexpr float kNoUpperEnd = 1e36F;

/// The size of a list of so many classes.
int ListSize(int classes);

/// An index between 0 and the last of so many classes.
inline int HoldToClasses(int index, int classes) {
  if (index > classes - 1) index = classes - 1;
  return index < 0 ? 0 : index;
}

inline float Bound(std::vector<float> const &bounds, int index) {
  auto const i = static_cast<std::size_t>(index);
  return index >= 0 && i < bounds.size() ? bounds[i] : 0.0F;
}

inline unsigned long ItemColor(CBaseMap const &map, int index) {
  auto const i = static_cast<std::size_t>(index);
  return index >= 0 && i < map.m_LegendColors.size() ? map.m_LegendColors[i] : 0;
}
