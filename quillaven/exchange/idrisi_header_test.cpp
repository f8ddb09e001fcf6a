#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/foundation/number_text_internal.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kDefaults =
    "file title  : \ndata type   : real\nfile type   : binary\ncolumns     : 1\nrows        : 1\n"
    "ref. system : plane\nref. units  : m\nunit dist.  : 1\nmin. X      : 0\nmax. X      : 1\n"
    "min. Y      : 0\nmax. Y      : 1\npos'n error : unknown\nresolution  : unknown\n"
    "min. value  : 0\nmax. value  : 1\nvalue units : unspecified\nvalue error : unknown\n"
    "flag value  : none\nflag def'n  : none\nlegend cats : 0\n";

std::string const kExample =
    "file title  : Land use 1990\ndata type   : byte\nfile type   : binary\ncolumns     : 120\n"
    "rows        : 80\nref. system : plane\nref. units  : m\nunit dist.  : 1\nmin. X      : 0\n"
    "max. X      : 120\nmin. Y      : 0\nmax. Y      : 80\npos'n error : unknown\n"
    "resolution  : 1\nmin. value  : 0\nmax. value  : 255\nvalue units : unspecified\n"
    "value error : unknown\nflag value  : none\nflag def'n  : none\nlegend cats : 2\n"
    "category   0 : water\ncategory   1 : land\n";

// No two fields are the same, and none has the value that it is constructed with.
std::string const kDistinct =
    "file title  : t1\ndata type   : t2\nfile type   : t3\ncolumns     : 4\nrows        : 5\n"
    "ref. system : t6\nref. units  : t7\nunit dist.  : 8.5\nmin. X      : 9.5\n"
    "max. X      : 10.5\nmin. Y      : 11.5\nmax. Y      : 12.5\npos'n error : t13\n"
    "resolution  : t14\nmin. value  : 15.5\nmax. value  : 16.5\nvalue units : t17\n"
    "value error : t18\nflag value  : t19\nflag def'n  : t20\nlegend cats : 2\n"
    "category   0 : water\ncategory   1 : land\n";

bool IsNumber(std::size_t line) {
  return line == 3 || line == 4 || (line >= 7 && line <= 11) || line == 14 || line == 15;
}

// The fields in the order of their lines, without the categories.
std::vector<std::string> ValuesOf(CIdrisiImageHeader header) {
  auto const text = [](double number) { return TextOfNumber(number); };
  return {header.Title(),          header.DataType(),           header.FileType(),
          text(header.Columns()),  text(header.Rows()),         header.RefSystem(),
          header.RefUnits(),       text(header.UnitDistance()), text(header.MinX()),
          text(header.MaxX()),     text(header.MinY()),         text(header.MaxY()),
          header.PositionError(),  header.Resolution(),         text(header.MinValue()),
          text(header.MaxValue()), header.ValueUnits(),         header.ValueError(),
          header.FlagValue(),      header.FlagDefinition()};
}

class IdrisiHeader : public testing::Test {
 protected:
  bool Read(std::string const &content) {
    return header.ReadFile(directory.Write("a.doc", content).c_str());
  }
  std::string Written() {
    EXPECT_TRUE(header.WriteFile(directory.Path("out.doc").c_str()));
    return directory.ReadText("out.doc");
  }
  // The example with another line in place of the one that begins so.
  static std::string With(std::string const &label, std::string const &line) {
    std::size_t const at = kExample.find(label);
    std::size_t const end = kExample.find('\n', at);
    return kExample.substr(0, at) + line + kExample.substr(end);
  }
  TemporaryDirectory directory;
  RecordingApplication application;
  CIdrisiImageHeader header;
};

TEST_F(IdrisiHeader, WritesItsDefaultsByteForByte) {
  EXPECT_EQ(Written(), kDefaults);
}

