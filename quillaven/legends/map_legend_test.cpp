#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/legends/map_legend.h>

#include "tests/support/legend_map.h"
#include "tests/support/recording_application.h"

namespace {

float const kInfinity = std::numeric_limits<float>::infinity();

CMapLegend Regular(int classes, double minimum, double maximum, int order) {
  CMapLegend legend;
  legend.NClasses(classes);
  legend.DisplayMin(minimum);
  legend.DisplayMax(maximum);
  legend.StateOrder(order);
  return legend;
}

CMapLegend Intervals(LegendMap &map, std::vector<float> lo, std::vector<float> hi) {
  CMapLegend legend;
  legend.Update(lo, hi);
  map.ClearLegend();
  for (unsigned long i = 0; i < lo.size(); ++i) map.AddLegendItem(std::to_string(i), 100 + i);
  return legend;
}

short AsShort(int value) {
  return static_cast<short>(value);
}
unsigned char AsByte(int value) {
  return static_cast<unsigned char>(value);
}

TEST(MapLegend, HasItsDefaultsAfterConstruction) {
  CMapLegend const legend;
  EXPECT_EQ(legend.NClasses(), 0);
  EXPECT_EQ(legend.PaletteFile(), "");
  EXPECT_EQ(legend.StateOrderColor(), 0);
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.Decimals(), 2);
  EXPECT_EQ(legend.DisplayMin(), 0.0);
  EXPECT_EQ(legend.DisplayMax(), 1.0);
  EXPECT_EQ(legend.StateLabel(), 4);
  EXPECT_EQ(legend.StateOrder(), 0);
  EXPECT_EQ(legend.StateScale(), 0);
}

TEST(MapLegend, SettersStoreAndTriggerNothing) {
  LegendMap map;
  CMapLegend legend;
  legend.LegendType(0);
  legend.Decimals(5);
  legend.StateOrderColor(1);
  legend.StateLabel(2);
  legend.StateOrder(3);
  legend.StateScale(4);
  legend.DisplayMin(-1.5);
  legend.DisplayMax(2.5);
  legend.PaletteFile("Relief.smp");
  EXPECT_EQ(legend.LegendType(), 0);
  EXPECT_EQ(legend.Decimals(), 5);
  EXPECT_EQ(legend.StateOrderColor(), 1);
  EXPECT_EQ(legend.StateLabel(), 2);
  EXPECT_EQ(legend.StateOrder(), 3);
  EXPECT_EQ(legend.StateScale(), 4);
  EXPECT_EQ(legend.DisplayMin(), -1.5);
  EXPECT_EQ(legend.DisplayMax(), 2.5);
  EXPECT_EQ(legend.PaletteFile(), "Relief.smp");
  legend.PaletteFile("");
  EXPECT_EQ(legend.PaletteFile(), "");
}

TEST(MapLegend, CopyHasItsOwnIntervals) {
  LegendMap map;
  CMapLegend legend = Intervals(map, {0, 1}, {1, 2});
  legend.PaletteFile("a.smp");
  CMapLegend copy(legend);
  CMapLegend assigned;
  assigned = legend;
  std::vector<float> other{9, 9};
  legend.Update(other, other);
  for (CMapLegend const &same : {copy, assigned}) {
    EXPECT_EQ(same.Lo(1), 1.0F);
    EXPECT_EQ(same.Hi(1), 2.0F);
    EXPECT_EQ(same.PaletteFile(), "a.smp");
    EXPECT_EQ(same.StateScale(), 2);
  }
}

TEST(MapLegend, FloatRangeIsDividedIntoEqualParts) {
  LegendMap map;
  CMapLegend const rising = Regular(10, 0, 1, 1);
  EXPECT_EQ(rising.GetCellLegendIndex(&map, 0.0F), 0);
  EXPECT_EQ(rising.GetCellLegendIndex(&map, 0.25F), 2);
  EXPECT_EQ(rising.GetCellLegendIndex(&map, 1.0F), 9);
  EXPECT_EQ(rising.GetCellLegendIndex(&map, 2.0F), 9);
  CMapLegend const falling = Regular(10, 0, 1, 0);
  EXPECT_EQ(falling.GetCellLegendIndex(&map, 0.0F), 9);
  EXPECT_EQ(falling.GetCellLegendIndex(&map, 0.25F), 7);
  EXPECT_EQ(falling.GetCellLegendIndex(&map, 1.0F), 0);
  EXPECT_EQ(falling.GetCellLegendIndex(&map, 2.0F), 0);
}

