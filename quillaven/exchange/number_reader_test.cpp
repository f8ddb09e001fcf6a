#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/number_reader_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

struct Read {
  std::vector<double> numbers;
  bool metEnd;
};

Read ReadAll(std::string const &text) {
  TextReader reader(text);
  Read read{{}, false};
  double value = 0;
  while (reader.Number(value)) read.numbers.push_back(value);
  read.metEnd = reader.MetEnd();
  return read;
}

double ReadOne(std::string const &text) {
  double value = -12345;
  TextReader(text).Number(value);
  return value;
}

TEST(TextReader, ReadsNumbersAcrossBlanksAndLines) {
  EXPECT_EQ(ReadAll(" 1 2.5\r\n-3\t+4\n\n.5 1e3 -2E-2\n").numbers,
            (std::vector<double>{1, 2.5, -3, 4, 0.5, 1000, -0.02}));
}

TEST(TextReader, MeetsTheEndBehindALastNumberWithoutALineFeed) {
  for (char const *text : {"1 2", "1 2.5", "1 -7e1", "1 12345678901234567890"}) {
    std::string const kept = text;
    TextReader reader(kept);
    double value = 0;
    reader.Number(value);
    EXPECT_FALSE(reader.MetEnd()) << text;
    EXPECT_TRUE(reader.Number(value));
    EXPECT_TRUE(reader.MetEnd()) << text;
  }
}

TEST(TextReader, DoesNotMeetTheEndBeforeALineFeed) {
  std::string const text = "1 2\n";
  TextReader reader(text);
  double value = 0;
  reader.Number(value);
  reader.Number(value);
  EXPECT_FALSE(reader.MetEnd());
  EXPECT_FALSE(reader.Number(value));
  EXPECT_TRUE(reader.MetEnd());
  EXPECT_EQ(value, 2.0);
}

TEST(TextReader, WordStopsTheReadingForGoodWithoutMeetingTheEnd) {
  for (char const *word : {"word", "inf", "nan", "NaN", "-inf", "--1", "\xFF"}) {
    std::string const text = std::string("7 ") + word + " 8\n";
    Read const read = ReadAll(text);
    EXPECT_EQ(read.numbers, (std::vector<double>{7})) << word;
    EXPECT_FALSE(read.metEnd) << word;
  }
}

TEST(TextReader, NumberMayEndInAWord) {
  EXPECT_EQ(ReadAll("12abc 3\n").numbers, (std::vector<double>{12}));
  EXPECT_EQ(ReadAll("0x10 3\n").numbers, (std::vector<double>{0}));
}

TEST(TextReader, HugeAndTinyNumbersAreInfiniteAndZero) {
  double const infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ReadOne("1e999 "), infinity);
  EXPECT_EQ(ReadOne("-1e999 "), -infinity);
  EXPECT_EQ(ReadOne("1e-999 "), 0.0);
  EXPECT_EQ(ReadOne(std::string(400, '9') + " "), infinity);
  EXPECT_EQ(ReadOne("4.9e-324 "), 4.9e-324);
  EXPECT_TRUE(std::signbit(ReadOne("-0 ")));
}

TEST(TextReader, LinesEndAtTheirLimitAndTheirLineEndIsLfOrCrLf) {
  std::string const text = "abcdef\r\nabcdefg\nx";
  TextReader reader(text);
  EXPECT_EQ(reader.Line(6), "abcdef");
  EXPECT_EQ(reader.Line(4), "abcd");
  EXPECT_EQ(reader.Line(7), "efg");
  EXPECT_FALSE(reader.MetEnd());
  EXPECT_EQ(reader.Line(7), "x");
  EXPECT_TRUE(reader.MetEnd());
  EXPECT_EQ(reader.Line(7), "");
}

TEST(TextReader, EmptyTextHasNoNumberAndMeetsItsEnd) {
  Read const read = ReadAll("");
  EXPECT_TRUE(read.numbers.empty());
  EXPECT_TRUE(read.metEnd);
}

TEST(TextReader, ReadsRandomNumbersAsTheCLibraryDoes) {
  constexpr unsigned kSeed = 52;
  SCOPED_TRACE(kSeed);
  std::mt19937_64 random(kSeed);
  PointLocale const point;
  char const *formats[] = {"%g ", "%.17g ", "%.3f ", "%.15f ", "%.0f ", "%e "};
  std::uniform_real_distribution<double> exponent(-12, 18);
  for (int i = 0; i < 300000; ++i) {
    double const value = std::pow(10.0, exponent(random)) * (random() % 2 == 0 ? 1 : -1);
    char text[400];
    std::snprintf(text, sizeof text, formats[i % 6], value);
    ASSERT_EQ(ReadOne(text), std::strtod(text, nullptr)) << text;
  }
}

TEST(TextReader, SurvivesRandomBytes) {
  std::mt19937 random(53);
  char const alphabet[] = "0123456789+-.eE \n\r\tx\xFF";
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (auto n = random() % 30; n > 0; --n) text += alphabet[random() % (sizeof alphabet - 1)];
    TextReader reader(text);
    double value = 0;
    int count = 0;
    while (reader.Number(value)) ++count;
    ASSERT_LE(count, 30);
  }
}

TEST(LeadingNumber, IsTheDecimalNumberThatATextBeginsWith) {
  struct Case {
    char const *text;
    bool is;
    double value;
  };
  for (Case const &each :
       {Case{"12", true, 12}, Case{" -2.5 m", true, -2.5}, Case{"+3", true, 3},
        Case{".5", true, 0.5}, Case{"7x", true, 7}, Case{"1e3", true, 1000}, Case{"0x10", true, 0},
        Case{"inf", false, 99}, Case{"-nan", false, 99}, Case{"none", false, 99},
        Case{"-", false, 99}, Case{"", false, 99}, Case{"1,5", true, 1}}) {
    double value = 99;
    EXPECT_EQ(LeadingNumber(each.text, value), each.is) << each.text;
    EXPECT_EQ(value, each.value) << each.text;
  }
}

}  // namespace
