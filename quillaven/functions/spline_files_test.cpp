#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/foundation/textio.h>
#include <quillaven/functions/spline.h>
#include <quillaven/functions/spline_access_internal.h>
#include <quillaven/platform/files.h>

#include "tests/support/allocation_count.h"
#include "tests/support/pipe.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

using Pairs = std::vector<std::pair<double, double>>;

std::string const kColumns = "Type\tName\tXmin\tXmax\tYmin\tYmax\t#Points\tXLabel\tYLabel";
std::string const kDecay = "(3)\t" + kColumns +
                           "\n\t1\tdecay\t0\t8\t-1\t1\t3\tdistance\tweight\n"
                           "XDATA\t0\t1\t8\nYDATA\t1\t0.5\t0\n";
std::string const kCompactDecay =
    "-1.000000\t1.000000\t3\ndistance\t0.000000\t1.000000\t8.000000\n"
    "weight\t1.000000\t0.500000\t0.000000\n";

Pairs PointsOf(CSpline const &table) {
  Pairs points;
  for (int i = 0; i < table.GetSize(); ++i) points.emplace_back(table.GetXAt(i), table.GetYAt(i));
  return points;
}

CSpline Decay() {
  CSpline table;
  table.Name("decay");
  table.XLabel("distance");
  table.YLabel("weight");
  table.MaxX(8);
  table.Add(0, 1);
  table.Add(1, 0.5);
  table.Add(8, 0);
  return table;
}

class FunctionTableFiles : public testing::Test {
 protected:
  // Puts bytes into a file and leaves it open at its start.
  void Open(std::string const &bytes) {
    ASSERT_TRUE(
        file.Open(directory.Write("a.txt", bytes).c_str(), CFile::modeRead | CFile::typeText));
  }
  bool Read(CSpline &table, std::string const &bytes, int number = 1) {
    Open(bytes);
    return table.OnRead(file, number);
  }
  void Read2(CSpline &table, std::string const &bytes) {
    Open(bytes);
    table.OnRead2(file);
  }
  template <class Write>
  std::string Written(Write write) {
    CStdioFile out(directory.Path("out.txt").c_str(),
                   CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
    write(out);
    out.Close();
    return directory.ReadText("out.txt");
  }
  std::string Tagged(CSpline table, int number = 1) {
    return Written([&](CStdioFile &out) { EXPECT_TRUE(table.OnWrite(out, number)); });
  }
  std::string Compact(CSpline table) {
    return Written([&](CStdioFile &out) { table.OnWrite2(out); });
  }
  std::string Rest() {
    std::string rest;
    for (char byte = 0; file.Read(&byte, 1) == 1;) rest += byte;
    return rest;
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  CStdioFile file;
};

class TaggedTable : public FunctionTableFiles {};
class CompactTable : public FunctionTableFiles {};

void ExpectDecay(CSpline const &table) {
  EXPECT_TRUE(table.TableLinear());
  EXPECT_STREQ(table.Name(), "decay");
  EXPECT_EQ(table.MinX(), 0);
  EXPECT_EQ(table.MaxX(), 8);
  EXPECT_EQ(table.MinY(), -1);
  EXPECT_EQ(table.MaxY(), 1);
  EXPECT_STREQ(table.XLabel(), "distance");
  EXPECT_STREQ(table.YLabel(), "weight");
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {1, 0.5}, {8, 0}}));
}

TEST_F(TaggedTable, IsWrittenByteForByte) {
  EXPECT_EQ(Tagged(Decay(), 3), kDecay);
}

TEST_F(TaggedTable, IsReadWithEveryField) {
  CSpline table;
  EXPECT_TRUE(Read(table, kDecay, 3));
  ExpectDecay(table);
  EXPECT_EQ(Rest(), "");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(TaggedTable, BeginsWithItsNumberAndIsReadUnderAnyOther) {
  std::string const bytes = Tagged(Decay(), 7);
  EXPECT_EQ(bytes.substr(0, 4), "(7)\t");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes, 12));
  ExpectDecay(table);
}

TEST_F(TaggedTable, SplineTypeIsZero) {
  CSpline table = Decay();
  table.TableLinear(false);
  std::string const bytes = Tagged(table);
  EXPECT_NE(bytes.find("\n\t0\tdecay"), std::string::npos);
  CSpline again;
  EXPECT_TRUE(Read(again, bytes));
  EXPECT_FALSE(again.TableLinear());
}

TEST_F(TaggedTable, HasSixSignificantDigitsAndLimitsWidenedToDoubles) {
  CSpline table;
  table.MinX(0.1F);
  table.MaxX(1234567.0F);
  table.Add(1.23456789, 1e-7);
  EXPECT_EQ(Tagged(table), "(1)\t" + kColumns +
                               "\n\t1\t\t0.1\t1.23457e+06\t-1\t1\t1\t\t\n"
                               "XDATA\t1.23457\nYDATA\t1e-07\n");
}

TEST_F(TaggedTable, EmptyTableReadsBackWithoutPoints) {
  std::string const bytes = Tagged(CSpline());
  EXPECT_EQ(bytes, "(1)\t" + kColumns + "\n\t1\t\t0\t1\t-1\t1\t0\t\t\nXDATA\nYDATA\n");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  EXPECT_EQ(table.GetSize(), 0);
}

