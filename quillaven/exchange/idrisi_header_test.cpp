#include <cstddef>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_header.h>

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

class IdrisiHeader : public testing::Test {
 protected:
  bool Read(std::string const &content) {
    return header.ReadFile(directory.Write("a.doc", content).c_str());
  }
  std::string Written() {
    EXPECT_TRUE(header.WriteFile(directory.Path("out.doc").c_str()));
    return directory.Read("out.doc");
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
  EXPECT_FALSE(Read(kExample.substr(0, kExample.find("category   1"))));
  EXPECT_EQ(header.CategoryCount(), 1);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(IdrisiHeader, CategoryCountIsNotBelievedBeforeItsLinesAreThere) {
  std::string file = kExample.substr(0, kExample.find("legend cats"));
  EXPECT_FALSE(Read(file + "legend cats : 2000000000\ncategory   0 : a\n"));
  EXPECT_EQ(header.CategoryCount(), 1);
  EXPECT_TRUE(Read(file + "legend cats : -5\n"));
  EXPECT_EQ(header.CategoryCount(), 0);
}

TEST_F(IdrisiHeader, MissingFileIsToldInABox) {
  EXPECT_FALSE(header.ReadFile(directory.Path("none.doc").c_str()));
  EXPECT_EQ(application.boxes.at(0).title, "Error: Cannot open file");
}

TEST_F(IdrisiHeader, FileThatCannotBeWrittenIsFalseWithoutABox) {
  EXPECT_FALSE(header.WriteFile(directory.Path("no/such.doc").c_str()));
  if (std::filesystem::exists("/dev/full")) {
    EXPECT_FALSE(header.WriteFile("/dev/full"));
  }
  EXPECT_TRUE(application.boxes.empty());
}

}  // namespace
