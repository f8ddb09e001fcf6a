#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/bitmap.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/stamp_font.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/recording_application.h"
#include "tests/support/system_error.h"
#include "tests/support/temporary_directory.h"

namespace {

// An application whose stamps are what a test says.
class Stamper : public RecordingApplication {
 public:
  CStampImage MakeStamp(char const *text) override {
    texts.emplace_back(text);
    if (toThrow) throw 42;
    return stamp;
  }
  CStampImage stamp;
  bool toThrow = false;
  std::vector<std::string> texts;
};

// A bitmap file as a picture.
struct Picture {
  std::string bytes;

  unsigned Number(std::size_t at, int width) const {
    unsigned number = 0;
    for (int i = width - 1; i >= 0; --i)
      number = number << 8 | Byte(at + static_cast<std::size_t>(i));
    return number;
  }
  unsigned Byte(std::size_t at) const { return static_cast<unsigned char>(bytes.at(at)); }
  int Width() const { return static_cast<int>(Number(18, 4)); }
  int Height() const { return static_cast<int>(Number(22, 4)); }
  // The index of a pixel, y counted from the top.
  unsigned Index(int x, int y) const {
    int const rowBytes = (Width() + 3) / 4 * 4;
    return Byte(1078U + static_cast<std::size_t>((Height() - 1 - y) * rowBytes + x));
  }
  // A palette entry as a colour 0x00BBGGRR.
  unsigned long Color(std::size_t index) const {
    return Byte(54 + 4 * index + 2) | Byte(54 + 4 * index + 1) << 8 | Byte(54 + 4 * index) << 16;
  }
};

class Bitmap : public testing::Test {
 protected:
  Bitmap() {
    application.helpFilePath = directory.Path("model.hlp");
    directory.Write("Legends/five.txt",
                    "Version 2\nNClasses 5\nPalette\n1 2 3\n4 5 6\n7 8 9\n10 11 12\n13 14 15\n"
                    "StateOrderColor 0\nLegendType 0\na\nb\nc\nd\ne\n");
    legend.ReadFile("five.txt");
  }
  ~Bitmap() override { DefaultFineResolution(1); }

  Picture Write(CMultiScaleFloatMatrix &raster, long row0, long col0, long rows, long cols,
                long zoom) {
    EXPECT_TRUE(WriteBitmap(directory.Path("a.bmp").c_str(), raster, row0, col0, rows, cols, zoom,
                            "text", legend));
    return {directory.Read("a.bmp")};
  }
  // A raster of rows by cols cells; the cell (r, c) is of class (r + c) mod 5.
  static CMultiScaleFloatMatrix Cells(int rows, int cols) {
    CMultiScaleFloatMatrix raster;
    raster.Redim(rows, cols, 1);
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c) raster.At(r, c) = static_cast<float>((r + c) % 5);
    return raster;
  }

  TemporaryDirectory directory;
  Stamper application;
  CBitmapLegend legend{true, -9999.0F, 0xFFFFFF};
};

TEST_F(Bitmap, HasItsHeadersByteForByte) {
  CMultiScaleFloatMatrix raster = Cells(3, 5);
  Picture const picture = Write(raster, 0, 0, 3, 5, 2);
  EXPECT_EQ(picture.bytes.size(), 1150U);
  unsigned char const expected[54] = {'B', 'M', 0x7E, 0x04, 0,  0, 0,  0, 0, 0, 0x36, 0x04, 0, 0,
                                      40,  0,   0,    0,    10, 0, 0,  0, 6, 0, 0,    0,    1, 0,
                                      8,   0,   0,    0,    0,  0, 72, 0, 0, 0, 0,    0,    0, 0,
                                      0,   0,   0,    0,    0,  1, 0,  0, 0, 0, 0,    0};
  EXPECT_EQ(picture.bytes.substr(0, 54),
            std::string(reinterpret_cast<char const *>(expected), sizeof expected));
}

TEST_F(Bitmap, OfASmallRasterIsExactlyTheseBytes) {
  CMultiScaleFloatMatrix raster = Cells(2, 3);
  Picture const picture = Write(raster, 0, 0, 2, 3, 1);
  // Bottom row first, each padded with 0 to four bytes.
  EXPECT_EQ(picture.bytes.substr(1078), std::string("\1\2\3\0\0\1\2\0", 8));
  // Blue, green, red, 0: five classes, no data, white, and black to the end.
  std::string const palette(
      "\3\2\1\0\6\5\4\0\x9\x8\7\0\xC\xB\xA\0\xF\xE\xD\0\xFF\xFF\xFF\0\xFF\xFF\xFF\0", 28);
  EXPECT_EQ(picture.bytes.substr(54, 28), palette);
  EXPECT_EQ(picture.bytes.substr(54 + 28, 1024 - 28), std::string(1024 - 28, '\0'));
}