TEST_F(TaggedTable, LineWithTheNumberOfTablesIsSkippedInAnyCase) {
  for (char const *line : {"NumberFunctions=1", "numberfunctions=99", "NUMBERFUNCTIONS=word"}) {
    CSpline table;
    EXPECT_TRUE(Read(table, std::string(line) + "\n" + kDecay)) << line;
    ExpectDecay(table);
  }
  CSpline table;
  EXPECT_FALSE(Read(table, "NumberFunctions 1\n" + kDecay));
}

TEST_F(TaggedTable, SeveralStandOneBehindTheOther) {
  CSpline second = Decay();
  second.Name("second");
  CSpline first = Decay();
  // The line with the number may stand ahead of any table.
  std::string const bytes =
      Written([&](CStdioFile &out) { first.OnWrite(out, 0); }) + "NumberFunctions=2\n";
  Open(bytes + Tagged(second));
  CSpline table;
  EXPECT_TRUE(table.OnRead(file, 0));
  EXPECT_STREQ(table.Name(), "decay");
  EXPECT_TRUE(table.OnRead(file, 1));
  EXPECT_STREQ(table.Name(), "second");
}

TEST_F(TaggedTable, HeaderWithoutANumberOrWithAnyFirstFieldIsAccepted) {
  std::string const rest = kDecay.substr(kDecay.find("Type"));
  for (char const *first : {"", "\t", "3\t", "(3)\t", "whatever it is\t"}) {
    CSpline table;
    EXPECT_TRUE(Read(table, first + rest)) << first;
    ExpectDecay(table);
  }
}

TEST_F(TaggedTable, HeaderMayHoldMoreBehindItsColumns) {
  std::string bytes = kDecay;
  bytes.insert(bytes.find('\n'), "s\tand more");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  ExpectDecay(table);
}

TEST_F(TaggedTable, OtherColumnNameGivesABoxThatQuotesTheLine) {
  std::string bytes = kDecay;
  bytes.replace(bytes.find("Xmax"), 4, "xmax");
  std::string const line = bytes.substr(0, bytes.find('\n'));
  CSpline table = Decay();
  EXPECT_FALSE(Read(table, bytes, 5));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error reading file");
  EXPECT_EQ(application.boxes[0].type, 0U);
  EXPECT_EQ(application.boxes[0].text,
            "Error in file containing macromodel demands.\nReading data for function 5\n"
            "Expected:\n'[num|'('num')']\t" +
                kColumns + "'\nRetrieved:\n'" + line + "'");
  ExpectDecay(table);  // nothing changed
}

TEST_F(TaggedTable, BoxQuotesTheLineBehindTheNumberOfTables) {
  CSpline table;
  EXPECT_FALSE(Read(table, "NumberFunctions=1\nno header\n"));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_NE(application.boxes[0].text.find("Retrieved:\n'no header'"), std::string::npos);
}

TEST_F(TaggedTable, SecondLineWithTheNumberOfTablesIsNoHeader) {
  CSpline table;
  EXPECT_FALSE(Read(table, "NumberFunctions=1\nnumberfunctions=2\n" + kDecay));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_NE(application.boxes[0].text.find("Retrieved:\n'numberfunctions=2'"), std::string::npos);
  EXPECT_EQ(table.GetSize(), 0);
}

TEST_F(TaggedTable, BoxQuotesAnOverLongLineAsItIsCut) {
  CSpline table;
  EXPECT_FALSE(Read(table, std::string(5000, 'h') + "\nnext\n"));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_NE(application.boxes[0].text.find("Retrieved:\n'" + std::string(4095, 'h') + "0'"),
            std::string::npos);
  EXPECT_EQ(Rest(), "next\n");
}

// Two fields are three bytes of the line, the name takes the rest, and the digit is its last. What
// stands behind it was never read.
TEST_F(TaggedTable, OverLongLineOfPropertiesIsCutInItsName) {
  CSpline table;
  EXPECT_TRUE(Read(table, kColumns + "\n\t1\t" + std::string(5000, 'n') +
                              "\t7\t9\t5\t6\t3\tx\ty\nXDATA\t1\t2\t3\nYDATA\t4\t5\t6\nnext\n"));
  EXPECT_EQ(table.Name(), std::string(4092, 'n') + "0");
  EXPECT_EQ(table.MinX(), 0);
  EXPECT_EQ(table.MaxX(), 1);
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_STREQ(table.XLabel(), "");
  EXPECT_EQ(Rest(), "next\n");
}

// All y are zero then.
TEST_F(TaggedTable, FailedLineOfYKeepsItsZeros) {
  for (char const *line : {"YDATA\tword\t5\t6\n", "YDATA\n", ""}) {
    SCOPED_TRACE(line);
    std::string bytes = kDecay;
    bytes.replace(bytes.find("YDATA"), std::string::npos, line);
    CSpline table;
    EXPECT_TRUE(Read(table, bytes));
    ASSERT_EQ(table.GetSize(), 3);
    EXPECT_EQ(table.GetYAt(0), 0);
  }
}

