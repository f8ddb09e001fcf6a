#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/random_internal.h>
#include <quillaven/foundation/rounding_internal.h>

namespace {

TEST(NumberFormatting, FillsOneNumberIntoAPattern) {
  EXPECT_EQ(itostr("%d", 42), "42");
  EXPECT_EQ(lftostr("%g", 1.5), "1.5");
  EXPECT_EQ(litostr("%ld", -1234567890L), "-1234567890");
  EXPECT_EQ(ftostr("%.1f m", 307.4F), "307.4 m");
  EXPECT_EQ(itostr("Reading data for function %d\n", 3), "Reading data for function 3\n");
}

TEST(NumberFormatting, KeepsThePointWhateverTheLocaleIs) {
  EXPECT_EQ(ftostr("%g", 0.25F), "0.25");
  EXPECT_EQ(lftostr("%.3f", 0.25), "0.250");
}

TEST(NumberFormatting, CutsTheTextAt4095Bytes) {
  EXPECT_EQ(itostr("%09000d", 1).size(), 4095U);
  EXPECT_EQ(lftostr("%4095.1f", 1.5).size(), 4095U);
  EXPECT_EQ(lftostr("%4096.1f", 1.5).size(), 4095U);
}

TEST(strNcpy, CutsAndTerminatesALongSource) {
  char target[6] = "#####";
  EXPECT_EQ(strNcpy(target, "abcdef", 4), target);
  EXPECT_STREQ(target, "abc");
  EXPECT_EQ(target[4], '#');
}

TEST(strNcpy, PadsAShortSourceWithZeroes) {
  char target[6] = "#####";
  strNcpy(target, "a", 4);
  EXPECT_EQ(std::memcmp(target, "a\0\0\0#", 6), 0);
}

TEST(strNcpy, SourceThatJustFitsIsWhole) {
  char target[4];
  EXPECT_STREQ(strNcpy(target, "abc", 4), "abc");
  EXPECT_STREQ(strNcpy(target, "abcd", 1), "");
}

TEST(strNcpy, SourceWithoutAZeroByteIsNotReadBeyondTheSize) {
  char const source[] = {'a', 'b', 'c', 'd'};
  char target[4];
  EXPECT_STREQ(strNcpy(target, source, 4), "abc");
}

TEST(strNcpy, SizeZeroWritesNothing) {
  char target[] = "x";
  EXPECT_EQ(strNcpy(target, "abc", 0), target);
  EXPECT_STREQ(target, "x");
}

TEST(RandomDraw, IsTheLowFifteenBitsOfRand) {
  std::srand(7);
  std::vector<int> expected;
  for (int i = 0; i < 1000; ++i) expected.push_back(std::rand() & 32767);
  std::srand(7);
  for (int draw : expected) EXPECT_EQ(RandomDraw(), draw);
}

// Every test draws an even number of times, so that no number is kept for the next.
TEST(RandomNormal, DrawsTwiceForTheFirstNumberAndNotAtAllForTheSecond) {
  std::srand(11);
  double const first = RandomNormal();
  int const third = RandomDraw();
  std::srand(11);
  double const again = RandomNormal();  // kept from before: no draw
  double const u = (RandomDraw() + 1) * 3.0516646830846227e-05;
  double const v = (RandomDraw() + 1) * 3.0516646830846227e-05;
  EXPECT_EQ(RandomDraw(), third);
  double const pi = std::acos(-1.0);
  double const r = std::sqrt(-2.0 * std::log(u));
  EXPECT_DOUBLE_EQ(first, r * std::cos(2.0 * pi * v));
  EXPECT_DOUBLE_EQ(again, r * std::sin(2.0 * pi * v));
  EXPECT_NEAR(first * first + again * again, -2.0 * std::log(u), 1e-12);
}

TEST(RandomNormal, GivesTheSameSequenceForASeed) {
  std::vector<double> first;
  std::srand(5);
  for (int i = 0; i < 100; ++i) first.push_back(RandomNormal());
  std::srand(5);
  for (double number : first) EXPECT_EQ(RandomNormal(), number);
}

TEST(RandomNormal, HasMeanZeroAndDeviationOne) {
  std::srand(3);
  constexpr int kCount = 100000;
  double sum = 0;
  double squares = 0;
  for (int i = 0; i < kCount; ++i) {
    double const x = RandomNormal();
    sum += x;
    squares += x * x;
  }
  EXPECT_NEAR(sum / kCount, 0.0, 0.02);
  EXPECT_NEAR(squares / kCount, 1.0, 0.03);
}

TEST(Truncated, GoesTowardZeroAndHoldsWhatNoIntHolds) {
  EXPECT_EQ(Truncated(1.9), 1);
  EXPECT_EQ(Truncated(-1.9), -1);
  EXPECT_EQ(Truncated(1e300), 2147483647);
  EXPECT_EQ(Truncated(-1e300), -2147483647 - 1);
  EXPECT_EQ(Truncated(2147483646.5), 2147483646);
  EXPECT_EQ(Truncated(std::nan("")), -2147483647 - 1);
}

TEST(NearestFloat, IsInfiniteForWhatNoFloatHolds) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(NearestFloat(1e300), kInfinity);
  EXPECT_EQ(NearestFloat(-1e300), -kInfinity);
  EXPECT_EQ(NearestFloat(static_cast<double>(kInfinity)), kInfinity);
  EXPECT_EQ(NearestFloat(0.1), 0.1F);
  EXPECT_EQ(NearestFloat(static_cast<double>(std::numeric_limits<float>::max())),
            std::numeric_limits<float>::max());
  EXPECT_TRUE(std::isnan(NearestFloat(std::nan(""))));
}

// Nine digits of the highest float, as programs write them, lie a little above it.
TEST(NearestFloat, TakesTheDigitsOfTheHighestFloatForThatFloat) {
  constexpr float kHighest = std::numeric_limits<float>::max();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  ASSERT_GT(3.40282347e38, static_cast<double>(kHighest));
  EXPECT_EQ(NearestFloat(3.40282347e38), kHighest);
  EXPECT_EQ(NearestFloat(-3.40282347e38), -kHighest);
  double const beyond = 0x1.ffffffp127;  // as near to the next power of two, which is even
  EXPECT_EQ(NearestFloat(std::nextafter(beyond, 0)), kHighest);
  EXPECT_EQ(NearestFloat(-std::nextafter(beyond, 0)), -kHighest);
  EXPECT_EQ(NearestFloat(beyond), kInfinity);
  EXPECT_EQ(NearestFloat(-beyond), -kInfinity);
}

TEST(LeadingInteger, ReadsWhatATextBeginsWith) {
  EXPECT_EQ(LeadingInteger(" 12 cells"), 12);
  EXPECT_EQ(LeadingInteger("-7.5"), -7);
  EXPECT_EQ(LeadingInteger("+3"), 3);
  EXPECT_EQ(LeadingInteger("abc"), 0);
  EXPECT_EQ(LeadingInteger(""), 0);
  EXPECT_EQ(LeadingInteger("99999999999999999999999"), 2147483647);
  EXPECT_EQ(LeadingInteger("-99999999999999999999999"), -2147483647 - 1);
}

TEST(LeadingInteger, TellsWhereItEnds) {
  char const text[] = "  42x";
  char const *end = nullptr;
  LeadingInteger(text, &end);
  EXPECT_EQ(end, text + 4);
  LeadingInteger(text + 4, &end);
  EXPECT_EQ(end, text + 4);
}

}  // namespace
