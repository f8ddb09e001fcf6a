// The worked examples of the format pages are read, and mean what the pages say.

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/quillaven.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kExamples = QUILLAVEN_SOURCE_DIR "/docs/formats/examples";
std::string const kPages = QUILLAVEN_SOURCE_DIR "/docs/formats";
constexpr int kAsciiGrid = 1;

std::string Bytes(std::string const &file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class FormatExamples : public testing::Test {
 protected:
  FormatExamples() { application.helpFilePath = kExamples + "/help.hlp"; }
  ~FormatExamples() override { EXPECT_TRUE(application.boxes.empty()); }

  RecordingApplication application;
};

TEST_F(FormatExamples, StandInTheirPagesAsTheyAre) {
  auto stands = [](std::string const &page, std::string const &example) {
    std::string const fenced = "```\n" + Bytes(kExamples + "/" + example) + "```\n";
    return fenced.size() > 20 && Bytes(kPages + "/" + page).find(fenced) != std::string::npos;
  };
  EXPECT_TRUE(stands("ascii-grid.md", "small.asc"));
  EXPECT_TRUE(stands("legend.md", "Legends/Intervals.txt"));
  EXPECT_TRUE(stands("legend.md", "Legends/Version1.txt"));
}

TEST_F(FormatExamples, GridIsReadAndWrittenBackByteForByte) {
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  ASSERT_NE(map.OnFileImport((kExamples + "/small.asc").c_str(), kAsciiGrid), 0);
  ASSERT_EQ(raster.NRows(), 2);
  ASSERT_EQ(raster.NCols(), 3);
  EXPECT_EQ(raster.At(0, 1), 2.5F);
  EXPECT_EQ(map.GetCellString(0, 2), "NODATA");
  EXPECT_EQ(raster.At(1, 1), 1e6F);

  TemporaryDirectory directory;
  ASSERT_NE(map.OnFileExport(directory.Path("again.asc").c_str(), kAsciiGrid), 0);
  EXPECT_EQ(directory.Read("again.asc"), Bytes(kExamples + "/small.asc"));
}

TEST_F(FormatExamples, BothLegendVersionsGiveTheSameClasses) {
  for (char const *file : {"Intervals.txt", "Version1.txt"}) {
    SCOPED_TRACE(file);
    CMultiScaleFloatMatrix raster;
    raster.Redim(1, 1, 1);
    CFloatMatrixBaseMap map;
    map.Attach("", "", &raster, file, false);
    ASSERT_EQ(map.GetLegendItemCount(), 2);
    EXPECT_EQ(map.GetLegendItemName(0), "low");
    EXPECT_EQ(map.GetLegendItemName(1), "high");
    EXPECT_EQ(map.GetLegendItemColor(0), 0x0000FFUL);
    EXPECT_EQ(map.GetLegendItemColor(1), 0x00FF00UL);
    raster.At(0, 0) = 1.5F;
    EXPECT_EQ(map.GetCellLegendIndex(0, 0), 1);
  }
}

TEST_F(FormatExamples, PaletteIsReadAndWrittenBackByteForByte) {
  std::string const file = kExamples + "/Palettes/Primary.smp";
  std::vector<unsigned long> palette;
  ASSERT_TRUE(ReadIdrisiPalette(file.c_str(), palette));
  EXPECT_EQ(palette, (std::vector<unsigned long>{0x0000FF, 0x00FF00, 0xFF0000}));

  TemporaryDirectory directory;
  ASSERT_TRUE(WriteIdrisiPalette(directory.Path("again.smp").c_str(), palette));
  EXPECT_EQ(directory.Read("again.smp"), Bytes(file));
}

}  // namespace