TEST_F(Bitmap, NoDataCellHasTheIndexBehindTheClassesAndTheStampTheTwoBehindThat) {
  CBitmapLegend eleven(true, -9999.0F, 0xFFFFFF);
  eleven.ReadFile(nullptr);
  CMultiScaleFloatMatrix raster = Cells(4, 4);
  raster.At(3, 3) = -9999.0F;
  application.stamp = {2, 1, {0, 1}};
  EXPECT_TRUE(WriteBitmap(directory.Path("b.bmp").c_str(), raster, 0, 0, 4, 4, 1, "x", eleven));
  Picture const picture{directory.Read("b.bmp")};
  EXPECT_EQ(picture.Index(3, 3), 11U);
  EXPECT_EQ(picture.Color(11), 0xFFFFFFUL);
  EXPECT_EQ(picture.Index(0, 0), 12U);
  EXPECT_EQ(picture.Color(12), 0xFFFFFFUL);
  EXPECT_EQ(picture.Index(1, 0), 13U);
  EXPECT_EQ(picture.Color(13), 0UL);
}

TEST_F(Bitmap, EmptyStampChangesNoPixel) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  application.stamp = {0, 10, {}};
  Picture const picture = Write(raster, 0, 0, 3, 3, 1);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 3; ++x) EXPECT_EQ(picture.Index(x, y), static_cast<unsigned>((x + y) % 5));
}

TEST_F(Bitmap, StampThatIsTooLargeIsCutAtTheRightAndBottom) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  application.stamp = {50, 40, std::vector<unsigned char>(2000, 1)};
  Picture const picture = Write(raster, 0, 0, 3, 3, 1);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 3; ++x) EXPECT_EQ(picture.Index(x, y), 7U);
}

TEST_F(Bitmap, StampWithFewerPixelsThanItSaysOrNegativeSizesIsSafe) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  application.stamp = {2, 1000, {1, 1, 1}};
  EXPECT_EQ(Write(raster, 0, 0, 3, 3, 1).Index(0, 1), 1U);
  application.stamp = {-5, -5, {1}};
  EXPECT_EQ(Write(raster, 0, 0, 3, 3, 1).Index(0, 0), 0U);
}

TEST_F(Bitmap, SecondFormIsStampedWithItsNumber) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  EXPECT_TRUE(WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, 3, 3, 1, 1990L, legend));
  EXPECT_EQ(application.texts, (std::vector<std::string>{"1990"}));
}

TEST_F(Bitmap, BuiltInFontStandsInTheCorner) {
  application.stamp = DrawWithBuiltInFont("1");
  CMultiScaleFloatMatrix raster = Cells(20, 40);
  EXPECT_TRUE(WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, 20, 40, 1, "1", legend));
  Picture const picture{directory.Read("a.bmp")};
  EXPECT_EQ(picture.Index(0, 0), 6U);
  EXPECT_EQ(picture.Index(3, 1), 7U);  // the tip of the digit
  EXPECT_EQ(picture.Index(7, 0), 2U);  // beside the stamp
}

TEST_F(Bitmap, FileThatCannotBeCreatedIsToldInABoxAndIsFalse) {
  CMultiScaleFloatMatrix raster = Cells(1, 1);
  EXPECT_FALSE(
      WriteBitmap(directory.Path("no/such/a.bmp").c_str(), raster, 0, 0, 1, 1, 1, "x", legend));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Save bitmap");
  EXPECT_EQ(application.boxes[0].text, TextOfSystemError(kMissingDirectoryError));
}

TEST_F(Bitmap, DiskThatIsFullIsToldInABoxAndIsFalse) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full here";
  CMultiScaleFloatMatrix raster = Cells(1, 1);
  EXPECT_FALSE(WriteBitmap("/dev/full", raster, 0, 0, 1, 1, 1, "x", legend));
  EXPECT_EQ(application.boxes.at(0).text, TextOfSystemError(kDiskFullError));
}

TEST_F(Bitmap, AnythingElseThatIsThrownIsAnUnknownException) {
  CMultiScaleFloatMatrix raster = Cells(1, 1);
  application.toThrow = true;
  EXPECT_FALSE(WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, 1, 1, 1, "x", legend));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Save bitmap");
  EXPECT_EQ(application.boxes[0].text, "unknown exception");
}