// A file whose device fails when a number of bytes were read.
class FailingFile : public CStdioFile {
 public:
  std::size_t Read(void *buffer, std::size_t count) override {
    if (bytesLeft-- == 0) throw CFileException(CFileException::hardIO);
    return CStdioFile::Read(buffer, count);
  }
  long bytesLeft = 0;
};

TEST_F(TaggedTable, ErrorOfTheDevicePassesThrough) {
  std::string const path = directory.Write("a.txt", kDecay);
  for (long bytes = 0; bytes < static_cast<long>(kDecay.size()); ++bytes) {
    FailingFile failing;
    ASSERT_TRUE(failing.Open(path.c_str(), CFile::modeRead));
    failing.bytesLeft = bytes;
    CSpline table;
    EXPECT_THROW(table.OnRead(failing, 1), CFileException) << bytes;
    EXPECT_EQ(table.GetSize(), 0) << bytes;
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(TaggedTable, EndOfTheFileFails) {
  CSpline table;
  EXPECT_FALSE(Read(table, ""));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_NE(application.boxes[0].text.find("Retrieved:\n''"), std::string::npos);
}

TEST_F(TaggedTable, HeaderAloneGivesATableWithoutPoints) {
  CSpline table;
  table.Name("earlier");
  EXPECT_TRUE(Read(table, kColumns + "\n"));
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_EQ(table.MaxX(), 1);
}

TEST_F(TaggedTable, PointsAreAddedToThoseOfTheTable) {
  CSpline table;
  table.Add(1, 77);
  table.Add(5, 55);
  EXPECT_TRUE(Read(table, kDecay));
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {1, 0.5}, {5, 55}, {8, 0}}));
}

TEST_F(TaggedTable, PointsComeOutSortedAndWithTheLaterYAtOneX) {
  std::string bytes = kDecay;
  bytes.replace(bytes.find("XDATA"), std::string::npos, "XDATA\t8\t0\t8\nYDATA\t1\t2\t3\n");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 2}, {8, 3}}));
}

TEST_F(TaggedTable, ValuesPassThroughFloatsAndEqualOnesMerge) {
  std::string bytes = kDecay;
  bytes.replace(bytes.find("XDATA"), std::string::npos,
                "XDATA\t0.1\t0.1000000001\t2\nYDATA\t1\t2\t3\n");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  EXPECT_EQ(PointsOf(table), (Pairs{{0.1F, 2}, {2, 3}}));
}

TEST_F(TaggedTable, TagsAreNotTested) {
  std::string bytes = kDecay;
  bytes.replace(bytes.find("XDATA"), 5, "y");
  bytes.replace(bytes.find("YDATA"), 5, "");
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  EXPECT_EQ(table.GetSize(), 3);
}

TEST_F(TaggedTable, CarriageReturnsOfATextFileAreNoMatter) {
  std::string bytes;
  for (char c : kDecay) bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
  CSpline table;
  EXPECT_TRUE(Read(table, bytes));
  ExpectDecay(table);
}

TEST_F(TaggedTable, FailedNumberFailsAllBehindItAndGoesToTheNextText) {
  CSpline table;
  table.TableLinear(false);
  EXPECT_TRUE(Read(table, kColumns + "\n\t1\tn\tbad\t2\t3\t4\t5\tX\tY\nXDATA\t9\nYDATA\t9\n"));
  EXPECT_TRUE(table.TableLinear());
  EXPECT_STREQ(table.Name(), "n");
  EXPECT_EQ(table.MinX(), 0);
  EXPECT_EQ(table.MaxX(), 1);
  EXPECT_EQ(table.MinY(), -1);
  EXPECT_EQ(table.MaxY(), 1);
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_STREQ(table.XLabel(), "bad");
  EXPECT_STREQ(table.YLabel(), "2");
}

TEST_F(TaggedTable, FailedTypeBecomesTheName) {
  CSpline table;
  EXPECT_TRUE(Read(table, kColumns + "\n\tlinear\tn\t0\t8\t-1\t1\t3\tX\tY\n"));
  EXPECT_TRUE(table.TableLinear());
  EXPECT_STREQ(table.Name(), "linear");
  EXPECT_STREQ(table.XLabel(), "n");
  EXPECT_STREQ(table.YLabel(), "0");
}

// The x line of one number is eight bytes and its end. Behind the end stands what the line of the
// properties left there, from its eighth byte on.
TEST_F(TaggedTable, ShortLineGoesOnIntoTheRestOfAnEarlierOne) {
  CSpline table;
  EXPECT_TRUE(
      Read(table, kColumns + "\n\t1\tn\t0\t1\t-1\t1\t3\tx\ty\n" + "XDATA\t55\nYDATA\t7\t8\t9\n"));
  EXPECT_EQ(PointsOf(table), (Pairs{{-1, 8}, {1, 9}, {55, 7}}));
}

// Here the rest begins with an end, which is a field without a number.
TEST_F(TaggedTable, ShortLineKeepsZerosWhereTheRestIsNoNumber) {
  CSpline table;
  EXPECT_TRUE(
      Read(table, kColumns + "\n\t1\tn\t0\t1\t-1\t1\t3\tx\ty\n" + "XDATA\t5\nYDATA\t7\t8\t9\n"));
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 9}, {5, 7}}));
}

