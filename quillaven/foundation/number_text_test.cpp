#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

std::string Written(double value) {
  char text[kNumberTextSize];
  return {text, WriteG(text, value)};
}

std::string Printed(double value) {
  PointLocale const numbers;
  char text[64];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

TEST(WriteG, WritesWhatPrintfWritesForNumbersOfEveryKind) {
  double const infinity = std::numeric_limits<double>::infinity();
  for (double value :
       {0.0,       1.0,      9.0,        10.0,        99999.0,    100000.0,    123456.0,
        999998.0,  999999.0, 1000000.0,  1234567.0,   0.5,        2.5,         0.1,
        0.2,       0.25,     1.5,        307.4,       495.7,      12345.6,     99999.95,
        99999.94,  99999.5,  100000.5,   999999.4,    999999.5,   999998.5,    999997.5,
        123456.5,  1e-4,     9.99999e-5, 0.000123456, 0.00099999, 9.999995e-4, 9.999994e-4,
        0.001,     0.01,     1e-5,       1e-10,       1e22,       1e23,        1e100,
        1e300,     1e-300,   5e-324,     0.099999949, 0.09999995, 1.0000005,   1.0000015,
        1234565.0, infinity}) {
    EXPECT_EQ(Written(value), Printed(value));
    EXPECT_EQ(Written(-value), Printed(-value));
  }
}

// Not every system's printf shows the sign of what is no number; here it is the same on all.
TEST(WriteG, WritesNegativeZeroAndWhatIsNoNumberWithTheSign) {
  EXPECT_EQ(Written(-0.0), "-0");
  EXPECT_EQ(Written(std::nan("")), "nan");
  EXPECT_EQ(Written(-std::nan("")), "-nan");
}

TEST(WriteG, WritesPowersOfTenAndTheirNeighbours) {
  for (int exponent = -45; exponent <= 38; ++exponent) {
    auto const power = static_cast<float>(std::pow(10.0, exponent));
    for (float value : {power, std::nextafterf(power, 0.0F), std::nextafterf(power, 3e38F)})
      ASSERT_EQ(Written(value), Printed(value)) << exponent;
  }
}

TEST(WriteG, WritesTiesAsPrintfRoundsThem) {
  for (int digits = 100000; digits < 1000000; digits += 37) {
    for (double scale : {1.0, 0.5, 0.125, 0.0078125}) {
      double const value = (digits + 0.5) * scale;
      ASSERT_EQ(Written(value), Printed(value));
    }
  }
}

TEST(WriteG, WritesEveryIntegerOfSixDigits) {
  for (int value = -999999; value <= 999999; value += 7)
    ASSERT_EQ(Written(value), std::to_string(value));
}

// Ten million bit patterns where the build is optimised, a tenth of that elsewhere.
#ifdef NDEBUG
constexpr int kPatterns = 10'000'000;
#else
constexpr int kPatterns = 1'000'000;
#endif

TEST(WriteG, WritesRandomFloatsExactlyAsPrintfDoes) {
  constexpr unsigned kSeed = 1990;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  PointLocale const numbers;
  char written[kNumberTextSize + 1];
  char printed[64];
  for (int i = 0; i < kPatterns; ++i) {
    auto const value =
        static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    if (std::isnan(value)) continue;
    *WriteG(written, value) = '\0';
    std::snprintf(printed, sizeof printed, "%g", value);
    ASSERT_STREQ(written, printed);
  }
}

TEST(WriteG, WritesRandomNumbersOfOrdinarySizeExactlyAsPrintfDoes) {
  constexpr unsigned kSeed = 2013;
  SCOPED_TRACE(kSeed);
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> exponent(-5.0, 7.0);
  for (int i = 0; i < kPatterns / 10; ++i) {
    double const value = std::pow(10.0, exponent(random));
    ASSERT_EQ(Written(value), Printed(value));
    double const decimals = std::round(value * 1000.0) / 1000.0;
    ASSERT_EQ(Written(-decimals), Printed(-decimals));
  }
}

TEST(TextOfNumber, IsTheSameText) {
  EXPECT_EQ(TextOfNumber(-9999.0), "-9999");
}

}  // namespace