TEST_F(IdrisiHeader, ReadsEveryField) {
  EXPECT_TRUE(Read(kExample));
  EXPECT_STREQ(header.Title(), "Land use 1990");
  EXPECT_STREQ(header.DataType(), "byte");
  EXPECT_STREQ(header.FileType(), "binary");
  EXPECT_EQ(header.Columns(), 120);
  EXPECT_EQ(header.Rows(), 80);
  EXPECT_STREQ(header.RefSystem(), "plane");
  EXPECT_STREQ(header.RefUnits(), "m");
  EXPECT_EQ(header.UnitDistance(), 1.0);
  EXPECT_EQ(header.MinX(), 0.0);
  EXPECT_EQ(header.MaxX(), 120.0);
  EXPECT_EQ(header.MinY(), 0.0);
  EXPECT_EQ(header.MaxY(), 80.0);
  EXPECT_STREQ(header.PositionError(), "unknown");
  EXPECT_STREQ(header.Resolution(), "1");
  EXPECT_EQ(header.MinValue(), 0.0);
  EXPECT_EQ(header.MaxValue(), 255.0);
  EXPECT_STREQ(header.ValueUnits(), "unspecified");
  EXPECT_STREQ(header.ValueError(), "unknown");
  EXPECT_STREQ(header.FlagValue(), "none");
  EXPECT_STREQ(header.FlagDefinition(), "none");
  EXPECT_EQ(header.CategoryCount(), 2);
}

TEST_F(IdrisiHeader, ReadsEachFieldFromItsOwnLine) {
  EXPECT_TRUE(Read(kDistinct));
  EXPECT_EQ(ValuesOf(header),
            (std::vector<std::string>{"t1",   "t2",   "t3",   "4",    "5",    "t6",  "t7",
                                      "8.5",  "9.5",  "10.5", "11.5", "12.5", "t13", "t14",
                                      "15.5", "16.5", "t17",  "t18",  "t19",  "t20"}));
  EXPECT_EQ(header.UnitDistance(), 8.5);
  EXPECT_EQ(header.MinX(), 9.5);
  EXPECT_EQ(header.MinY(), 11.5);
  EXPECT_EQ(header.MinValue(), 15.5);
  EXPECT_EQ(header.CategoryCount(), 2);
}

// Each line stands where it was read from; coordinates lose their fractions on the way.
TEST_F(IdrisiHeader, WritesEachFieldInItsOwnLine) {
  EXPECT_TRUE(Read(kDistinct));
  std::string expected = kDistinct;
  for (char const *coordinate : {"9.5", "10.5", "11.5", "12.5"})
    expected.erase(expected.find(std::string(" ") + coordinate) + std::strlen(coordinate) - 1, 2);
  for (char const *name : {"water", "land"}) expected.insert(expected.find(name), " ");
  EXPECT_EQ(Written(), expected);
}

TEST_F(IdrisiHeader, CategoryGainsABlankEachTimeItIsWrittenAndRead) {
  EXPECT_TRUE(Read(kExample));
  EXPECT_STREQ(header.CategoryTitle(0), " water");
  EXPECT_TRUE(Read(Written()));
  EXPECT_STREQ(header.CategoryTitle(0), "  water");
  EXPECT_STREQ(header.CategoryTitle(1), "  land");
}

TEST_F(IdrisiHeader, LabelsOf1000AndMoreCategoriesAreWider) {
  std::string file = kExample.substr(0, kExample.find("legend cats"));
  file += "legend cats : 1001\n";
  for (int i = 0; i < 1001; ++i)
    file +=
        "any label of 14"
        "c" +
        std::to_string(i) + "\n";
  EXPECT_TRUE(Read(file));
  std::string const written = Written();
  EXPECT_NE(written.find("\ncategory 999 : "), std::string::npos);
  EXPECT_NE(written.find("\ncategory 1000 : "), std::string::npos);
}

TEST_F(IdrisiHeader, LabelsAreNotLookedAt) {
  EXPECT_TRUE(Read(With("columns", "SPALTEN     : 33")));
  EXPECT_EQ(header.Columns(), 33);
}