TEST_F(TaggedTable, HugeOrNegativeCountIsHeldToTheLine) {
  for (char const *count : {"2147483647", "2147483648", "4294967299", "99999999999999999999",
                            "100000000", "-3", "-99999999999999999999"}) {
    std::string bytes = kDecay;
    bytes.replace(bytes.find("\t3\t"), 3, "\t" + std::string(count) + "\t");
    CSpline table;
    EXPECT_TRUE(Read(table, bytes));
    EXPECT_LE(table.GetSize(), 10) << count;
    if (count[0] == '-') {
      EXPECT_EQ(table.GetSize(), 0);
    }
  }
}

// Numbers of three and four digits, so that the x line has 4095 bytes.
CSpline TableAtTheLineLimit() {
  CSpline table;
  for (int x = 100; x < 1098; ++x) table.Add(x, x % 10);
  return table;
}

TEST_F(TaggedTable, IsReadBackAtTheLineLimit) {
  CSpline const table = TableAtTheLineLimit();
  std::string const bytes = Tagged(table);
  std::size_t const begin = bytes.find("XDATA");
  ASSERT_EQ(bytes.find('\n', begin) - begin, 4095U);
  CSpline again;
  EXPECT_TRUE(Read(again, bytes));
  EXPECT_EQ(PointsOf(again), PointsOf(table));
  EXPECT_EQ(Rest(), "");
}

TEST_F(TaggedTable, LongerLineIsCutWithADigitAndLosesItsLastPoints) {
  CSpline table = TableAtTheLineLimit();
  table.Add(1098, 5);
  CSpline again;
  EXPECT_TRUE(Read(again, Tagged(table)));
  // The digit that ends the buffer makes 10970 of the last whole number; the one behind is zero.
  Pairs expected = PointsOf(TableAtTheLineLimit());
  expected.back().first = 10970;
  expected.insert(expected.begin(), {0, 5});
  EXPECT_EQ(PointsOf(again), expected);
  EXPECT_EQ(Rest(), "");
}

TEST_F(TaggedTable, RoundTripKeepsSixDigitsOverSeededTables) {
  for (unsigned int seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-1000, 1000);
    CSpline table;
    for (std::size_t n = random() % 60; n-- > 0;) table.Add(std::floor(any(random)), any(random));
    table.TblType(static_cast<int>(random() % 2));
    table.Name("a name");
    CSpline again;
    ASSERT_TRUE(Read(again, Tagged(table)));
    ASSERT_EQ(again.GetSize(), table.GetSize());
    EXPECT_EQ(again.TblType(), table.TblType());
    for (int i = 0; i < table.GetSize(); ++i) {
      EXPECT_EQ(again.GetXAt(i), table.GetXAt(i));
      EXPECT_NEAR(again.GetYAt(i), table.GetYAt(i), 1e-5 * std::fabs(table.GetYAt(i)));
    }
    EXPECT_EQ(Tagged(again), Tagged(table));
  }
}

TEST_F(TaggedTable, ReadingAPointTakesTheCurveDown) {
  CSpline table = Decay();
  table.TableLinear(false);
  table.Evaluate(0.5F);
  EXPECT_TRUE(Read(table, Tagged(CSpline())));
  EXPECT_TRUE(CSplineAccess::CurveValid(table));
  EXPECT_TRUE(Read(table, kDecay));
  EXPECT_FALSE(CSplineAccess::CurveValid(table));
}

// A class of an application that reads its own way.
class QuietSpline : public CSpline {
 public:
  bool OnRead(CStdioFile & /*file*/, int number) override {
    Add(number, number);
    return true;
  }
};

TEST_F(TaggedTable, ReadingCanBeOverridden) {
  QuietSpline quiet;
  CSpline &table = quiet;
  EXPECT_TRUE(table.OnRead(file, 4));
  EXPECT_EQ(PointsOf(table), (Pairs{{4, 4}}));
}

TEST_F(CompactTable, IsWrittenByteForByte) {
  EXPECT_EQ(Compact(Decay()), kCompactDecay);
}

TEST_F(CompactTable, IsReadAndKeepsNameAndType) {
  CSpline table;
  table.Name("mine");
  table.TableLinear(false);
  table.MinX(-50);
  Read2(table, kCompactDecay + "next\n");
  EXPECT_STREQ(table.Name(), "mine");
  EXPECT_FALSE(table.TableLinear());
  EXPECT_EQ(table.MinX(), 0);
  EXPECT_EQ(table.MaxX(), 8);
  EXPECT_EQ(table.MinY(), -1);
  EXPECT_EQ(table.MaxY(), 1);
  EXPECT_STREQ(table.XLabel(), "distance");
  EXPECT_STREQ(table.YLabel(), "weight");
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {1, 0.5}, {8, 0}}));
  EXPECT_EQ(Rest(), "next\n");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(CompactTable, ThreePointsReadIntoFiveLeaveThree) {
  CSpline table;
  for (int i = 0; i < 5; ++i) table.Add(i, i);
  Read2(table, kCompactDecay);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {1, 0.5}, {8, 0}}));
}

