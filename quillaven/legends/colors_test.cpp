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

// The way back in the same manner: each formula by itself, in real numbers that are cut where the
// rules divide, with the hue brought into the turn altogether.
double NaiveRamp(double m1, double m2, int hue) {
  int const h = (hue + 504) % 252;
  if (h < 42) return m1 + std::trunc(((m2 - m1) * h + 21) / 42);
  if (h < 126) return m2;
  if (h < 168) return m1 + std::trunc(((m2 - m1) * (168 - h) + 21) / 42);
  return m1;
}

unsigned long NaiveRgb(int hue, int lightness, int saturation) {
  double const l = lightness;
  double const s = saturation;
  double red = std::trunc(l * 255 / 252);
  double green = red;
  double blue = red;
  if (saturation != 0) {
    double const m2 = lightness <= 126 ? std::trunc((l * (252 + s) + 126) / 252)
                                       : l + s - std::trunc((l * s + 126) / 252);
    double const m1 = 2 * l - m2;
    red = std::trunc((NaiveRamp(m1, m2, hue + 84) * 255 + 126) / 252);
    green = std::trunc((NaiveRamp(m1, m2, hue) * 255 + 126) / 252);
    blue = std::trunc((NaiveRamp(m1, m2, hue - 84) * 255 + 126) / 252);
  }
  return static_cast<unsigned long>(blue * 65536 + green * 256 + red);
}

TEST(Colors, EveryHueLightnessAndSaturationOfALatticeConvertsBackByTheRules) {
  for (int hue = 0; hue <= 252; ++hue)
    for (int lightness = 0; lightness <= 252; lightness += 7)
      for (int saturation = 0; saturation <= 252; saturation += 9)
        ASSERT_EQ(ToRgb(hue, lightness, saturation), NaiveRgb(hue, lightness, saturation))
            << hue << " " << lightness << " " << saturation;
}

TEST(Colors, HuesOnAndBetweenTheRampsAreTheseColours) {
  EXPECT_EQ(ToRgb(20, 60, 130), 0x1D3C5CUL);
  EXPECT_EQ(ToRgb(60, 100, 100), 0x3D8E6BUL);
  EXPECT_EQ(ToRgb(100, 200, 77), 0xC6DBBAUL);
  EXPECT_EQ(ToRgb(150, 180, 252), 0xFFAC6DUL);
  EXPECT_EQ(ToRgb(200, 126, 31), 0x906F88UL);
  EXPECT_EQ(ToRgb(230, 40, 240), 0x2B024FUL);
  EXPECT_EQ(ToRgb(251, 251, 251), 0xFDFDFFUL);
  EXPECT_EQ(ToRgb(10, 127, 1), 0x818181UL);
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
  EXPECT_EQ(ToRgb(40, 253, 252), 0x0100FFUL);
  EXPECT_EQ(ToRgb(40, 300, 100), 0x431F1CUL);
  EXPECT_EQ(ToRgb(40, 100, 300), 0xEED2DEUL);
  EXPECT_EQ(ToRgb(40, 1000, 1000), 0xAF593AUL);
  EXPECT_EQ(ToRgb(1000, 1000, 1000), 0xAFAFAFUL);
  EXPECT_EQ(ToRgb(0, 65535, 0), 0x0B0B0BUL);
  EXPECT_EQ(ToRgb(65535, 65535, 65535), 0xC6C651UL);
}

// One turn is taken off and no more, and what is added to a hue wraps in 16 bits.
TEST(Colors, HueBeyondTheTurnIsCorrectedOnceIn16Bits) {
  EXPECT_EQ(ToRgb(253, 126, 252), ToRgb(1, 126, 252));
  EXPECT_EQ(ToRgb(253, 126, 252), 0x0006FFUL);
  EXPECT_EQ(ToRgb(300, 126, 252), 0x00FFDBUL);
  EXPECT_EQ(ToRgb(504, 126, 252), 0x000000UL) << "252 and more are left";
  EXPECT_EQ(ToRgb(505, 126, 252), 0x000000UL);
  EXPECT_EQ(ToRgb(65451, 126, 252), 0x000000UL);
  EXPECT_EQ(ToRgb(65535, 126, 252), 0x0000FFUL) << "84 more are 83";
}

TEST(CalcEquidistantColors, SixEntriesAreTheSixPureHues) {
  std::vector<unsigned long> colors(6);
  CalcEquidistantColors(colors, 252, 126);
  EXPECT_EQ(colors, (std::vector<unsigned long>{0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000,
                                                0xFF00FF}));
}

// 252 / 15 as a float lies just below 16.8, and the multiples of it are not rounded to a float again:
// the 5th and the 10th colour have a hue one below the third and the two thirds of the turn.
TEST(CalcEquidistantColors, HueIsTheTruncatedMultipleOfAFloatStep) {
  std::vector<unsigned long> colors(15);
  CalcEquidistantColors(colors, 200, 100);
  int const hues[] = {0, 16, 33, 50, 67, 83, 100, 117, 134, 151, 167, 184, 201, 218, 235};
  for (std::size_t i = 0; i < colors.size(); ++i)
    EXPECT_EQ(colors[i], ToRgb(hues[i], 100, 200)) << i;
  std::vector<unsigned long> more(27);
  CalcEquidistantColors(more, 200, 100);
  EXPECT_EQ(more[3], ToRgb(27, 100, 200));
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
