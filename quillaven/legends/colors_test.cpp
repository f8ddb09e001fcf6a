#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/legends/colors.h>

namespace {

struct Hls {
  int hue;
  int lightness;
  int saturation;
  bool operator==(Hls const &) const = default;
};

Hls ToHls(unsigned long color) {
  unsigned short hue = 1;
  unsigned short lightness = 1;
  unsigned short saturation = 1;
  RGBtoHLS(color, hue, lightness, saturation);
  return {hue, lightness, saturation};
}

unsigned long ToRgb(int hue, int lightness, int saturation) {
  unsigned long color = 0xABCDEF12;
  HLStoRGB(static_cast<unsigned short>(hue), static_cast<unsigned short>(lightness),
           static_cast<unsigned short>(saturation), color);
  return color;
}

TEST(Colors, GreyHasHue168AndDoesNotComeBackExactly) {
  EXPECT_EQ(ToHls(0x808080), (Hls{168, 126, 0}));
  EXPECT_EQ(ToRgb(168, 126, 0), 0x7F7F7FUL);
}

TEST(Colors, BlackAndWhiteAreGreys) {
  EXPECT_EQ(ToHls(0x000000), (Hls{168, 0, 0}));
  EXPECT_EQ(ToHls(0xFFFFFF), (Hls{168, 252, 0}));
  EXPECT_EQ(ToRgb(168, 0, 0), 0x000000UL);
  EXPECT_EQ(ToRgb(168, 252, 0), 0xFFFFFFUL);
}

TEST(Colors, PureColoursLieOnTheSixthsOfTheTurn) {
  EXPECT_EQ(ToHls(0x0000FF), (Hls{0, 126, 252}));
  EXPECT_EQ(ToHls(0x00FFFF), (Hls{42, 126, 252}));
  EXPECT_EQ(ToHls(0x00FF00), (Hls{84, 126, 252}));
  EXPECT_EQ(ToHls(0xFFFF00), (Hls{126, 126, 252}));
  EXPECT_EQ(ToHls(0xFF0000), (Hls{168, 126, 252}));
  EXPECT_EQ(ToHls(0xFF00FF), (Hls{210, 126, 252}));
}

TEST(Colors, PureHuesComeBackAsPureColours) {
  EXPECT_EQ(ToRgb(0, 126, 252), 0x0000FFUL);
  EXPECT_EQ(ToRgb(42, 126, 252), 0x00FFFFUL);
  EXPECT_EQ(ToRgb(84, 126, 252), 0x00FF00UL);
  EXPECT_EQ(ToRgb(126, 126, 252), 0xFFFF00UL);
  EXPECT_EQ(ToRgb(168, 126, 252), 0xFF0000UL);
  EXPECT_EQ(ToRgb(210, 126, 252), 0xFF00FFUL);
}

TEST(Colors, HueBelowAThirdOfTheTurnHasTheLowEndOfItsBlueChannel) {
  // In 16 bits, hue 60 - 84 is 65512; one correction leaves it far above the turn.
  EXPECT_EQ(ToRgb(60, 100, 100) >> 16, ToRgb(0, 100, 100) >> 16);
}

TEST(Colors, HueAtTheTopOfTheScaleIsRedAgain) {
  EXPECT_EQ(ToRgb(252, 126, 252), 0x0000FFUL);
}

// The same rules written with one case for each formula, on all colours of a coarse lattice.
Hls NaiveHls(int r, int g, int b) {
  int const max = std::max(r, std::max(g, b));
  int const min = std::min(r, std::min(g, b));
  int const lightness = ((max + min) * 252 + 255) / 510;
  if (max == min) return {168, lightness, 0};
  int saturation = 0;
  if (lightness <= 126) {
    saturation = ((max - min) * 252 + (max + min) / 2) / (max + min);
  } else {
    int const t = 510 - max - min;
    saturation = ((max - min) * 252 + t / 2) / t;
  }
  int const d = max - min;
  int const deltaR = ((max - r) * 42 + d / 2) / d;
  int const deltaG = ((max - g) * 42 + d / 2) / d;
  int const deltaB = ((max - b) * 42 + d / 2) / d;
  int hue = 168 + deltaG - deltaR;
  if (r == max) {
    hue = deltaB - deltaG;
  } else if (g == max) {
    hue = 84 + deltaR - deltaB;
  }
  if (hue < 0) hue += 252;
  if (hue > 252) hue -= 252;
  return {hue, lightness, saturation};
}

TEST(Colors, EveryColourOfALatticeConvertsByTheRules) {
  for (int r = 0; r < 256; r += 5) {
    for (int g = 0; g < 256; g += 5) {
      for (int b = 0; b < 256; b += 5) {
        auto const color = static_cast<unsigned long>(b << 16 | g << 8 | r);
        ASSERT_EQ(ToHls(color), NaiveHls(r, g, b)) << r << " " << g << " " << b;
      }
    }
  }
}

TEST(Colors, BackAndForthStaysNear) {
  std::mt19937 random(4711);
  for (int i = 0; i < 20000; ++i) {
    unsigned long const color = random() & 0xFFFFFF;
    Hls const hls = ToHls(color);
    unsigned long const back = ToRgb(hls.hue, hls.lightness, hls.saturation);
    for (int shift : {0, 8, 16}) {
      int const before = static_cast<int>(color >> shift & 0xFF);
      int const after = static_cast<int>(back >> shift & 0xFF);
      ASSERT_NEAR(before, after, 8) << std::hex << color;
    }
  }
}

TEST(Colors, HighByteOfAColourPlaysNoPart) {
  EXPECT_EQ(ToHls(0xFF0000FF), ToHls(0x0000FF));
}

TEST(Colors, ValuesAboveTheScaleKeepTheLowBytesOfTheirChannels) {
  for (int value : {253, 1000, 65535}) EXPECT_LE(ToRgb(value, value, value), 0xFFFFFFUL);
}

TEST(CalcEquidistantColors, SixEntriesAreTheSixPureHues) {
  std::vector<unsigned long> colors(6);
  CalcEquidistantColors(colors, 252, 126);
  EXPECT_EQ(colors, (std::vector<unsigned long>{0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000,
                                                0xFF00FF}));
}

TEST(CalcEquidistantColors, HueIsTheTruncatedMultipleOfAFloatStep) {
  std::vector<unsigned long> colors(11);
  CalcEquidistantColors(colors, 200, 100);
  float const step = 252.0F / 11.0F;
  for (std::size_t i = 0; i < colors.size(); ++i)
    EXPECT_EQ(colors[i], ToRgb(static_cast<int>(static_cast<float>(i) * step), 100, 200)) << i;
}

TEST(CalcEquidistantColors, EmptyListStaysEmpty) {
  std::vector<unsigned long> colors;
  CalcEquidistantColors(colors, 252, 126);
  EXPECT_TRUE(colors.empty());
}

TEST(SunShine, FactorOfExactlySixTenthsLeavesTheColourWithNoLoss) {
  for (unsigned long color : {0x808080UL, 0x123456UL, 0xFF010203UL}) {
    unsigned long changed = color;
    SunShine(changed, 0.6);
    EXPECT_EQ(changed, color);
  }
}

TEST(SunShine, LightnessIsTruncatedAndTheOtherTwoStay) {
  unsigned long color = 0x4080C0;
  Hls const before = ToHls(color);
  SunShine(color, 0.35);
  EXPECT_EQ(color, ToRgb(before.hue, static_cast<int>(0.75 * before.lightness), before.saturation));
}

TEST(SunShine, LightnessIsHeldToTheScale) {
  double const infinity = std::numeric_limits<double>::infinity();
  for (double factor : {5.0, 1e300, infinity}) {
    unsigned long color = 0x4080C0;
    SunShine(color, factor);
    EXPECT_EQ(color, 0xFFFFFFUL) << factor;
  }
  for (double factor : {-0.4, -1.0, -infinity, std::nan("")}) {
    unsigned long color = 0x4080C0;
    SunShine(color, factor);
    EXPECT_EQ(color, 0UL) << factor;
  }
}

}  // namespace