TEST_F(CompactTable, LabelsMayBeEmpty) {
  CSpline table = Decay();
  table.XLabel("");
  table.YLabel("");
  std::string const bytes = Compact(table);
  EXPECT_NE(bytes.find("\n\t0.000000"), std::string::npos);
  CSpline again = Decay();
  Read2(again, bytes);
  EXPECT_STREQ(again.XLabel(), "");
  EXPECT_STREQ(again.YLabel(), "");
  EXPECT_EQ(again.GetSize(), 3);
}

TEST_F(CompactTable, LabelMayHoldALineFeed) {
  CSpline table = Decay();
  table.XLabel("two\nlines");
  CSpline again;
  Read2(again, Compact(table));
  EXPECT_STREQ(again.XLabel(), "two\nlines");
  EXPECT_EQ(PointsOf(again), PointsOf(table));
}

TEST_F(CompactTable, OrderIsThatOfTheFile) {
  CSpline table;
  Read2(table, "0\t1\t3\nx\t5\t2\t2\ny\t1\t2\t3\n");
  EXPECT_EQ(PointsOf(table), (Pairs{{5, 1}, {2, 2}, {2, 3}}));
  EXPECT_EQ(table.MinX(), 5);
  EXPECT_EQ(table.MaxX(), 2);
}

TEST_F(CompactTable, OutOfOrderTheFirstPairThatHoldsXAnswers) {
  CSpline table;
  Read2(table, "0\t1\t4\nx\t0\t1\t1\t2\ny\t0\t0\t8\t8\n");
  EXPECT_EQ(table.Evaluate(0.5F), 0);
  EXPECT_EQ(table.Evaluate(1.5F), 8);
  EXPECT_EQ(table.Evaluate(1), 0);  // the pair on the left of the step comes first
  // No pair that falls in x holds anything.
  Read2(table, "0\t1\t4\nx\t0\t1\t-1\t2\ny\t5\t6\t7\t8\n");
  EXPECT_EQ(table.Evaluate(1.5F), 7 + 2.5F / 3);
  // Here none does, and the last y answers.
  Read2(table, "0\t1\t3\nx\t0\tnan\t9\ny\t5\t6\t7\n");
  EXPECT_EQ(table.Evaluate(4), 7);
}

TEST_F(CompactTable, LastXThatIsNoNumberEndsNoPair) {
  for (std::string const xs : {"0\t1\tnan", "0\t1\tnan\tnan\tnan"}) {
    SCOPED_TRACE(xs);
    CSpline table;
    Read2(table, std::string("0\t1\t") + (xs.size() < 10 ? "3" : "5") + "\nx\t" + xs +
                     "\ny\t5\t6\t7\t7\t7\n");
    EXPECT_EQ(table.Evaluate(0.5F), 5.5F);
    EXPECT_EQ(table.Evaluate(3), 7);
  }
}

// A step is met first at its middle only behind an x that is no number.
TEST_F(CompactTable, StepAnswersWithItsMiddle) {
  CSpline table;
  Read2(table, "0\t1\t5\nx\t0\tnan\t5\t5\t9\ny\t0\t0\t2\t4\t0\n");
  EXPECT_EQ(table.Evaluate(5), 3);
}

TEST_F(CompactTable, TwoPointsAtOneXCannotBeParted) {
  CSpline table;
  Read2(table, "0\t1\t2\nx\t0\t0\ny\t1\t2\n");
  table.Simplify();
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(table.GetSize(), 2);
}

// The order of its points is nobody's promise then, but it comes to an end.
TEST_F(CompactTable, OutOfOrderIsThinnedAllTheSame) {
  for (char const *xs :
       {"3\t2\t1\t0\t5", "0\t0\t0\t0\t0", "nan\t1\tnan\t0\tinf", "5\t-inf\t5\tnan\t5",
        "0\t9\t1\t8\t2", "0\t1\t2\t3\tnan", "0\tnan\tnan\tnan\tnan"}) {
    SCOPED_TRACE(xs);
    CSpline table;
    Read2(table, std::string("0\t1\t5\nx\t") + xs + "\ny\t1\t1\t2\t2\t2\n");
    ASSERT_EQ(table.GetSize(), 5);
    table.Simplify();
    EXPECT_TRUE(table.TableLinear());
    EXPECT_LE(table.GetSize(), 6);
    for (float x = -1; x < 10; x += 0.5F) table.Evaluate(x);
  }
}

TEST_F(CompactTable, FailedNumberRepeatsTheLastOneEvenThatOfX) {
  CSpline table;
  Read2(table, "0\t1\t3\nx\t5\tword\t7\ny\tnone\n");
  EXPECT_EQ(PointsOf(table), (Pairs{{5, 5}, {5, 5}, {5, 5}}));
  Read2(table, "0\t1\t3\nx\t\tword word\ny\t1\t2\t3\n");
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 1}, {0, 2}, {0, 3}}));
  Read2(table, "0\t1\t3\nx\t1\t2\t3\n");  // no line of y
  EXPECT_EQ(PointsOf(table), (Pairs{{1, 3}, {2, 3}, {3, 3}}));
  EXPECT_STREQ(table.YLabel(), "");
}

