// What a bitmap legend tells the code that classifies whole rasters with it.

#pragma once

#include <quillaven/legends/bitmap_legend.h>

struct CBitmapLegendAccess {
  /// Whether the index of a value only rises or only falls from `low` to `high`: the classes are in
  /// the order of the values, and the no-data value is not among them.
  static bool FollowsValue(CBitmapLegend const &legend, float low, float high) {
    bool const holdsNoData =
        legend.m_bHasNoData && low <= legend.m_fNoData && legend.m_fNoData <= high;
    return !holdsNoData && ClassFollowsValue(legend.m_Legend);
  }

 private:
  // Explicit intervals may lie in any order, and more classes than that fold over in 8 bits.
  static bool ClassFollowsValue(CMapLegend const &legend) {
    constexpr int kMostClasses = 254;
    bool const isRegular = legend.LegendType() == 0 || legend.StateScale() == 0;
    return isRegular && legend.NClasses() <= kMostClasses;
  }
};