TEST_F(Bitmap, PictureThatIsTooLargeForTheFormatIsAnUnknownException) {
  CMultiScaleFloatMatrix raster = Cells(1, 1);
  constexpr long kHuge = std::numeric_limits<int>::max();
  EXPECT_FALSE(
      WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, kHuge, kHuge, 64, "x", legend));
  EXPECT_FALSE(WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, 1, 1,
                           std::numeric_limits<long>::max(), "x", legend));
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].text, "unknown exception");
}

TEST_F(Bitmap, OfNothingIsAFileWithoutPixels) {
  CMultiScaleFloatMatrix raster = Cells(2, 2);
  for (long bad : {0L, -5L}) {
    EXPECT_EQ(Write(raster, 0, 0, bad, 2, 1).bytes.size(), 1078U);
    EXPECT_EQ(Write(raster, 0, 0, 2, bad, 1).bytes.size(), 1078U);
    EXPECT_EQ(Write(raster, 0, 0, 2, 2, bad).bytes.size(), 1078U);
  }
}

TEST_F(Bitmap, CellsThatTheRasterDoesNotHaveAreWhite) {
  CMultiScaleFloatMatrix raster = Cells(2, 2);
  Picture const picture = Write(raster, -1, -1, 4, 4, 1);
  std::vector<std::vector<unsigned>> const expected{
      {6, 6, 6, 6}, {6, 0, 1, 6}, {6, 1, 2, 6}, {6, 6, 6, 6}};
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(picture.Index(x, y),
                expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
  EXPECT_EQ(Write(raster, 1000000, -1000000, 2, 2, 1).Index(0, 0), 6U);
  constexpr long kFar = std::numeric_limits<long>::max();
  EXPECT_EQ(Write(raster, kFar, -kFar, 2, 2, 1).Index(1, 1), 6U);
}

TEST_F(Bitmap, ColoursBeyondThePlaceInThePaletteAreShownAsTheLast) {
  std::string file = "Version 2\nNClasses 300\nPalette\n";
  for (int i = 0; i < 300; ++i) file += std::to_string(i % 256) + " 0 0\n";
  directory.Write("Legends/many.txt", file + "StateOrderColor 0\nLegendType 0\n");
  legend.ReadFile("many.txt");
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 3, 1);
  raster.At(0, 0) = 253;
  raster.At(0, 1) = 255;
  raster.At(0, 2) = -9999;
  application.stamp = {1, 1, {1}};
  Picture const picture = Write(raster, 0, 0, 1, 3, 1);
  EXPECT_EQ(picture.Index(0, 0), 255U);  // the stamp's black
  EXPECT_EQ(picture.Index(1, 0), 253U);
  EXPECT_EQ(picture.Color(253), 253UL);
  EXPECT_EQ(picture.Color(254), 0xFFFFFFUL);
}

TEST_F(Bitmap, AgreesWithANaivePainterOnRandomRasters) {
  constexpr unsigned kSeed = 53;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  auto const below = [&random](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  for (int round = 0; round < 100; ++round) {
    int const rows = below(12) + 1;
    int const cols = below(12) + 1;
    int const zoom = below(4) + 1;
    CMultiScaleFloatMatrix raster;
    raster.Redim(rows, cols, below(4) + 1);
    raster.FineCell(0, 0, true);
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c)
        raster.At(r, c) = below(7) == 0 ? -9999.0F : static_cast<float>(below(8) - 1);
    int const row0 = below(rows);
    int const col0 = below(cols);
    Picture const picture = Write(raster, row0, col0, rows - row0, cols - col0, zoom);
    ASSERT_EQ(picture.Width(), (cols - col0) * zoom);
    ASSERT_EQ(picture.Height(), (rows - row0) * zoom);
    for (int y = 0; y < picture.Height(); ++y)
      for (int x = 0; x < picture.Width(); ++x)
        ASSERT_EQ(picture.Index(x, y),
                  legend.GetColorIndexOfValue(raster.At(row0 + y / zoom, col0 + x / zoom)))
            << round;
  }
}

// The operation of the maps over it.

CRect Rectangle(int left, int top, int right, int bottom) {
  CRect rectangle;
  rectangle.left = left;
  rectangle.top = top;
  rectangle.right = right;
  rectangle.bottom = bottom;
  return rectangle;
}

TEST_F(Bitmap, OfAMapIsDrawnThroughTheLegendOfItsBaseName) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  raster.SetNoDataValue(true, 2.0F);
  CFloatMatrixBaseMap map;
  map.Attach("five", "title", &raster, nullptr, false);
  EXPECT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 2, 2), "t"), 1);
  Picture const picture{directory.Read("a.bmp")};
  EXPECT_EQ(picture.Color(0), 0x030201UL);
  EXPECT_EQ(picture.Index(1, 1), 5U);
  EXPECT_EQ(picture.Color(5), 0xFFFFFFUL);
  EXPECT_EQ(application.texts.back(), "t");
}

