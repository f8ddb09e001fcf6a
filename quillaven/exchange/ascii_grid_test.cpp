#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kHeader =
    "NCOLS 2\nNROWS 2\nXLLCORNER 0\nYLLCORNER 0\nCELLSIZE 1\nNODATA_VALUE -9999\n";

class AsciiGrid : public testing::Test {
 protected:
  ~AsciiGrid() override {
    DefaultFineResolution(1);
    DefaultResolutionMap(nullptr);
  }
  template <class T>
  bool Import(std::string const &content, CMultiScaleMatrix<T> &raster) {
    return ImportAsciiGrid(directory.Write("a.asc", content).c_str(), texts, raster);
  }
  template <class T>
  std::string Export(CMultiScaleMatrix<T> const &raster) {
    EXPECT_TRUE(ExportAsciiGrid(directory.Path("out.asc").c_str(), texts, raster));
    return directory.ReadText("out.asc");
  }
  // The cells of a raster, row after row.
  template <class T>
  static std::vector<double> Cells(CMultiScaleMatrix<T> const &raster) {
    std::vector<double> cells;
    for (int row = 0; row < raster.NRows(); ++row)
      for (int col = 0; col < raster.NCols(); ++col)
        cells.push_back(static_cast<double>(raster.At(row, col)));
    return cells;
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  GridTexts texts;
  CMultiScaleFloatMatrix floats;
  CMultiScaleShortMatrix shorts;
  CMultiScaleByteMatrix bytes;
};

using Numbers = std::vector<double>;

TEST_F(AsciiGrid, IsWrittenByteForByte) {
  bytes.Redim(2, 2, 1);
  for (int i = 0; i < 4; ++i) bytes.At(i / 2, i % 2) = static_cast<unsigned char>(i + 1);
  EXPECT_EQ(Export(bytes), kHeader + "1 2\n3 4\n");
  floats.SetNoDataValue(false, -1.5F);
  floats.Redim(1, 3, 1);
  floats.At(0, 0) = 0.001F;
  floats.At(0, 1) = 1234567.0F;
  floats.At(0, 2) = -0.5F;
  texts = {"535800", "5210600", "25"};
  EXPECT_EQ(Export(floats),
            "NCOLS 3\nNROWS 1\nXLLCORNER 535800\nYLLCORNER 5210600\nCELLSIZE 25\n"
            "NODATA_VALUE -1.5\n0.001 1.23457e+06 -0.5\n");
}

TEST_F(AsciiGrid, EmptyRasterIsAHeaderAlone) {
  EXPECT_EQ(Export(floats),
            "NCOLS 0\nNROWS 0\nXLLCORNER 0\nYLLCORNER 0\nCELLSIZE 1\n"
            "NODATA_VALUE -9999\n");
}

TEST_F(AsciiGrid, CoarseBlockIsWrittenOnceForEachOfItsCells) {
  shorts.Redim(4, 4, 2);
  for (int row = 0; row < 4; row += 2)
    for (int col = 0; col < 4; col += 2) shorts.At(row, col) = static_cast<short>(row + col);
  shorts.FineCell(0, 0, true);
  shorts.At(0, 1) = 7;
  EXPECT_EQ(Export(shorts).substr(Export(shorts).find("-9999\n") + 6),
            "0 7 2 2\n0 0 2 2\n2 2 4 4\n2 2 4 4\n");
}

TEST_F(AsciiGrid, IsReadWithItsNoDataValueInForceAndItsTexts) {
  EXPECT_TRUE(
      Import("ncols 3\nrows? 2\nx 535800.5\nxx north\ncell 25 metres\nnone -1\n"
             "1 2.5 -1\n4 5 6\n",
             floats));
  EXPECT_EQ(floats.NRows(), 2);
  EXPECT_EQ(floats.NCols(), 3);
  EXPECT_EQ(Cells(floats), (Numbers{1, 2.5, -1, 4, 5, 6}));
  EXPECT_TRUE(floats.HasNoDataValue());
  EXPECT_EQ(floats.NoDataValue(), -1.0F);
  EXPECT_EQ(texts.xCorner, "535800.5");
  EXPECT_EQ(texts.yCorner, "north");
  EXPECT_EQ(texts.cellSize, "25");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(AsciiGrid, WithCarriageReturnsReadsTheSame) {
  std::string crlf;
  for (char c : kHeader + "1 2\n3 4\n") crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  EXPECT_TRUE(Import(crlf, floats));
  EXPECT_EQ(Cells(floats), (Numbers{1, 2, 3, 4}));
  EXPECT_EQ(texts.cellSize, "1");
}

TEST_F(AsciiGrid, CellsMayBeBrokenIntoLinesInAnyWay) {
  EXPECT_TRUE(Import(kHeader + "1\n2\n\n3\t\t4\n", floats));
  EXPECT_EQ(Cells(floats), (Numbers{1, 2, 3, 4}));
}

TEST_F(AsciiGrid, WithoutALastLineFeedIsToldAsAFailureAlthoughEveryCellWasRead) {
  EXPECT_FALSE(Import(kHeader + "1 2\n3 4", floats));
  EXPECT_EQ(Cells(floats), (Numbers{1, 2, 3, 4}));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(AsciiGrid, WordAmongTheNumbersIsToldAsASuccessAndRepeatsTheNumberBefore) {
  EXPECT_TRUE(Import(kHeader + "1 2\nthree 4\n", floats));
  EXPECT_EQ(Cells(floats), (Numbers{1, 2, 2, 2}));
  EXPECT_TRUE(Import(kHeader + "one 2\n3 4\n", floats));
  EXPECT_EQ(Cells(floats), (Numbers{0, 0, 0, 0}));
}

TEST_F(AsciiGrid, ThatEndsEarlyRepeatsItsLastNumber) {
  EXPECT_FALSE(Import(kHeader + "1 2\n3\n", floats));
  EXPECT_EQ(Cells(floats), (Numbers{1, 2, 3, 3}));
}

TEST_F(AsciiGrid, CutAtAnyByteLeavesAUsableRaster) {
  std::string const whole = kHeader + "1 2\n3 4\n";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_FALSE(Import(whole.substr(0, length), floats));
    EXPECT_LE(Cells(floats).size(), 4U);
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(AsciiGrid, ThatIsNoGridAtAllIsReadWithoutHarm) {
  EXPECT_FALSE(Import("", floats));
  EXPECT_FALSE(Import("word", floats));
  Import(std::string(3000, '\xFF'), floats);
  EXPECT_EQ(Cells(floats).size(), 0U);
  Import(std::string("\0\1\2\0NCOLS\n", 10), floats);
  EXPECT_EQ(Cells(floats).size(), 0U);
  Import("NCOLS x\nNROWS y\na b\na b\na b\na b\n1 2 3\n", floats);
  EXPECT_EQ(floats.NRows(), 0);
  Import("NCOLS -3\nNROWS 4\na b\na b\na b\na b\n1 2 3\n", floats);
  EXPECT_EQ(Cells(floats).size(), 0U);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(AsciiGrid, ThatAsksForMoreCellsThanItCanHoldIsNotBelieved) {
  EXPECT_FALSE(Import("NCOLS 2000000000\nNROWS 2000000000\nx 0\ny 0\nc 1\nn -1\n1 2\n", floats));
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floats.NoDataValue(), -1.0F);
  EXPECT_FALSE(Import("NCOLS 99999999999999999999\nNROWS 2\nx 0\ny 0\nc 1\nn -1\n1 2\n", floats));
  EXPECT_EQ(floats.NRows(), 0);
}

TEST_F(AsciiGrid, ThatAsksForRowsWithoutColumnsIsNotBelievedEither) {
  for (char const *cols : {"0", "-3", "x"}) {
    SCOPED_TRACE(cols);
    EXPECT_FALSE(Import(
        "NCOLS " + std::string(cols) + "\nNROWS 2000000000\nx 0\ny 0\nc 1\nn -1\n1 2\n", floats));
    EXPECT_EQ(floats.NRows(), 0);
  }
}

TEST_F(AsciiGrid, RowsWithoutColumnsAreWrittenAsEmptyLines) {
  floats.Redim(200000, 0, 1);  // more line feeds than a block of output
  std::string const written = Export(floats);
  EXPECT_EQ(written.substr(written.size() - 200000), std::string(200000, '\n'));
  EXPECT_EQ(written.find('\n'), std::string("NCOLS 0").size());
}

TEST_F(AsciiGrid, DirectoryIsToldInABoxAsAMissingFileIs) {
  EXPECT_FALSE(ImportAsciiGrid(directory.Path().c_str(), texts, floats));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
}

TEST_F(AsciiGrid, WithoutANumberForNoDataHasTheUsualOne) {
  EXPECT_TRUE(Import("NCOLS 2\nNROWS 1\nX 0\nY 0\nC 1\nNODATA_VALUE\n1 2\n", floats));
  EXPECT_TRUE(floats.HasNoDataValue());
  EXPECT_EQ(floats.NoDataValue(), -9999.0F);
  EXPECT_EQ(Cells(floats), (Numbers{1, 2}));
}

TEST_F(AsciiGrid, ImportThroughAMapTakesTheDefaultResolutionAndSwitchesNoDataOn) {
  floats.Redim(9, 9, 3);
  floats.SetNoDataValue(false, 5);
  CFloatMatrixBaseMap map;
  map.Attach("a", "a", &floats, nullptr, false);
  DefaultFineResolution(2);
  std::string const file = directory.Write("a.asc", kHeader + "1 2\n3 4\n");
  EXPECT_NE(map.OnFileImport(file.c_str(), 1), 0);
  EXPECT_EQ(floats.W(), 2);
  EXPECT_TRUE(floats.HasNoDataValue());
  EXPECT_EQ(floats.NoDataValue(), -9999.0F);
  EXPECT_EQ(Cells(floats), (Numbers{4, 4, 4, 4}));
}

TEST_F(AsciiGrid, HeaderLineOf127CharactersIsOneWithEitherLineEnd) {
  std::string const line = "NCOLS 2" + std::string(120, ' ');
  for (char const *end : {"\n", "\r\n"}) {
    EXPECT_TRUE(Import(line + end + "NROWS 1\nX 0\nY 0\nC 1\nN -1\n1 2\n", floats));
    EXPECT_EQ(Cells(floats), (Numbers{1, 2}));
  }
}

TEST_F(AsciiGrid, HeaderLineOfMoreThan127CharactersArrivesAsTwo) {
  std::string const filler(120, 'x');
  // The second piece of the first line, "9", stands where the rows are told: it has no second word.
  Import(filler + " 2    99\nNROWS 2\n", floats);
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_TRUE(
      Import("NCOLS 2\nNROWS 1\nX " + std::string(100, '7') + "\nY 0\nC 1\nN -1\n1 2\n", floats));
  EXPECT_EQ(texts.xCorner, std::string(63, '7'));
}

TEST_F(AsciiGrid, NumbersBecomeIntegersByTruncationAndTheirLowBits) {
  EXPECT_TRUE(Import(kHeader + "1.9 -1.9\n70000 300\n", shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{1, -1, 70000 - 65536, 300}));
  EXPECT_TRUE(Import(kHeader + "1.9 -1.9\n70000 300\n", bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{1, 255, 70000 % 256, 44}));
}

TEST_F(AsciiGrid, NumbersThatNoIntHoldsKeepTheirLowBits) {
  EXPECT_TRUE(Import(kHeader + "3e9 -3000000000.9\n4294967808 9007199254740993\n", shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{24064, -24064, 512, 0}));
  EXPECT_TRUE(Import(kHeader + "3000000007 -4294967299\n2147483648 -2147483649\n", bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{7, 256 - 3, 0, 255}));
  // Beyond 64 bits: 2^63 + 2^11 and 2^65 + 2^13, which a double holds exactly.
  EXPECT_TRUE(Import(kHeader + "9223372036854777856 36893488147419111424\n1e30 -1e30\n", shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{2048, 8192, 0, 0}));
}

TEST_F(AsciiGrid, NumbersThatAreInfiniteHaveNoLowBits) {
  EXPECT_TRUE(Import(kHeader + "1e999 -1e999\n1e30 0\n", shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{0, 0, 0, 0}));
  EXPECT_TRUE(Import(kHeader + "1e999 -1e999\n1e30 1e300\n", floats));
  EXPECT_EQ(floats.At(0, 0), std::numeric_limits<float>::infinity());
  EXPECT_EQ(floats.At(0, 1), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(floats.At(1, 0), 1e30F);
  EXPECT_EQ(floats.At(1, 1), std::numeric_limits<float>::infinity());
}

TEST_F(AsciiGrid, OfNoRowsMayHaveAnyNumberOfColumns) {
  Import("NCOLS 2147483647\nNROWS 0\nX 0\nY 0\nC 1\nN -1\n", floats);
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floats.NCols(), 2147483647);
  EXPECT_EQ(Export(floats).substr(0, 25), "NCOLS 2147483647\nNROWS 0\n");
}

TEST_F(AsciiGrid, MissingFileIsToldInABoxAndLeavesTheRaster) {
  floats.Redim(1, 1, 1);
  EXPECT_FALSE(ImportAsciiGrid(directory.Path("none.asc").c_str(), texts, floats));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(floats.NRows(), 1);
}

TEST_F(AsciiGrid, FileThatCannotBeWrittenIsFalseWithoutABox) {
  EXPECT_FALSE(ExportAsciiGrid(directory.Path("no/such/a.asc").c_str(), texts, floats));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(AsciiGrid, CoarseBlockKeepsTheLastValueThatFallsIntoIt) {
  DefaultFineResolution(2);
  EXPECT_TRUE(Import(kHeader + "1 2\n3 4\n", floats));
  EXPECT_EQ(floats.W(), 2);
  EXPECT_EQ(Cells(floats), (Numbers{4, 4, 4, 4}));
}

TEST_F(AsciiGrid, FineBlocksOfTheResolutionMapGetEachTheirValue) {
  CMultiScaleByteMatrix map;
  map.Redim(2, 4, 2);
  map.FineCell(0, 2, true);
  DefaultFineResolution(2);
  DefaultResolutionMap(&map);
  EXPECT_TRUE(Import("NCOLS 4\nNROWS 2\nx 0\ny 0\nc 1\nn -1\n1 2 3 4\n5 6 7 8\n", floats));
  EXPECT_EQ(Cells(floats), (Numbers{6, 6, 3, 4, 6, 6, 7, 8}));
}

TEST_F(AsciiGrid, RandomRastersComeBackAtSixSignificantDigits) {
  constexpr unsigned kSeed = 1000;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> exponent(-8, 12);
  for (int width : {1, 2, 5}) {
    for (int round = 0; round < 20; ++round) {
      int const rows = static_cast<int>(random() % 30) + 1;
      int const cols = static_cast<int>(random() % 30) + 1;
      floats.Redim(rows, cols, width);
      for (int row = 0; row < rows; ++row)
        for (int col = 0; col < cols; ++col)
          floats.At(row, col) = static_cast<float>(std::pow(10.0, exponent(random)));
      DefaultFineResolution(width);
      CMultiScaleFloatMatrix again;
      ASSERT_TRUE(Import(Export(floats), again));
      for (int row = 0; row < rows; ++row)
        for (int col = 0; col < cols; ++col)
          ASSERT_EQ(TextOfNumber(again.At(row, col)), TextOfNumber(floats.At(row, col)));
    }
  }
}

TEST_F(AsciiGrid, RowsLongerThanTheOutputBlockAreWrittenWhole) {
  floats.Redim(2, 50000, 1);
  AssignMultiScaleFloatMatrix(floats, -1.23456e-05F);
  CMultiScaleFloatMatrix again;
  EXPECT_TRUE(Import(Export(floats), again));
  EXPECT_EQ(again.NCols(), 50000);
  EXPECT_EQ(again.At(1, 49999), -1.23456e-05F);
}

// The operations of the maps over it.

TEST_F(AsciiGrid, MapChoosesTheFormatByItsNumberAlone) {
  CFloatMatrixBaseMap map;
  map.Attach("", "", &floats, nullptr, false);
  floats.Redim(1, 1, 1);
  floats.At(0, 0) = 2.0F;
  EXPECT_NE(map.OnFileExport(directory.Path("a.bmp").c_str(), 1), 0);
  EXPECT_EQ(directory.Read("a.bmp").substr(0, 7), "NCOLS 1");
  for (int format : {-1, 2, 7}) {
    EXPECT_EQ(map.OnFileExport(directory.Path("b.asc").c_str(), format), 0);
    EXPECT_FALSE(directory.Has("b.asc"));
  }
}

TEST_F(AsciiGrid, ImportTellsTheWindowAndModifiesTheMapForEveryFormatNumber) {
  for (int format : {7, 1, 0}) {
    CByteMatrixBaseMap map;
    map.Attach("", "", &bytes, nullptr);
    application.messages.clear();
    EXPECT_EQ(map.OnFileImport(directory.Path("none.asc").c_str(), format), 0);
    EXPECT_EQ(application.messages, (std::vector<unsigned int>{32771}));
    EXPECT_EQ(map.IsModified(), 2);
  }
}

TEST_F(AsciiGrid, ImportLeavesTheLegendAlone) {
  CShortMatrixBaseMap map;
  map.Attach("", "", &shorts, nullptr);
  std::vector<std::string> const names = map.m_LegendNames;
  directory.Write("a.asc", kHeader + "1 2\n3 4\n");
  EXPECT_NE(map.OnFileImport(directory.Path("a.asc").c_str(), 1), 0);
  EXPECT_EQ(map.m_LegendNames, names);
  EXPECT_EQ(shorts.At(1, 1), 4);
}

}  // namespace