TEST_F(IdrisiHeader, LineOf14CharactersIsMalformedAndOneOf15HasAValue) {
  EXPECT_TRUE(Read(With("file title", "12345678901234")));
  EXPECT_STREQ(header.Title(), "malformed input");
  EXPECT_TRUE(Read(With("file title", "123456789012345")));
  EXPECT_STREQ(header.Title(), "5");
  EXPECT_TRUE(Read(With("max. X", "")));
  EXPECT_EQ(header.MaxX(), 0.0);
}

TEST_F(IdrisiHeader, WordInPlaceOfANumberIsZero) {
  EXPECT_TRUE(Read(With("columns", "columns     : abc")));
  EXPECT_EQ(header.Columns(), 0);
  EXPECT_TRUE(Read(With("max. value", "max. value  : abc")));
  EXPECT_EQ(header.MaxValue(), 0.0);
}

TEST_F(IdrisiHeader, BlanksBehindAValueStay) {
  EXPECT_TRUE(Read(With("file title", "file title  : town  ")));
  EXPECT_STREQ(header.Title(), "town  ");
}

TEST_F(IdrisiHeader, CarriageReturnsAreDropped) {
  std::string crlf;
  for (char c : kExample) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  EXPECT_TRUE(Read(crlf));
  EXPECT_STREQ(header.DataType(), "byte");
  EXPECT_STREQ(header.CategoryTitle(1), " land");
}

TEST_F(IdrisiHeader, CoordinatesLoseTheirFractionsAndValuesDoNot) {
  header.MinX(10.9);
  header.MaxX(-0.5);
  header.MinY(1e300);
  header.MinValue(0.125);
  std::string const written = Written();
  EXPECT_NE(written.find("min. X      : 10\nmax. X      : 0\nmin. Y      : 2147483647\n"),
            std::string::npos);
  EXPECT_NE(written.find("min. value  : 0.125\n"), std::string::npos);
}

TEST_F(IdrisiHeader, ResolutionIsATextThatIsSetAsANumber) {
  header.Resolution(0.25);
  EXPECT_STREQ(header.Resolution(), "0.25");
}

TEST_F(IdrisiHeader, SettersStore) {
  char binary[] = "ascii";
  header.Title("t");
  header.DataType("integer");
  header.FileType(binary);
  header.Columns(7);
  header.Rows(8);
  header.MaxX(1);
  header.MinY(2);
  header.MaxY(3);
  header.MaxValue(4);
  header.FlagValue("-1");
  header.FlagDefinition("water");
  EXPECT_EQ(Written(),
            "file title  : t\ndata type   : integer\nfile type   : ascii\ncolumns     : 7\n"
            "rows        : 8\nref. system : plane\nref. units  : m\nunit dist.  : 1\n"
            "min. X      : 0\nmax. X      : 1\nmin. Y      : 2\nmax. Y      : 3\n"
            "pos'n error : unknown\nresolution  : unknown\nmin. value  : 0\nmax. value  : 4\n"
            "value units : unspecified\nvalue error : unknown\nflag value  : -1\n"
            "flag def'n  : water\nlegend cats : 0\n");
}

TEST_F(IdrisiHeader, CategoriesAreFoundByTheirExactText) {
  EXPECT_EQ(header.CategoryIndex("water"), -1);
  EXPECT_STREQ(header.CategoryTitle(0), "");
  EXPECT_TRUE(Read(kExample));
  EXPECT_EQ(header.CategoryIndex(" land"), 1);
  EXPECT_EQ(header.CategoryIndex("land"), -1);
  EXPECT_EQ(header.CategoryIndex(" LAND"), -1);
  EXPECT_STREQ(header.CategoryTitle(-1), "");
  EXPECT_STREQ(header.CategoryTitle(2), "");
}

TEST_F(IdrisiHeader, FileWithoutCategoriesOf21LinesIsWhole) {
  EXPECT_TRUE(Read(kDefaults));
}

