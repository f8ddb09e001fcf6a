#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <quillaven/editor/plot_scale_internal.h>

namespace {

// 500 x 300 pixels within the margin.
PlotScale Scale(PlotLimits limits = {0, 8, -1, 1}) {
  return {{100, 50, 616, 366}, limits};
}

TEST(PlotScale, TheLimitsLieOnTheMarginOfEightPixels) {
  PlotScale const scale = Scale();
  EXPECT_EQ(scale.Width(), 500);
  EXPECT_EQ(scale.Height(), 300);
  EXPECT_EQ(scale.PixelX(0), 108);
  EXPECT_EQ(scale.PixelX(8), 608);
  EXPECT_EQ(scale.PixelY(1), 58);
  EXPECT_EQ(scale.PixelY(-1), 358);
  EXPECT_EQ(scale.PixelY(0), 208);
}

TEST(PlotScale, PixelsAreTruncatedTowardZeroOnBothSides) {
  PlotScale const scale = Scale({0, 500, 0, 300});
  EXPECT_EQ(scale.PixelX(1.9), 109);
  EXPECT_EQ(scale.PixelX(-1.9), 107);
  EXPECT_EQ(scale.PixelY(1.9), 357);
  EXPECT_EQ(scale.PixelY(-1.9), 359);
}

TEST(PlotScale, TheWayBackDividesByOneLess) {
  PlotScale const scale = Scale();
  EXPECT_EQ(scale.DataX(108), 0.0);
  EXPECT_EQ(scale.DataX(607), 8.0);
  EXPECT_DOUBLE_EQ(scale.DataX(608), 8.0 * 500 / 499);
  EXPECT_EQ(scale.DataY(358), -1.0);
  EXPECT_EQ(scale.DataY(59), 1.0);
  EXPECT_DOUBLE_EQ(scale.DataY(58), 2.0 * 300 / 299 - 1);
  EXPECT_EQ(scale.ShiftX(1), static_cast<float>(8.0 / 499));
  EXPECT_EQ(scale.ShiftY(-3), static_cast<float>(-6.0 / 299));
}

TEST(PlotScale, TheTwoWaysAreNotInversesButLieAtMostAPixelApart) {
  int differences = 0;
  for (unsigned int seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto const below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    PlotScale scale{{below(100), below(100), 200 + below(900), 200 + below(900)}, {}};
    scale.limits.minX = static_cast<float>(below(2000) - 1000) / 8;
    scale.limits.maxX = scale.limits.minX + static_cast<float>(1 + below(1000)) / 8;
    scale.limits.minY = static_cast<float>(below(2000) - 1000) / 8;
    scale.limits.maxY = scale.limits.minY + static_cast<float>(1 + below(1000)) / 8;
    bool const atTheEnd = seed % 2 == 0;
    int const px = scale.plot.left + 8 + (atTheEnd ? scale.Width() - 1 : below(scale.Width()));
    int const py = scale.plot.top + 8 + 1 + below(scale.Height());
    int const againX = scale.PixelX(scale.DataX(px));
    int const againY = scale.PixelY(scale.DataY(py));
    // A column is a (W - 1)th wide on the way back and a W-th on the way out: the last one goes
    // past the end, and truncation hides the difference in all others.
    ASSERT_LE(std::abs(againX - px), 1);
    ASSERT_LE(std::abs(againY - py), 1);
    differences += againX != px || againY != py ? 1 : 0;
    // The naive model of the two formulas.
    double const w = scale.plot.right - scale.plot.left - 16;
    double const x = scale.DataX(px);
    double const range = static_cast<double>(scale.limits.maxX) - scale.limits.minX;
    ASSERT_EQ(x, range * (px - scale.plot.left - 8) / (w - 1) + scale.limits.minX);
    ASSERT_EQ(againX, scale.plot.left + 8 +
                          static_cast<int>(std::trunc((x - scale.limits.minX) / range * w)));
  }
  EXPECT_GE(differences, 1000);
}

TEST(PlotScale, EqualLimitsDivideByZeroAndStayWithinAnInt) {
  PlotScale const scale = Scale({3, 3, 2, 2});
  EXPECT_EQ(scale.PixelX(4), 108 + kFarthest);
  EXPECT_EQ(scale.PixelX(2), 108 - kFarthest);
  EXPECT_EQ(scale.PixelX(3), 108 - kFarthest);  // 0 / 0
  EXPECT_EQ(scale.PixelY(4), 358 - kFarthest);
  EXPECT_EQ(scale.PixelY(1), 358 + kFarthest);
  EXPECT_EQ(scale.DataX(500), 3.0);
  EXPECT_EQ(scale.DataY(200), 2.0);
}

TEST(PlotScale, APlotOfOnePixelHasNoWayBack) {
  PlotScale const scale{{0, 0, 17, 17}, {0, 8, -1, 1}};
  EXPECT_TRUE(std::isnan(scale.DataX(8)));
  EXPECT_TRUE(std::isinf(scale.ShiftX(1)));
}

TEST(Pixels, AreHeldSoThatSumsStayWithinAnInt) {
  EXPECT_EQ(HeldPixel(1e300), kFarthest);
  EXPECT_EQ(HeldPixel(-1e300), -kFarthest);
  EXPECT_EQ(HeldPixel(std::numeric_limits<double>::quiet_NaN()), -kFarthest);
  EXPECT_EQ(HeldPixel(-2.9), -2);
  CPoint const far = HeldPoint(
      {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()});
  EXPECT_EQ(far.x, -kFarthest);
  EXPECT_EQ(far.y, kFarthest);
}

TEST(Rectangles, HoldTheirLeftAndTopEdgeButNotTheirRightAndBottomOne) {
  CRect const rectangle{10, 20, 30, 40};
  EXPECT_TRUE(PtInRect(rectangle, {10, 20}));
  EXPECT_TRUE(PtInRect(rectangle, {29, 39}));
  EXPECT_FALSE(PtInRect(rectangle, {30, 39}));
  EXPECT_FALSE(PtInRect(rectangle, {29, 40}));
  EXPECT_FALSE(PtInRect(rectangle, {9, 20}));
  EXPECT_FALSE(PtInRect(rectangle, {10, 19}));
}

void ExpectSteps(float lo, float hi, float start, float step, int count) {
  GridSteps const steps = ChooseScale(lo, hi, 5, 15);
  SCOPED_TRACE(testing::Message() << lo << " to " << hi);
  EXPECT_EQ(steps.start, start);
  EXPECT_EQ(steps.step, step);
  EXPECT_EQ(steps.count, count);
}

TEST(GridSteps, AreATenthOfThePowerOfTenAboveTheRange) {
  ExpectSteps(0, 10, 0, 1, 11);
  ExpectSteps(0, 8, 0, 1, 9);
  ExpectSteps(-3, 4, -3, 1, 8);
  ExpectSteps(2.5F, 9.5F, 2, 1, 9);  // begins below the range and ends above it
  ExpectSteps(0, 1000, 0, 100, 11);
}

TEST(GridSteps, AreHalvedWhileTooFewAndReachTooFarThen) {
  ExpectSteps(-1, 1, -1, 0.5F, 6);  // 3 doubled: the last, 1.5, lies outside
  ExpectSteps(0, 2, 0, 0.5F, 6);
  ExpectSteps(0, 1.5F, 0, 0.5F, 6);
  ExpectSteps(0, 3, 0, 0.5F, 8);
}

// 0.05 as a float is a little more than a twentieth, and 0.7 counts from 0.6 on, so that the eight
// lines end at 0.95: none is left for 1. Grids have always been drawn so.
TEST(GridSteps, MayEndBeforeTheRangeWhereNoFloatHoldsTheStep) {
  ExpectSteps(0.7F, 1, 0.6F, 0.05F, 8);
}

TEST(GridSteps, AreDoubledWhileTooManyAndARemainderIsDropped) {
  GridSteps const steps = ChooseScale(0, 100, 2, 4);
  EXPECT_EQ(steps.step, 40);  // 11, 5, 2
  EXPECT_EQ(steps.count, 2);
}

TEST(GridSteps, AreNoneForARangeThatIsEmptyBackwardsOrNotFinite) {
  float const infinite = std::numeric_limits<float>::infinity();
  float const nan = std::numeric_limits<float>::quiet_NaN();
  ExpectSteps(1, 1, 0, 0, 0);
  ExpectSteps(2, 1, 0, 0, 0);
  ExpectSteps(0, infinite, 0, 0, 0);
  ExpectSteps(-infinite, 0, 0, 0, 0);
  ExpectSteps(nan, 1, 0, 0, 0);
}

TEST(GridSteps, AreFewWhateverTheRange) {
  for (unsigned int seed = 1; seed <= 5000; ++seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> part(-1, 1);
    std::uniform_int_distribution<int> power(-44, 38);
    float const lo = part(random) * std::pow(10.0F, static_cast<float>(power(random)));
    float const hi = part(random) * std::pow(10.0F, static_cast<float>(power(random)));
    GridSteps const steps = ChooseScale(lo, hi, 5, 15);
    SCOPED_TRACE(seed);
    ASSERT_GE(steps.count, 0);
    ASSERT_LE(steps.count, 15);
    if (steps.count != 0) {
      ASSERT_GE(steps.count, 5);
    }
  }
}

}  // namespace