TEST(MapLegend, IntegersStretchTheRangeSoThatBothEndsAreClassesOfTheirOwn) {
  LegendMap map;
  CMapLegend const legend = Regular(10, 0, 90, 1);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(45)), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsByte(45)), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 45.0F), 5);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(90)), 9);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(89)), 8);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 89.0F), 9);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(-1)), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(91)), 9);
}

TEST(MapLegend, ValueOnASharedBoundaryGoesToTheClassOfLowerIndex) {
  LegendMap map;
  CMapLegend const legend = Intervals(map, {0, 1, 3}, {1, 2, 4});
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 1.0F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(1)), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsByte(2)), 1);
}

TEST(MapLegend, ValueInAGapTakesTheMiddleClassAndNotTheNearest) {
  LegendMap map;
  CMapLegend const legend = Intervals(map, {0, 1, 3}, {1, 2, 4});
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 2.5F), 1);
  CMapLegend const four = Intervals(map, {0, 1, 2, 9}, {1, 2, 3, 10});
  EXPECT_EQ(four.GetCellLegendIndex(&map, 8.9F), 2);
}

TEST(MapLegend, ValueOutsideRisingIntervalsGoesToTheNearEnd) {
  LegendMap map;
  CMapLegend const legend = Intervals(map, {0, 1, 3}, {1, 2, 4});
  EXPECT_EQ(legend.GetCellLegendIndex(&map, -1.0F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 9.0F), 2);
}

TEST(MapLegend, ValueOutsideFallingIntervalsGoesToTheNearEnd) {
  LegendMap map;
  CMapLegend const legend = Intervals(map, {3, 1, 0}, {4, 2, 1});
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 9.0F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, -1.0F), 2);
}

TEST(MapLegend, SearchOverIntervalsCountsTheItemsOfTheMapAndNotItsClasses) {
  LegendMap map;
  CMapLegend legend = Intervals(map, {0, 1, 2}, {1, 2, 3});
  map.m_nLegendItems = 2;
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 2.5F), 1);
}

TEST(MapLegend, CategorialValueIsTheClassHeldToTheClasses) {
  LegendMap map;
  CMapLegend legend;
  legend.LegendType(0);
  legend.NClasses(5);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 7.0F), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, -3.0F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(7)), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(-3)), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsByte(3)), 3);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 2.9F), 2);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, -0.9F), 0);
}

TEST(MapLegend, OnlyZeroIsCategorial) {
  LegendMap map;
  CMapLegend legend = Regular(10, 0, 1, 1);
  legend.LegendType(7);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 0.25F), 2);
}

TEST(MapLegend, ValuesThatNoIntHoldsGoToTheNearestClass) {
  LegendMap map;
  CMapLegend legend;
  legend.LegendType(0);
  legend.NClasses(5);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 1e30F), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, -1e30F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, kInfinity), 4);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, std::nanf("")), 0);
  EXPECT_EQ(Regular(10, 0, 1, 1).GetCellLegendIndex(&map, std::nanf("")), 0);
}

TEST(MapLegend, RangeWithoutExtentIsSafe) {
  LegendMap map;
  CMapLegend const legend = Regular(10, 5, 5, 1);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 5.0F), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(5)), 0);
  EXPECT_EQ(legend.GetCellLegendIndex(&map, AsShort(6)), 9);
}

TEST(MapLegend, LegendThatWasNeverAppliedAnswersWithoutItems) {
  LegendMap map;
  CMapLegend legend;
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 0.5F), 0);
  EXPECT_EQ(legend.GetCellColor(&map, 0.5F), 0UL);
  EXPECT_EQ(legend.GetCellString(&map, AsByte(3)), "");
  legend.LegendType(0);
  EXPECT_EQ(legend.GetCellColor(&map, AsByte(3)), 0UL);
  legend.NClasses(std::numeric_limits<int>::min());
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 0.5F), 0);
}

