// The land use of a real country through the whole library: read, classified, edited, drawn and
// written back.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/quillaven.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kData = QUILLAVEN_SOURCE_DIR "/data";
constexpr int kAsciiGrid = 1;
constexpr int kRows = 992;
constexpr int kCols = 500;

// Cells of each class as the maker of the grid counted them, and those without data.
constexpr std::array<int, 13> kCellsOfClass{187264, 13358, 1956, 105, 600,  380, 169,
                                            88,     49304, 272,  94,  2448, 564};
constexpr int kNoDataCells = 239398;

class Country : public testing::Test {
 protected:
  Country() {
    application.helpFilePath = kData + "/quillaven.hlp";
    map.Attach("Landuse", "Land use", &raster, "Landuse.txt", false);
    EXPECT_NE(map.OnFileImport((kData + "/liechtenstein/landuse.asc").c_str(), kAsciiGrid), 0);
    map.GetCellColor(0, 0);
  }
  ~Country() override { EXPECT_TRUE(application.boxes.empty()); }

  RecordingApplication application;
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
};

TEST_F(Country, HasTheCellsOfEachClassThatItsMakerCounted) {
  ASSERT_EQ(raster.NRows(), kRows);
  ASSERT_EQ(raster.NCols(), kCols);
  std::array<int, 13> counted{};
  int noData = 0;
  for (int row = 0; row < kRows; ++row) {
    for (int col = 0; col < kCols; ++col) {
      int const item = map.GetCellLegendIndex(row, col);
      if (item < 0) {
        ++noData;
      } else {
        ++counted.at(static_cast<std::size_t>(item));
      }
    }
  }
  EXPECT_EQ(counted, kCellsOfClass);
  EXPECT_EQ(noData, kNoDataCells);
}

TEST_F(Country, IsWrittenBackWithTheSameCells) {
  TemporaryDirectory directory;
  std::string const file = directory.Path("again.asc");
  ASSERT_NE(map.OnFileExport(file.c_str(), kAsciiGrid), 0);

  CMultiScaleFloatMatrix again;
  CFloatMatrixBaseMap other;
  other.Attach("Landuse", "Land use", &again, "Landuse.txt", false);
  ASSERT_NE(other.OnFileImport(file.c_str(), kAsciiGrid), 0);
  int different = 0;
  for (int row = 0; row < kRows; ++row)
    for (int col = 0; col < kCols; ++col) different += again.At(row, col) != raster.At(row, col);
  EXPECT_EQ(different, 0);
}

TEST_F(Country, IsDrawnWithTheColoursOfItsLegend) {
  TemporaryDirectory directory;
  CRect whole;
  whole.right = kCols - 1;
  whole.bottom = kRows - 1;
  ASSERT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, whole, ""), 1);

  std::string const bitmap = directory.Read("a.bmp");
  ASSERT_EQ(bitmap.size(), 1078U + kRows * kCols);
  auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(bitmap.at(at)); };
  int wrong = 0;
  for (int row = 0; row < kRows; ++row) {
    for (int col = 0; col < kCols; ++col) {
      std::size_t const pixel =
          1078U + static_cast<std::size_t>(kRows - 1 - row) * kCols + static_cast<std::size_t>(col);
      std::size_t const entry = 54U + 4U * byteAt(pixel);
      unsigned long const color = byteAt(entry + 2) |
                                  static_cast<unsigned long>(byteAt(entry + 1)) << 8 |
                                  static_cast<unsigned long>(byteAt(entry)) << 16;
      wrong += color != map.GetCellColor(row, col);
    }
  }
  EXPECT_EQ(wrong, 0);
}

TEST_F(Country, KeepsEverySettlementAtTwoScales) {
  constexpr int kBlock = 8;
  CMultiScaleByteMatrix pattern;
  pattern.Redim(kRows, kCols, kBlock);
  auto isSettlement = [](float value) { return value >= 1 && value <= 3; };
  for (int row = 0; row < kRows; ++row)
    for (int col = 0; col < kCols; ++col)
      if (isSettlement(raster.At(row, col))) pattern.FineCell(row, col, true);

  DefaultFineResolution(kBlock);
  DefaultResolutionMap(&pattern);
  CMultiScaleFloatMatrix twoScales;
  CFloatMatrixBaseMap other;
  other.Attach("Landuse", "Land use", &twoScales, "Landuse.txt", false);
  int const read = other.OnFileImport((kData + "/liechtenstein/landuse.asc").c_str(), kAsciiGrid);
  DefaultResolutionMap(nullptr);
  DefaultFineResolution(1);
  ASSERT_NE(read, 0);

  int wrong = 0;
  for (int row = 0; row < kRows; ++row) {
    for (int col = 0; col < kCols; ++col) {
      ASSERT_EQ(twoScales.FineCell(row, col), pattern.FineCell(row, col));
      // A fine block has each cell; a coarse one has the cell of its last corner inside the raster.
      bool const fine = pattern.FineCell(row, col);
      int const lastRow = std::min(row / kBlock * kBlock + kBlock, kRows) - 1;
      int const lastCol = std::min(col / kBlock * kBlock + kBlock, kCols) - 1;
      float const expected = fine ? raster.At(row, col) : raster.At(lastRow, lastCol);
      wrong += twoScales.At(row, col) != expected;
    }
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