TEST_F(IdrisiHeader, FileThatEndsEarlyIsFalseAndKeepsWhatWasRead) {
  EXPECT_FALSE(Read(kExample.substr(0, kExample.find("rows "))));
  EXPECT_EQ(header.Columns(), 120);
  EXPECT_EQ(header.Rows(), 1);
  EXPECT_EQ(header.CategoryCount(), 0);
  EXPECT_TRUE(application.boxes.empty());
}

// The list is sized by its count, before its lines are read.
TEST_F(IdrisiHeader, CategoriesAreAsManyAsTheFileTellsThoughItEndsEarly) {
  EXPECT_FALSE(Read(kExample.substr(0, kExample.find("category   1"))));
  EXPECT_EQ(header.CategoryCount(), 2);
  EXPECT_STREQ(header.CategoryTitle(0), " water");
  EXPECT_STREQ(header.CategoryTitle(1), "");
  EXPECT_TRUE(Read(kExample));
  EXPECT_FALSE(Read(kExample.substr(0, kExample.find("category   0"))));
  EXPECT_STREQ(header.CategoryTitle(1), " land") << "as it was read before";
}

TEST_F(IdrisiHeader, VeryLargeCategoryCountIsNotBelievedBeforeItsLinesAreThere) {
  std::string const file = kExample.substr(0, kExample.find("legend cats"));
  EXPECT_FALSE(Read(file + "legend cats : 2000000000\ncategory   0 : a\n"));
  EXPECT_EQ(header.CategoryCount(), 1);
  EXPECT_TRUE(Read(file + "legend cats : -5\n"));
  EXPECT_EQ(header.CategoryCount(), 0);
  std::string lines;
  for (int i = 0; i < 65537; ++i) lines += "category " + std::to_string(i) + " : c\n";
  EXPECT_TRUE(Read(file + "legend cats : 65537\n" + lines));
  EXPECT_EQ(header.CategoryCount(), 65537);
}

TEST_F(IdrisiHeader, LastLineNeedsNoLineFeed) {
  EXPECT_TRUE(Read(kExample.substr(0, kExample.size() - 1)));
  EXPECT_STREQ(header.CategoryTitle(1), " land");
}

double NumberIn(std::string const &text) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// What a file of these bytes must give, by counting its lines.
struct Expected {
  bool whole;
  std::vector<std::string> values;  // of the lines that are there, 21 at most
};

Expected ExpectedOf(std::string const &bytes) {
  std::vector<std::string> values;
  std::istringstream stream(bytes);
  for (std::string line; std::getline(stream, line);)
    values.push_back(line.size() > 14 ? line.substr(14) : "malformed input");
  bool whole = values.size() >= 21;
  if (whole) whole = values.size() - 21 >= static_cast<std::size_t>(NumberIn(values[20]));
  values.resize(std::min<std::size_t>(values.size(), 21));
  return {whole, values};
}

TEST_F(IdrisiHeader, CutAnywhereIsFalseUnlessTheCutLiesInItsLastLineAndKeepsTheLinesBefore) {
  for (std::size_t size = 0; size <= kDistinct.size(); ++size) {
    SCOPED_TRACE(size);
    CIdrisiImageHeader cut;
    std::string const bytes = kDistinct.substr(0, size);
    Expected const expected = ExpectedOf(bytes);
    EXPECT_EQ(cut.ReadFile(directory.Write("cut.doc", bytes).c_str()), expected.whole);
    std::vector<std::string> const before = ValuesOf(CIdrisiImageHeader());
    std::vector<std::string> const after = ValuesOf(cut);
    for (std::size_t line = 0; line < after.size(); ++line) {
      bool const isThere = line < expected.values.size();
      std::string value = isThere ? expected.values[line] : before[line];
      if (isThere && IsNumber(line)) value = TextOfNumber(NumberIn(value));
      EXPECT_EQ(after[line], value) << "line " << line + 1;
    }
  }
  EXPECT_TRUE(application.boxes.empty());
}