TEST_F(CompactTable, CountThatIsNoneChangesNothing) {
  std::string const rest = "\nx\t1\t2\t3\ny\t1\t2\t3\n";
  for (char const *first : {"", "5\t6", "5\t6\tword", "word", "5\t6\t0", "5\t6\t-3",
                            "5\t6\t2147483647", "5\t6\t2147483648", "5\t6\t4294967299",
                            "5\t6\t99999999999999999999", "5\t6\t-4294967293", "5\t6\t1000"}) {
    SCOPED_TRACE(first);
    CSpline table = Decay();
    Read2(table, first + rest);
    ExpectDecay(table);
  }
  CSpline table = Decay();
  Read2(table, "");
  ExpectDecay(table);
  Read2(table, "5\t6\t1\n");
  ExpectDecay(table);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(CompactTable, CountEndsWhereItsDigitsDo) {
  for (char const *count : {"3abc", "3.7", "+3", "  3 4"}) {
    SCOPED_TRACE(count);
    CSpline table;
    Read2(table, std::string("0\t1\t") + count + "\nx\t1\t2\t3\ny\t4\t5\t6\nnext\n");
    EXPECT_EQ(PointsOf(table), (Pairs{{1, 4}, {2, 5}, {3, 6}}));
    EXPECT_EQ(Rest(), "next\n");
  }
}

// The two lines have twelve bytes, and more stand behind them: eleven and twelve points are read,
// thirteen are not.
TEST_F(CompactTable, CountIsBelievedUpToTheBytesOfItsLines) {
  std::string const lines = "\nxx\tw\t2\nyy\tw\n" + std::string(100, 'z') + "\n";
  for (int count : {11, 12, 13}) {
    CSpline table = Decay();
    Read2(table, "0\t1\t" + std::to_string(count) + lines);
    if (count < 13) {
      EXPECT_EQ(PointsOf(table), Pairs(static_cast<std::size_t>(count), {0, 0}));
      EXPECT_STREQ(table.YLabel(), "yy");
    } else {
      ExpectDecay(table);
    }
  }
}

// A failed number may take the bytes that could have begun one; the next is tried behind them.
TEST_F(CompactTable, NumberBehindAFailedOneIsRead) {
  CSpline table;
  Read2(table, "0\t1\t4\nx\t5\t--6\t-\t7\ny\t1\t2\t3\t4\n");
  EXPECT_EQ(PointsOf(table), (Pairs{{5, 1}, {5, 2}, {-6, 3}, {-6, 4}}));
  EXPECT_EQ(Rest(), "");
}

// The rule as it is told, for a count that is believed: each number is tried, whatever came of the
// one before it.
struct NaiveTable {
  Pairs points;
  std::string xLabel;
  std::string yLabel;
  long long bytes = 0;  // of the two lines
  std::string rest;
};

NaiveTable ReadNaively(CStdioFile &file) {
  NaiveTable table;
  char line[4096];
  GetLine(line, 4096, file);
  float unused = 0;
  int count = 0;
  EXPECT_EQ(std::sscanf(line, " %f %f %d", &unused, &unused, &count), 3);
  long long const begin = file.Seek(0, CFile::current);
  table.points.resize(static_cast<std::size_t>(count));
  double last = 0;
  ReadStr(line, 4096, file, '\t');
  table.xLabel = line;
  for (auto &point : table.points) {
    ReadDbl(last, file);
    point.first = last;
  }
  SkipRestOfLine(file);
  ReadStr(line, 4096, file, '\t');
  table.yLabel = line;
  for (auto &point : table.points) {
    ReadDbl(last, file);
    point.second = last;
  }
  SkipRestOfLine(file);
  table.bytes = file.Seek(0, CFile::current) - begin;
  for (char byte = 0; file.Read(&byte, 1) == 1;) table.rest += byte;
  return table;
}

std::string RandomLine(std::mt19937 &random) {
  static constexpr char kAlphabet[] = "0123456789.-+eEinfax \t\t\t\n\r";
  std::string line = "label\t";
  for (std::size_t n = random() % 40; n-- > 0;)
    line += kAlphabet[random() % (sizeof kAlphabet - 1)];
  return line + "\n";
}

TEST_F(CompactTable, DamagedLinesAgreeWithTheRuleOverSeededTexts) {
  int read = 0;
  for (unsigned int seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    int const count = 1 + static_cast<int>(random() % 12);
    std::string bytes = "0\t1\t" + std::to_string(count) + "\n";
    for (int line = 0; line < 4; ++line) bytes += RandomLine(random);
    Open(bytes);
    NaiveTable const naive = ReadNaively(file);
    CSpline table;
    Read2(table, bytes);
    ASSERT_EQ(Rest(), naive.rest);
    // Of what fails a byte or two more may have been read than are counted.
    if (naive.bytes < count) {
      ASSERT_EQ(table.GetSize(), 0);
    } else if (table.GetSize() != 0 || naive.bytes > 2 * count) {
      ++read;
      ASSERT_STREQ(table.XLabel(), naive.xLabel.c_str());
      ASSERT_STREQ(table.YLabel(), naive.yLabel.c_str());
      ASSERT_EQ(table.GetSize(), count);
      for (int i = 0; i < count; ++i) {
        auto const &[x, y] = naive.points[static_cast<std::size_t>(i)];
        ASSERT_TRUE(table.GetXAt(i) == x || (std::isnan(x) && std::isnan(table.GetXAt(i)))) << i;
        ASSERT_TRUE(table.GetYAt(i) == y || (std::isnan(y) && std::isnan(table.GetYAt(i)))) << i;
      }
    }
  }
  EXPECT_GT(read, 1900);
}

TEST_F(CompactTable, ZeroByteIsNoNumber) {
  CSpline table;
  Read2(table, std::string("0\t1\t2\nx\t5\t\0\t7\ny\t1\t2\n", 20));
  EXPECT_EQ(PointsOf(table), (Pairs{{5, 1}, {5, 2}}));
}

// A file that can only be read forward.
class ForwardFile : public CStdioFile {
 public:
  long long Seek(long long /*offset*/, unsigned int /*from*/) override {
    throw CFileException(CFileException::badSeek);
  }
  long long GetLength() override { throw CFileException(CFileException::badSeek); }
};

TEST_F(CompactTable, AnyNumberOfThemAreReadForward) {
  constexpr int kTables = 1000;
  std::string bytes;
  for (int i = 0; i < kTables; ++i)
    bytes += "0\t1\t2\r\nx\t" + std::to_string(i) + "\t2000\r\ny\t1\t2\r\n";
  ForwardFile forward;
  ASSERT_TRUE(forward.Open(directory.Write("a.txt", bytes).c_str(), CFile::modeRead));
  for (int i = 0; i < kTables; ++i) {
    CSpline table;
    table.OnRead2(forward);
    ASSERT_EQ(PointsOf(table), (Pairs{{i, 1}, {2000, 2}})) << i;
    ASSERT_STREQ(table.YLabel(), "y");
  }
}

TEST_F(CompactTable, IsReadThroughAPipe) {
  for (unsigned int const type : {CFile::typeText, CFile::typeBinary}) {
    Pipe const pipe(kCompactDecay + kCompactDecay);
    ASSERT_TRUE(file.Open(pipe.Name().c_str(), CFile::modeRead | type));
    for (int i = 0; i < 2; ++i) {
      CSpline table = Decay();
      table.RemoveAll();
      table.OnRead2(file);
      ExpectDecay(table);
    }
    EXPECT_EQ(Rest(), "");
  }
}

TEST_F(CompactTable, ErrorOfTheDevicePassesThroughAndChangesNothing) {
  std::string const path = directory.Write("a.txt", "0\t1\t2\nlabel\t1\t2\nother\t3\t4\n");
  FailingFile failing;
  int thrown = 0;
  for (long bytes = 0;; ++bytes) {
    ASSERT_TRUE(failing.Open(path.c_str(), CFile::modeRead));
    failing.bytesLeft = bytes;
    CSpline table = Decay();
    try {
      table.OnRead2(failing);
      EXPECT_EQ(PointsOf(table), (Pairs{{1, 3}, {2, 4}}));
      break;
    } catch (CFileException const &reason) {
      EXPECT_EQ(reason.m_cause, CFileException::hardIO);
      ExpectDecay(table);
      ++thrown;
    }
  }
  EXPECT_GT(thrown, 10);
}

TEST_F(CompactTable, FailedAllocationChangesNothing) {
  std::string const path = directory.Write(
      "a.txt", "0\t1\t3\na label of some length\t1\t2\t3\nanother label of some length\t4\t5\t6\n");
  int failed = 0;
  for (long n = 1;; ++n) {
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeRead));
    CSpline table = Decay();
    try {
      FailingAllocation const failing(n);
      table.OnRead2(file);
    } catch (std::bad_alloc const &) {
      ++failed;
      ExpectDecay(table);
      continue;
    }
    EXPECT_EQ(PointsOf(table), (Pairs{{1, 4}, {2, 5}, {3, 6}}));
    break;
  }
  EXPECT_GT(failed, 3);
}