TEST(MapLegend, ColourIsTheOneOfTheClass) {
  LegendMap map({"a", "b"}, {0x112233, 0x445566});
  CMapLegend legend = Regular(2, 0, 1, 1);
  EXPECT_EQ(legend.GetCellColor(&map, 0.1F), 0x112233UL);
  EXPECT_EQ(legend.GetCellColor(&map, AsShort(1)), 0x445566UL);
  EXPECT_EQ(legend.GetCellColor(&map, AsByte(0)), 0x112233UL);
}

TEST(MapLegend, TextIsTheNumberForFloatAndShortAndTheNameForByte) {
  LegendMap map({"meadow", "wood"}, {0, 0});
  CMapLegend legend;
  legend.LegendType(0);
  legend.NClasses(2);
  EXPECT_EQ(legend.GetCellString(&map, 1.25F), "1.25");
  EXPECT_EQ(legend.GetCellString(&map, 1234567.0F), "1.23457e+06");
  EXPECT_EQ(legend.GetCellString(&map, AsShort(-7)), "-7");
  EXPECT_EQ(legend.GetCellString(&map, AsByte(1)), "wood");
}

TEST(MapLegend, BoundsOfARisingRegularScale) {
  CMapLegend const legend = Regular(4, 0, 8, 1);
  float const lo[] = {0, 2, 4, 6};
  float const hi[] = {2, 4, 6, 8};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(legend.Lo(i), lo[i]);
    EXPECT_EQ(legend.Hi(i), hi[i]);
  }
  EXPECT_EQ(legend.Lo(-1), 0.0F);
  EXPECT_EQ(legend.Hi(9), 8.0F);
}

TEST(MapLegend, BoundsOfAFallingRegularScale) {
  CMapLegend const legend = Regular(4, 0, 8, 0);
  float const lo[] = {6, 4, 2, 0};
  float const hi[] = {8, 6, 4, 2};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(legend.Lo(i), lo[i]);
    EXPECT_EQ(legend.Hi(i), hi[i]);
  }
}

TEST(MapLegend, BoundsOfACategorialClassAreItsNumber) {
  CMapLegend legend;
  legend.LegendType(0);
  EXPECT_EQ(legend.Lo(3), 3.0F);
  EXPECT_EQ(legend.Hi(3), 3.0F);
}

TEST(MapLegend, IntervalThatThereIsNotHasBoundsOfZero) {
  LegendMap map;
  CMapLegend const legend = Intervals(map, {1}, {2});
  EXPECT_EQ(legend.Lo(0), 1.0F);
  EXPECT_EQ(legend.Lo(1), 0.0F);
  EXPECT_EQ(legend.Hi(-1), 0.0F);
}

TEST(MapLegend, ChangingTheClassesOfIntervalsAddsEmptyOnesAndDropsTheSurplus) {
  LegendMap map;
  CMapLegend legend = Intervals(map, {1, 2}, {3, 4});
  legend.NClasses(3);
  EXPECT_EQ(legend.Hi(1), 4.0F);
  EXPECT_EQ(legend.Hi(2), 0.0F);
  legend.NClasses(1);
  legend.NClasses(2);
  EXPECT_EQ(legend.Hi(1), 0.0F);
  EXPECT_EQ(map.GetLegendItemCount(), 2);
}

TEST(MapLegend, ChangingTheClassesOfAnotherScaleLeavesTheIntervals) {
  LegendMap map;
  CMapLegend legend = Intervals(map, {1, 2}, {3, 4});
  legend.LegendType(7);
  legend.NClasses(1);
  legend.LegendType(1);
  EXPECT_EQ(legend.Hi(1), 4.0F);
}

TEST(MapLegend, UpdateSwitchesToIntervalsAndLeavesTheRest) {
  LegendMap map({"a", "b"}, {1, 2});
  CMapLegend legend;
  legend.NClasses(7);
  legend.Decimals(4);
  legend.LegendType(0);
  std::vector<float> lo{0, 1};
  std::vector<float> hi{1, 2};
  legend.Update(lo, hi);
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.NClasses(), 7);
  EXPECT_EQ(legend.Decimals(), 4);
  EXPECT_EQ(map.GetLegendItemName(1), "b");
}