// A line holds 511 characters; what is longer arrives as the next line, which moves all fields.
TEST_F(IdrisiHeader, LineOf511CharactersIsOneAndWhatIsLongerArrivesAsTheNext) {
  for (char const *end : {"", "\r"}) {
    EXPECT_TRUE(Read(With("file title", "file title  : " + std::string(497, 't') + end)));
    EXPECT_STREQ(header.Title(), std::string(497, 't').c_str());
    EXPECT_STREQ(header.DataType(), "byte");
  }
  for (std::size_t const longer : {1U, 15U, 103U}) {
    SCOPED_TRACE(longer);
    EXPECT_TRUE(Read(With("file title", "file title  : " + std::string(497 + longer, 't'))));
    EXPECT_STREQ(header.Title(), std::string(497, 't').c_str());
    std::string const rest = longer > 14 ? std::string(longer - 14, 't') : "malformed input";
    EXPECT_STREQ(header.DataType(), rest.c_str());
    EXPECT_STREQ(header.FileType(), "byte");
    EXPECT_EQ(header.Rows(), 120);
  }
}

TEST_F(IdrisiHeader, WordsThatOtherReadersTakeForNumbersAreNone) {
  for (auto const &[text, value] : {std::pair{"inf", 0.0},
                                    {"nan", 0.0},
                                    {"infinity", 0.0},
                                    {"0x10", 0.0},
                                    {" 2.5e1x", 25.0},
                                    {"-.5", -0.5}}) {
    EXPECT_TRUE(Read(With("max. value", std::string("max. value  : ") + text)));
    EXPECT_EQ(header.MaxValue(), value) << text;
  }
}

// A file of any bytes is read to its end or to a missing line, and what was read is written as text
// that reads the same, but for the blank that categories gain and the fractions of coordinates.
TEST_F(IdrisiHeader, RandomFilesAreReadWrittenAndReadAgainTheSame) {
  constexpr unsigned kSeed = 511;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 300; ++round) {
    std::string bytes;
    int const categories = static_cast<int>(random() % 4);
    for (int line = 0; line < 21 + categories; ++line) {
      bytes += std::string(14, 'l');
      if (line == 3 || line == 4) {
        bytes += std::to_string(static_cast<int>(random()));
      } else if (IsNumber(static_cast<std::size_t>(line))) {
        bytes += std::to_string(static_cast<int>(random() % 2000000) - 1000000);
      } else if (line == 20) {
        bytes += std::to_string(categories);
      } else {
        for (auto n = random() % 20 + 1; n > 0; --n) bytes += static_cast<char>(random() % 95 + 32);
      }
      bytes += '\n';
    }
    CIdrisiImageHeader first;
    ASSERT_TRUE(first.ReadFile(directory.Write("r.doc", bytes).c_str()));
    ASSERT_TRUE(first.WriteFile(directory.Path("s.doc").c_str()));
    CIdrisiImageHeader second;
    ASSERT_TRUE(second.ReadFile(directory.Path("s.doc").c_str()));
    ASSERT_EQ(ValuesOf(second), ValuesOf(first)) << bytes;
    ASSERT_EQ(second.CategoryCount(), categories);
    for (int i = 0; i < categories; ++i)
      ASSERT_EQ(second.CategoryTitle(i), std::string(" ") + first.CategoryTitle(i));
  }
}

TEST_F(IdrisiHeader, MissingFileIsToldInABox) {
  EXPECT_FALSE(header.ReadFile(directory.Path("none.doc").c_str()));
  EXPECT_EQ(application.boxes.at(0).title, "Error: Cannot open file");
}

TEST_F(IdrisiHeader, FileThatCannotBeWrittenIsFalseWithoutABox) {
  EXPECT_FALSE(header.WriteFile(directory.Path("no/such.doc").c_str()));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(IdrisiHeader, DiskThatIsFullIsFalseWithoutABox) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no such device";
  EXPECT_FALSE(header.WriteFile("/dev/full"));
  EXPECT_TRUE(application.boxes.empty());
}

}  // namespace