TEST_F(CompactTable, EarlierCurveStaysInForce) {
  CSpline table = Decay();
  table.TableLinear(false);
  float const before = table.Evaluate(0.5F);
  Read2(table, "-1\t1\t3\nx\t0\t1\t8\ny\t100\t100\t100\n");
  EXPECT_TRUE(CSplineAccess::CurveValid(table));
  EXPECT_EQ(table.Evaluate(0.5F), before);
  EXPECT_EQ(table.Evaluate(-1), 100);
  table.Add(1, 100);
  EXPECT_NEAR(table.Evaluate(0.5F), 100, 0.001);
}

TEST_F(CompactTable, KeepsAllDigitsOfADouble) {
  CSpline table;
  Read2(table, "0\t1\t1\nx\t0.12345678901234567\ny\t1e300\n");
  EXPECT_EQ(PointsOf(table), (Pairs{{0.12345678901234567, 1e300}}));
}

TEST_F(CompactTable, HasNoLimitOfItsLineLength) {
  CSpline table;
  for (int x = 0; x < 3000; ++x) table.Add(x, x % 7);
  CSpline again;
  Read2(again, Compact(table));
  EXPECT_EQ(PointsOf(again), PointsOf(table));
}

TEST_F(CompactTable, LabelLongerThanTheBufferIsCutWithADigit) {
  CSpline table;
  Read2(table, "0\t1\t1\n" + std::string(5000, 'a') + "\t1\ny\t2\n");
  EXPECT_EQ(table.XLabel(), std::string(4095, 'a') + "0");
  EXPECT_EQ(PointsOf(table), (Pairs{{1, 2}}));
}