TEST(MapLegend, UpdateScaleFreqShowsItsMessageAndReadsNoRaster) {
  RecordingApplication application;
  CMapLegend legend;
  legend.UpdateScaleFreq(nullptr);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "CMapLegend::UpdateScaleFreq: not implemented yet");
  EXPECT_EQ(application.boxes[0].title, "Quillaven");
}

// The classification written a second time, case by case.
struct NaiveLegend {
  int type;
  int classes;
  int order;
  int scale;
  double minimum;
  double maximum;
  std::vector<float> lo;
  std::vector<float> hi;
  int items;

  int Index(double value, bool isFloat) const {
    if (type == 0) {
      int index = static_cast<int>(value);
      if (index > classes - 1) index = classes - 1;
      if (index < 0) index = 0;
      return index;
    }
    if (scale != 0) return IntervalIndex(static_cast<float>(value));
    int position = 0;
    if (isFloat) {
      if (value <= minimum) {
        position = 0;
      } else if (value >= maximum) {
        position = classes - 1;
      } else {
        position = static_cast<int>((value - minimum) / (maximum - minimum) * classes);
        if (position < 0) position = 0;
        if (position > classes - 1) position = classes - 1;
      }
    } else {
      if (value < minimum) {
        position = 0;
      } else if (value > maximum) {
        position = classes - 1;
      } else {
        position = static_cast<int>((value - minimum) / (maximum - minimum) * (classes - 1));
      }
    }
    return order != 0 ? position : classes - position - 1;
  }

  int IntervalIndex(float value) const {
    auto at = [](std::vector<float> const &v, int i) { return v.at(static_cast<std::size_t>(i)); };
    for (int i = 0; i < items; ++i)
      if (value >= at(lo, i) && value <= at(hi, i)) return i;
    if (at(hi, 0) < at(hi, items - 1)) {
      if (value < at(hi, 0)) return 0;
      if (value >= at(lo, items - 1)) return items - 1;
    } else {
      if (value >= at(lo, 0)) return 0;
      if (value < at(hi, items - 1)) return items - 1;
    }
    return items / 2;
  }
};

NaiveLegend RandomLegend(std::mt19937 &random) {
  auto number = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  NaiveLegend legend{};
  legend.type = number(0, 2);
  legend.classes = number(1, 20);
  legend.order = number(0, 1);
  legend.scale = number(0, 1) * 2;
  legend.minimum = number(-50, 50);
  legend.maximum = legend.minimum + number(1, 100);
  legend.items = number(1, 12);
  for (int i = 0; i < legend.items; ++i) {
    float const from = static_cast<float>(number(-100, 100)) / 2;
    legend.lo.push_back(from);
    legend.hi.push_back(from + static_cast<float>(number(0, 40)) / 2);
  }
  return legend;
}

TEST(MapLegend, EveryKindOfLegendClassifiesByTheRules) {
  constexpr unsigned kSeed = 20130803;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 2000; ++round) {
    NaiveLegend naive = RandomLegend(random);
    LegendMap map;
    CMapLegend legend;
    if (naive.scale != 0) legend = Intervals(map, naive.lo, naive.hi);
    legend.LegendType(naive.type);
    legend.StateScale(naive.scale);
    legend.NClasses(naive.classes);
    if (naive.scale != 0 && naive.type == 1) legend.Update(naive.lo, naive.hi);
    legend.StateOrder(naive.order);
    legend.DisplayMin(naive.minimum);
    legend.DisplayMax(naive.maximum);
    for (int i = 0; i < 50; ++i) {
      int const quarters = std::uniform_int_distribution<int>(-800, 800)(random);
      float const asFloat = static_cast<float>(quarters) / 4;
      short const asShort = AsShort(quarters);
      unsigned char const asByte = AsByte(quarters);
      ASSERT_EQ(legend.GetCellLegendIndex(&map, asFloat), naive.Index(asFloat, true)) << round;
      ASSERT_EQ(legend.GetCellLegendIndex(&map, asShort), naive.Index(asShort, false)) << round;
      ASSERT_EQ(legend.GetCellLegendIndex(&map, asByte), naive.Index(asByte, false)) << round;
    }
  }
}

}  // namespace