TEST_F(Bitmap, OfAMapWithoutThatLegendIsDrawnWithTheDefaultAfterABox) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  CFloatMatrixBaseMap map;
  map.Attach("other", "title", &raster, nullptr, false);
  EXPECT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 2, 2), "t"), 1);
  EXPECT_EQ(application.boxes.size(), 1U);
  EXPECT_TRUE(directory.Has("Legends/other.txt"));
}

TEST_F(Bitmap, RectangleOfAMapIsClippedToItsSizeWithoutRegardToItsStart) {
  CMultiScaleFloatMatrix raster = Cells(4, 6);
  CFloatMatrixBaseMap map;
  map.Attach("five", "title", &raster, nullptr, false);
  std::string const file = directory.Path("a.bmp");
  auto const drawn = [&](CRect rectangle) {
    EXPECT_EQ(map.WriteBitmap(file.c_str(), 1, rectangle, ""), 1);
    return Picture{directory.Read("a.bmp")};
  };
  Picture const inner = drawn(Rectangle(1, 2, 3, 3));
  EXPECT_EQ(inner.Width(), 3);
  EXPECT_EQ(inner.Height(), 2);
  EXPECT_EQ(inner.Index(0, 0), 3U);
  Picture const around = drawn(Rectangle(-5, -5, 100, 100));
  EXPECT_EQ(around.Width(), 6);
  EXPECT_EQ(around.Height(), 4);
  EXPECT_EQ(around.Index(5, 3), 3U);
  // One that starts inside and reaches beyond the end is not shortened; what is not there is white.
  Picture const beyond = drawn(Rectangle(4, 0, 100, 0));
  EXPECT_EQ(beyond.Width(), 6);
  EXPECT_EQ(beyond.Index(1, 0), 0U);
  EXPECT_EQ(beyond.Index(2, 0), 5U);
}

TEST_F(Bitmap, ShortAndByteMapsAreDrawnAsFloats) {
  CMultiScaleShortMatrix shorts;
  shorts.Redim(2, 2, 1);
  shorts.SetNoDataValue(true, -7.0F);
  shorts.At(0, 0) = 4;
  shorts.At(0, 1) = -7;
  shorts.At(1, 0) = 1;
  shorts.At(1, 1) = 2;
  CShortMatrixBaseMap map;
  map.Attach("five", "title", &shorts, nullptr);
  EXPECT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 1, 1), ""), 1);
  EXPECT_EQ(directory.Read("a.bmp").substr(1078), std::string("\1\2\0\0\4\5\0\0", 8));

  // With a default resolution the floats have blocks, each with the last value written into it.
  DefaultFineResolution(2);
  EXPECT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 1, 1), ""), 1);
  EXPECT_EQ(directory.Read("a.bmp").substr(1078), std::string("\2\2\0\0\2\2\0\0", 8));

  CMultiScaleByteMatrix bytes;
  bytes.Redim(1, 1, 1);
  bytes.At(0, 0) = 3;
  CByteMatrixBaseMap byteMap;
  byteMap.Attach("five", "title", &bytes, nullptr);
  EXPECT_EQ(byteMap.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 0, 0), ""), 1);
  EXPECT_EQ(directory.Read("a.bmp").substr(1078), std::string("\3\0\0\0", 4));
}

TEST_F(Bitmap, OfAMapWhoseRasterHasShrunkIsSafe) {
  CMultiScaleByteMatrix bytes;
  bytes.Redim(5, 5, 1);
  CByteMatrixBaseMap map;
  map.Attach("five", "title", &bytes, nullptr);
  bytes.Redim(2, 2, 1);
  AssignMultiScaleByteMatrix(bytes, 1);
  EXPECT_EQ(map.WriteBitmap(directory.Path("a.bmp").c_str(), 1, Rectangle(0, 0, 4, 4), ""), 1);
}

TEST_F(Bitmap, OfAMapThatCannotBeWrittenIsZero) {
  CMultiScaleFloatMatrix raster = Cells(3, 3);
  CFloatMatrixBaseMap map;
  map.Attach("five", "title", &raster, nullptr, false);
  EXPECT_EQ(map.WriteBitmap(directory.Path("no/a.bmp").c_str(), 1, Rectangle(0, 0, 2, 2), ""), 0);
  EXPECT_EQ(application.boxes.at(0).title, "Save bitmap");
}

}  // namespace