TEST_F(CompactTable, SeveralStandOneBehindTheOther) {
  Open(kCompactDecay + "0\t1\t1\nx\t4\ny\t5\n");
  CSpline table;
  table.OnRead2(file);
  EXPECT_EQ(table.GetSize(), 3);
  table.OnRead2(file);
  EXPECT_EQ(PointsOf(table), (Pairs{{4, 5}}));
}

TEST_F(CompactTable, RoundTripKeepsSixDecimalsOverSeededTables) {
  for (unsigned int seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-1000, 1000);
    CSpline table;
    for (std::size_t n = 1 + random() % 100; n-- > 0;) table.Add(any(random), any(random));
    CSpline again;
    Read2(again, Compact(table));
    ASSERT_EQ(again.GetSize(), table.GetSize());
    for (int i = 0; i < table.GetSize(); ++i) {
      EXPECT_NEAR(again.GetXAt(i), table.GetXAt(i), 5.1e-7);
      EXPECT_NEAR(again.GetYAt(i), table.GetYAt(i), 5.1e-7);
    }
  }
}

// The sample tables and the worked examples of the format page.
class TablesOfTheTree : public FunctionTableFiles {
 protected:
  static std::string Bytes(std::string const &name) {
    std::ifstream stream(kTree + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }
  void OpenInTree(std::string const &name) {
    ASSERT_TRUE(file.Open((kTree + name).c_str(), CFile::modeRead | CFile::typeText)) << name;
  }
  static inline std::string const kTree = QUILLAVEN_SOURCE_DIR "/";
};

TEST_F(TablesOfTheTree, ExamplesStandInTheirPageAndMeanTheSameTable) {
  std::string const page = Bytes("docs/formats/function-table.md");
  std::string const tagged = Bytes("docs/formats/examples/Tables/Tagged.txt");
  std::string const compact = Bytes("docs/formats/examples/Tables/Compact.txt");
  EXPECT_NE(page.find("```\n" + tagged + "```\n"), std::string::npos);
  EXPECT_NE(page.find("```\n" + compact + "```\n"), std::string::npos);

  CSpline table;
  OpenInTree("docs/formats/examples/Tables/Tagged.txt");
  EXPECT_TRUE(table.OnRead(file, 3));
  ExpectDecay(table);
  EXPECT_EQ(Tagged(table, 3), tagged);
  table.RemoveAll();
  OpenInTree("docs/formats/examples/Tables/Compact.txt");
  table.OnRead2(file);
  ExpectDecay(table);
  EXPECT_EQ(Compact(table), compact);
}

TEST_F(TablesOfTheTree, DistanceDecayFallsAtTheGridDistances) {
  OpenInTree("data/tables/distance-decay.txt");
  CSpline table;
  ASSERT_TRUE(table.OnRead(file, 1));
  EXPECT_TRUE(table.TableLinear());
  EXPECT_STREQ(table.Name(), "distance decay");
  ASSERT_EQ(table.GetSize(), CSpline::NRoots());
  for (int i = 0; i < table.GetSize(); ++i) {
    EXPECT_EQ(table.GetXAt(i), CSpline::Root(i));
    if (i > 0) {
      EXPECT_LT(table.GetYAt(i), table.GetYAt(i - 1));
    }
  }
  EXPECT_EQ(table.Evaluate(0), 1);
  EXPECT_NEAR(table.Evaluate(2), std::exp(-1.0), 1e-4);
  EXPECT_EQ(table.Evaluate(100), 0);
  EXPECT_EQ(Tagged(table), Bytes("data/tables/distance-decay.txt"));
}

TEST_F(TablesOfTheTree, DemandIsASmoothRise) {
  OpenInTree("data/tables/demand.txt");
  CSpline table;
  ASSERT_TRUE(table.OnRead(file, 1));
  EXPECT_FALSE(table.TableLinear());
  for (int i = 0; i < table.GetSize(); ++i) {
    auto const x = static_cast<float>(table.GetXAt(i));
    EXPECT_NEAR(table.Evaluate(x), table.GetYAt(i), 0.5) << x;
  }
  float before = 0;
  for (float year = 1990; year <= 2040; year += 0.25F) {
    float const demand = table.Evaluate(year);
    EXPECT_GT(demand, before - 0.1F) << year;
    EXPECT_LT(demand - before, before > 0 ? 1 : 20) << year;  // no jump
    before = demand;
  }
  EXPECT_EQ(Tagged(table), Bytes("data/tables/demand.txt"));
}

TEST_F(TablesOfTheTree, StepRisesAtHalfAnHour) {
  OpenInTree("data/tables/step.txt");
  CSpline table;
  table.OnRead2(file);
  EXPECT_STREQ(table.XLabel(), "travel time in minutes");
  EXPECT_EQ(table.Evaluate(0), 0);
  EXPECT_EQ(table.Evaluate(30), 0);
  EXPECT_EQ(table.Evaluate(30.001F), 1);
  EXPECT_EQ(table.Evaluate(60), 1);
  EXPECT_EQ(Compact(table), Bytes("data/tables/step.txt"));
}

}  // namespace
