// The worked examples of the format pages are read, and mean what the pages say.

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/quillaven.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kExamples = QUILLAVEN_SOURCE_DIR "/docs/formats/examples";
std::string const kPages = QUILLAVEN_SOURCE_DIR "/docs/formats";
constexpr int kIdrisi = 0;
constexpr int kAsciiGrid = 1;

std::string Bytes(std::string const &file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The bytes of the last example of a page: pairs of hexadecimal digits in front of a bar.
std::string BytesInPage(std::string const &page) {
  std::string const text = Bytes(kPages + "/" + page);
  std::size_t const end = text.rfind("```");
  std::size_t const begin = text.rfind("```\n", end - 1) + 4;
  std::istringstream lines(text.substr(begin, end - begin));
  std::string bytes;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream digits(line.substr(0, line.find('|')));
    for (unsigned int byte = 0; digits >> std::hex >> byte;) bytes += static_cast<char>(byte);
  }
  return bytes;
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
  EXPECT_TRUE(stands("idrisi-pair.md", "landuse.doc"));
  EXPECT_EQ(BytesInPage("idrisi-pair.md"), Bytes(kExamples + "/landuse.img"));
  EXPECT_EQ(BytesInPage("map-file.md"), Bytes(kExamples + "/ones.qmp"));
  EXPECT_EQ(BytesInPage("palette.md") + std::string(759, '\0'),
            Bytes(kExamples + "/Palettes/Primary.smp"));
}

TEST_F(FormatExamples, MapFileIsReadAndWrittenBackByteForByte) {
  std::string const file = kExamples + "/ones.qmp";
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  CFile source(file.c_str(), CFile::modeRead);
  CArchive loading(&source, CArchive::load);
  map.Serialize(loading);
  ASSERT_EQ(raster.NRows(), 2);
  ASSERT_EQ(raster.NCols(), 2);
  for (int cell = 0; cell < 4; ++cell) EXPECT_EQ(raster.At(cell / 2, cell % 2), 1.0F);
  ASSERT_EQ(map.GetLegendItemCount(), 1);
  EXPECT_EQ(map.GetLegendItemName(0), "a");
  EXPECT_EQ(map.GetLegendItemColor(0), 255UL);

  TemporaryDirectory directory;
  CFile target(directory.Path("again.qmp").c_str(), CFile::modeCreate | CFile::modeWrite);
  CArchive storing(&target, CArchive::store);
  map.Serialize(storing);
  storing.Close();
  target.Close();
  EXPECT_EQ(directory.Read("again.qmp").size(), 38U);
  EXPECT_EQ(directory.Read("again.qmp"), Bytes(file));
}

TEST_F(FormatExamples, IdrisiPairIsReadAndItsImageWrittenBackByteForByte) {
  CMultiScaleByteMatrix raster;
  CByteMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr);
  ASSERT_NE(map.OnFileImport((kExamples + "/landuse.img").c_str(), kIdrisi), 0);
  ASSERT_EQ(raster.NRows(), 2);
  ASSERT_EQ(raster.NCols(), 3);
  EXPECT_EQ(raster.At(0, 2), 2);
  EXPECT_EQ(map.GetCellString(1, 1), "NODATA");

  TemporaryDirectory directory;
  ASSERT_NE(map.OnFileExport(directory.Path("again.img").c_str(), kIdrisi), 0);
  EXPECT_EQ(directory.Read("again.img"), Bytes(kExamples + "/landuse.img"));
  CIdrisiImageHeader header;
  ASSERT_TRUE(header.ReadFile(directory.Path("again.doc").c_str()));
  EXPECT_EQ(header.MinValue(), 1.0);
  EXPECT_EQ(header.MaxValue(), 2.0);
  EXPECT_STREQ(header.FlagValue(), "255");
  EXPECT_STREQ(header.FlagDefinition(), "NODATA");
}

TEST_F(FormatExamples, IdrisiDocumentationIsWrittenBackWithABlankMoreInFrontOfACategory) {
  CIdrisiImageHeader header;
  ASSERT_TRUE(header.ReadFile((kExamples + "/landuse.doc").c_str()));
  EXPECT_EQ(header.CategoryIndex(" water"), 0);
  EXPECT_EQ(header.CategoryIndex(" land"), 1);
  EXPECT_EQ(header.MaxX(), 300.0);
  EXPECT_STREQ(header.Resolution(), "100");

  TemporaryDirectory directory;
  ASSERT_TRUE(header.WriteFile(directory.Path("again.doc").c_str()));
  std::string expected = Bytes(kExamples + "/landuse.doc");
  for (char const *name : {"water", "land\n"}) expected.insert(expected.rfind(name), " ");
  EXPECT_EQ(directory.ReadText("again.doc"), expected);
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
  EXPECT_EQ(directory.ReadText("again.asc"), Bytes(kExamples + "/small.asc"));
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
