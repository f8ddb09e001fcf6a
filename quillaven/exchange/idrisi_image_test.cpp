#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/memory_file.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr int kIdrisi = 0;

class IdrisiPair : public testing::Test {
 protected:
  ~IdrisiPair() override {
    DefaultFineResolution(1);
    DefaultResolutionMap(nullptr);
  }

  std::string In(std::string const &name) { return directory.Path(name); }
  // A pair a.doc and a.img of that data type.
  void WritePair(std::string const &dataType, int rows, int cols, std::string const &cells,
                 std::string const &flag = "none") {
    CIdrisiImageHeader header;
    header.DataType(dataType.c_str());
    header.Rows(rows);
    header.Columns(cols);
    header.FlagValue(flag.c_str());
    ASSERT_TRUE(header.WriteFile(In("a.doc").c_str()));
    directory.Write("a.img", cells);
  }
  template <class T>
  bool Import(CMultiScaleMatrix<T> &raster) {
    return ImportIdrisi(In("a.img").c_str(), raster);
  }
  template <class T>
  static std::vector<double> Cells(CMultiScaleMatrix<T> const &raster) {
    std::vector<double> cells;
    for (int row = 0; row < raster.NRows(); ++row)
      for (int col = 0; col < raster.NCols(); ++col)
        cells.push_back(static_cast<double>(raster.At(row, col)));
    return cells;
  }
  template <class T>
  std::string Image(char const *dataType, CMultiScaleMatrix<T> const &raster) {
    EXPECT_TRUE(ExportIdrisi(In("b.img").c_str(), dataType, raster));
    return directory.Read("b.img");
  }
  template <class T>
  static CMultiScaleMatrix<T> Row(std::vector<T> const &values) {
    CMultiScaleMatrix<T> raster;
    raster.Redim(1, static_cast<int>(values.size()), 1);
    for (std::size_t i = 0; i < values.size(); ++i) raster.At(0, static_cast<int>(i)) = values[i];
    return raster;
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  CMultiScaleFloatMatrix floats;
  CMultiScaleShortMatrix shorts;
  CMultiScaleByteMatrix bytes;
};

using Numbers = std::vector<double>;

TEST_F(IdrisiPair, OfAByteMapIsExactlyTheseBytes) {
  bytes.Redim(2, 2, 1);
  for (int i = 0; i < 4; ++i) bytes.At(i / 2, i % 2) = static_cast<unsigned char>(i + 1);
  CByteMatrixBaseMap map;
  map.Attach("", "", &bytes, nullptr);
  EXPECT_NE(map.OnFileExport(In("a.img").c_str(), kIdrisi), 0);
  EXPECT_EQ(directory.Read("a.img"), "\1\2\3\4");
  EXPECT_EQ(directory.ReadText("a.doc"),
            "file title  : \ndata type   : byte\nfile type   : binary\ncolumns     : 2\n"
            "rows        : 2\nref. system : plane\nref. units  : m\nunit dist.  : 1\n"
            "min. X      : 0\nmax. X      : 1\nmin. Y      : 0\nmax. Y      : 1\n"
            "pos'n error : unknown\nresolution  : unknown\nmin. value  : 1\nmax. value  : 4\n"
            "value units : unspecified\nvalue error : unknown\nflag value  : none\n"
            "flag def'n  : none\nlegend cats : 0\n");
}

TEST_F(IdrisiPair, IsNamedByTheFileWithoutItsLastExtension) {
  bytes.Redim(1, 1, 1);
  AssignMultiScaleByteMatrix(bytes, 1);
  for (auto const &[name, base] :
       {std::pair{"a.x.img", "a.x"}, {"b", "b"}, {"c.", "c"}, {"dir.d/e", "dir.d/e"}}) {
    directory.Write("dir.d/there", "");
    EXPECT_TRUE(ExportIdrisi(In(name).c_str(), "byte", bytes)) << name;
    EXPECT_TRUE(directory.Has(std::string(base) + ".doc")) << name;
    EXPECT_TRUE(directory.Has(std::string(base) + ".img")) << name;
  }
}

TEST_F(IdrisiPair, HasTheDataTypeOfTheMap) {
  auto const typeOf = [this](CBaseMap &map) {
    EXPECT_NE(map.OnFileExport(In("a").c_str(), kIdrisi), 0);
    CIdrisiImageHeader header;
    EXPECT_TRUE(header.ReadFile(In("a.doc").c_str()));
    return std::string(header.DataType());
  };
  floats = Row<float>({1.9F, -1.9F, 300.5F});
  shorts = Row<short>({1});
  CFloatMatrixBaseMap floatMap;
  floatMap.Attach("", "", &floats, nullptr, false);
  EXPECT_EQ(typeOf(floatMap), "real");
  floatMap.Attach("", "", &floats, nullptr, true);
  EXPECT_EQ(typeOf(floatMap), "byte");
  EXPECT_EQ(directory.Read("a.img"), "\x01\xFF\x2C");
  CShortMatrixBaseMap shortMap;
  shortMap.Attach("", "", &shorts, nullptr);
  EXPECT_EQ(typeOf(shortMap), "integer");
}

TEST_F(IdrisiPair, ConvertsEveryElementTypeToEveryDataType) {
  CMultiScaleFloatMatrix const floatRow = Row<float>({1.5F, -1.5F, 70000.0F});
  CMultiScaleShortMatrix const shortRow = Row<short>({300, -2});
  CMultiScaleByteMatrix const byteRow = Row<unsigned char>({7, 200});
  EXPECT_EQ(Image("real", floatRow),
            std::string("\x00\x00\xC0\x3F\x00\x00\xC0\xBF\x00\xB8\x88\x47", 12));
  EXPECT_EQ(Image("integer", floatRow), std::string("\x01\x00\xFF\xFF\x70\x11", 6));
  EXPECT_EQ(Image("byte", floatRow), std::string("\x01\xFF\x70", 3));
  EXPECT_EQ(Image("real", shortRow), std::string("\x00\x00\x96\x43\x00\x00\x00\xC0", 8));
  EXPECT_EQ(Image("integer", shortRow), std::string("\x2C\x01\xFE\xFF", 4));
  EXPECT_EQ(Image("byte", shortRow), std::string("\x2C\xFE", 2));
  EXPECT_EQ(Image("real", byteRow), std::string("\x00\x00\xE0\x40\x00\x00\x48\x43", 8));
  EXPECT_EQ(Image("integer", byteRow), std::string("\x07\x00\xC8\x00", 4));
  EXPECT_EQ(Image("byte", byteRow), std::string("\x07\xC8", 2));
}

TEST_F(IdrisiPair, ConvertsEveryDataTypeToEveryElementType) {
  std::string const real("\x33\x33\xF3\x3F\x33\x33\xF3\xBF\x00\xB8\x88\x47", 12);
  WritePair("real", 1, 3, real);
  EXPECT_TRUE(Import(floats));
  EXPECT_EQ(Cells(floats), (Numbers{static_cast<double>(1.9F), static_cast<double>(-1.9F), 70000}));
  EXPECT_TRUE(Import(shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{1, -1, 70000 - 65536}));
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{1, 255, 0x70}));
  WritePair("INTEGER", 1, 2, std::string("\x2C\x01\xFE\xFF", 4));
  EXPECT_TRUE(Import(floats));
  EXPECT_EQ(Cells(floats), (Numbers{300, -2}));
  EXPECT_TRUE(Import(shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{300, -2}));
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{44, 254}));
  WritePair("Byte", 1, 2, "\x07\xC8");
  EXPECT_TRUE(Import(floats));
  EXPECT_EQ(Cells(floats), (Numbers{7, 200}));
  EXPECT_TRUE(Import(shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{7, 200}));
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{7, 200}));
}

// Numbers beyond 32 bits have low bits like all others; what is no number or infinite has none.
TEST_F(IdrisiPair, NumbersBeyondAnIntKeepTheirLowBitsWhenTheyBecomeIntegers) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  CMultiScaleFloatMatrix const row =
      Row<float>({3e9F, -3e9F, 4294967808.0F, 2147483648.0F, -2147483648.0F, 274877939712.0F, 1e30F,
                  -1e30F, kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN()});
  // 3000000000 is B2D05E00, 4294967808 is 1 00000200, 274877939712 is 40 00008000 in hexadecimal.
  EXPECT_EQ(Image("integer", row), Bytes(0x00, 0x5E, 0x00, 0xA2, 0x00, 0x02, 0, 0, 0, 0, 0x00, 0x80,
                                         0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(Image("byte", row), std::string(11, '\0'));
  EXPECT_EQ(Image("byte", Row<float>({16777217.0F * 2, 8388611.0F, -8388611.0F})),
            Bytes(0, 3, 0xFD));

  std::string const reals = Image("real", row);
  WritePair("real", 1, 11, reals);
  EXPECT_TRUE(Import(shorts));
  EXPECT_EQ(Cells(shorts), (Numbers{24064, -24064, 512, 0, 0, -32768, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(Cells(bytes), Numbers(11, 0.0));
}

TEST_F(IdrisiPair, DocumentsTheLimitsOfTheCellsWithData) {
  auto const limits = [this](CMultiScaleFloatMatrix const &raster) {
    Image("real", raster);
    CIdrisiImageHeader header;
    EXPECT_TRUE(header.ReadFile(In("b.doc").c_str()));
    return Numbers{header.MinValue(), header.MaxValue()};
  };
  CMultiScaleFloatMatrix raster = Row<float>({-5, 3, 9, 2});
  EXPECT_EQ(limits(raster), (Numbers{-5, 9}));
  raster.SetNoDataValue(true, 9.0F);
  EXPECT_EQ(limits(raster), (Numbers{-5, 3}));
  AssignMultiScaleFloatMatrix(raster, 9.0F);
  EXPECT_EQ(limits(raster), (Numbers{9, 9}));
  EXPECT_EQ(limits(CMultiScaleFloatMatrix()), (Numbers{-9999, -9999}));
}

TEST_F(IdrisiPair, FlagValueSwitchesTheNoDataValueOnAndOff) {
  shorts = Row<short>({1});
  shorts.SetNoDataValue(true, -2.5F);
  Image("integer", shorts);
  EXPECT_NE(directory.ReadText("b.doc").find("flag value  : -2.5\nflag def'n  : NODATA\n"),
            std::string::npos);
  for (auto const &[flag, has, value] : {std::tuple{"none", false, 0.0F},
                                         {"-1", true, -1.0F},
                                         {"7 is water", true, 7.0F},
                                         {" 1.5e1", true, 15.0F},
                                         {"0x10", true, 0.0F},
                                         {"inf", false, 0.0F},
                                         {"nan", false, 0.0F},
                                         {"infinite", false, 0.0F},
                                         {"1e300", true, std::numeric_limits<float>::infinity()},
                                         {"", false, 0.0F}}) {
    WritePair("byte", 1, 1, "x", flag);
    bytes.SetNoDataValue(!has, 99.0F);
    EXPECT_TRUE(Import(bytes));
    EXPECT_EQ(bytes.HasNoDataValue(), has) << flag;
    EXPECT_EQ(bytes.NoDataValue(), value) << flag;
  }
}

TEST_F(IdrisiPair, CoarseBlocksAreRepeatedAndKeepTheirLastValue) {
  bytes.Redim(4, 4, 2);
  AssignMultiScaleByteMatrix(bytes, 1);
  bytes.FineCell(0, 0, true);
  bytes.At(0, 1) = 2;
  bytes.At(3, 3) = 5;
  EXPECT_EQ(Image("byte", bytes), std::string("\1\2\1\1\1\1\1\1\1\1\5\5\1\1\5\5", 16));
  WritePair("byte", 2, 2, "\1\2\3\4");
  DefaultFineResolution(2);
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{4, 4, 4, 4}));
}

TEST_F(IdrisiPair, FineBlocksOfTheResolutionMapGetEachTheirValue) {
  CMultiScaleByteMatrix map;
  map.Redim(2, 4, 2);
  map.FineCell(0, 2, true);
  DefaultFineResolution(2);
  DefaultResolutionMap(&map);
  WritePair("integer", 2, 4, Bytes(1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8, 0));
  EXPECT_TRUE(Import(floats));
  EXPECT_EQ(Cells(floats), (Numbers{6, 6, 3, 4, 6, 6, 7, 8}));
}

TEST_F(IdrisiPair, BlocksThatReachBeyondTheEdgeAreClipped) {
  bytes.Redim(3, 5, 2);
  AssignMultiScaleByteMatrix(bytes, 1);
  bytes.At(2, 4) = 9;          // the corner block, coarse: one of its cells lies on the raster
  bytes.FineCell(0, 4, true);  // the block at the right edge, fine: two of its cells do
  bytes.At(1, 4) = 7;
  EXPECT_EQ(Image("byte", bytes), Bytes(1, 1, 1, 1, 1, 1, 1, 1, 1, 7, 1, 1, 1, 1, 9));
}

TEST_F(IdrisiPair, ImageThatIsTooShortIsFalseAndRepeatsItsBuffer) {
  WritePair("byte", 3, 2, "\1\2\3");
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{1, 2, 3, 2, 3, 2}));
  EXPECT_TRUE(application.boxes.empty());
}

// The row in which a file ends has the new bytes in front of those of the row before, be it in the
// middle of a cell; all further rows repeat it.
template <class Cell>
std::vector<double> CellsOfCutImage(std::string const &image, int rows, int cols) {
  std::size_t const rowBytes = static_cast<std::size_t>(cols) * sizeof(Cell);
  std::string buffer(rowBytes, '\0');
  std::vector<double> cells;
  for (int row = 0; row < rows; ++row) {
    std::size_t const at = std::min(image.size(), static_cast<std::size_t>(row) * rowBytes);
    std::string const part = image.substr(at, rowBytes);
    buffer.replace(0, part.size(), part);
    for (int col = 0; col < cols; ++col) {
      Cell cell{};
      std::memcpy(&cell, buffer.data() + static_cast<std::size_t>(col) * sizeof(Cell), sizeof cell);
      cells.push_back(static_cast<double>(cell));
    }
  }
  return cells;
}

template <class Cell>
class CutImage : public IdrisiPair {};
using CellTypes = testing::Types<float, short, unsigned char>;
TYPED_TEST_SUITE(CutImage, CellTypes);

TYPED_TEST(CutImage, IsFalseAtEveryByteAndKeepsWhatStandsBeforeTheCut) {
  using Cell = TypeParam;
  if (std::endian::native == std::endian::big) GTEST_SKIP() << "the model has the machine's order";
  constexpr int kRows = 3;
  constexpr int kCols = 4;
  std::string image;
  for (int i = 0; i < kRows * kCols; ++i) {
    Cell const cell = static_cast<Cell>(i * 21.25 + 1);
    image.append(reinterpret_cast<char const *>(&cell), sizeof cell);
  }
  char const *const type = sizeof(Cell) == 4 ? "real" : sizeof(Cell) == 2 ? "integer" : "byte";
  for (std::size_t size = 0; size <= image.size() + 1; ++size) {
    SCOPED_TRACE(size);
    std::string const part = (image + "?").substr(0, size);
    this->WritePair(type, kRows, kCols, part);
    CMultiScaleMatrix<Cell> raster;
    EXPECT_EQ(this->Import(raster), size >= image.size());
    EXPECT_EQ(this->Cells(raster), CellsOfCutImage<Cell>(part, kRows, kCols));
  }
  EXPECT_TRUE(this->application.boxes.empty());
}

TEST_F(IdrisiPair, WithoutItsDocumentationIsToldInABoxAndLeavesTheRaster) {
  bytes.Redim(1, 1, 1);
  EXPECT_FALSE(ImportIdrisi(In("none.img").c_str(), bytes));
  EXPECT_EQ(application.boxes.at(0).title, "Error: Cannot open file");
  EXPECT_EQ(bytes.NRows(), 1);
}

TEST_F(IdrisiPair, WithoutItsImageIsToldInABoxAfterTheRasterWasResized) {
  WritePair("byte", 3, 2, "");
  std::filesystem::remove(In("a.img"));
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(bytes.NRows(), 3);
}

TEST_F(IdrisiPair, OfAnotherFileTypeLeavesTheRasterAndOfAnotherDataTypeResizesIt) {
  CIdrisiImageHeader header;
  char ascii[] = "ascii";
  header.FileType(ascii);
  header.Rows(7);
  ASSERT_TRUE(header.WriteFile(In("a.doc").c_str()));
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), 0);
  WritePair("complex", 3, 2, "123456");
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), 3);
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_FALSE(ExportIdrisi(In("c").c_str(), "complex", bytes));
}

TEST_F(IdrisiPair, OfFileTypeBinaryIsReadInAnyCaseOfLetters) {
  CIdrisiImageHeader header;
  for (std::string type : {"binary", "BINARY", "Binary"}) {
    header.FileType(type.data());
    header.DataType("byte");
    ASSERT_TRUE(header.WriteFile(In("a.doc").c_str()));
    directory.Write("a.img", "\5");
    EXPECT_TRUE(Import(bytes)) << type;
    EXPECT_EQ(Cells(bytes), (Numbers{5})) << type;
  }
  for (std::string type : {"ascii", "ASCII", "binary ", ""}) {
    header.FileType(type.data());
    ASSERT_TRUE(header.WriteFile(In("a.doc").c_str()));
    EXPECT_FALSE(Import(bytes)) << type;
  }
}

TEST_F(IdrisiPair, ThatAsksForMoreCellsThanItsImageHoldsIsNotBelieved) {
  WritePair("byte", 2000000000, 2000000000, "123");
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), 0);
  EXPECT_EQ(bytes.NCols(), 0);
}

// Room is counted in cells: the bytes of an image hold a quarter as many of type real.
TEST_F(IdrisiPair, ThatAsksForMoreCellsThanItsBytesMakeUpIsNotBelieved) {
  constexpr int kCols = 1 << 14;
  constexpr int kRows = (1 << 12) + 1;  // one row more than is always believed
  WritePair("real", kRows, kCols, "");
  std::filesystem::resize_file(In("a.img"), std::uintmax_t{4} * kRows * kCols - 1);
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), 0);
  WritePair("byte", kRows, kCols, "");
  std::filesystem::resize_file(In("a.img"), std::uintmax_t{kRows} * kCols);
  EXPECT_TRUE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), kRows);
}

TEST_F(IdrisiPair, OfNoRowsMayHaveAnyNumberOfColumns) {
  constexpr int kMost = std::numeric_limits<int>::max();
  WritePair("real", 0, kMost, "");
  EXPECT_TRUE(Import(floats));
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floats.NCols(), kMost);
  EXPECT_EQ(Image("real", floats), "");
}

TEST_F(IdrisiPair, ThatCannotBeWrittenIsFalseWithoutABox) {
  bytes.Redim(1, 1, 1);
  EXPECT_FALSE(ExportIdrisi(In("no/such/a").c_str(), "byte", bytes));
  std::filesystem::create_directories(In("d.img"));
  EXPECT_FALSE(ExportIdrisi(In("d").c_str(), "byte", bytes));
  EXPECT_TRUE(application.boxes.empty());
}

// The stream's state is looked at when all is written, so that a full disk is seen though the last
// bytes stood in a buffer.
TEST_F(IdrisiPair, WhoseImageFindsNoRoomIsFalseWithoutABox) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "a device of some systems";
  std::filesystem::create_symlink("/dev/full", In("f.img"));
  for (int const size : {1, 300}) {
    floats.Redim(size, size, 1);
    AssignMultiScaleFloatMatrix(floats, 1);
    EXPECT_FALSE(ExportIdrisi(In("f").c_str(), "real", floats)) << size;
    CFloatMatrixBaseMap map;
    map.Attach("", "", &floats, nullptr, false);
    EXPECT_EQ(map.OnFileExport(In("f").c_str(), kIdrisi), 0) << size;
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(IdrisiPair, ImportFillsAMapTellsTheWindowAndLeavesTheLegend) {
  shorts.Redim(1, 1, 1);
  CShortMatrixBaseMap map;
  map.Attach("", "", &shorts, nullptr);
  map.ClearLegend();
  map.AddLegendItem("kept", 7);
  map.ClearModifiedFlag(~0UL);
  WritePair("integer", 1, 3, Bytes(1, 0, 2, 0, 0xFF, 0xFF), "-1");
  EXPECT_NE(map.OnFileImport(In("a.img").c_str(), kIdrisi), 0);
  EXPECT_EQ(Cells(shorts), (Numbers{1, 2, -1}));
  EXPECT_TRUE(shorts.HasNoDataValue());
  EXPECT_EQ(map.GetLegendItemCount(), 1);
  EXPECT_EQ(map.GetLegendItemName(0), "kept");
  EXPECT_EQ(map.IsModified(), 2);
  EXPECT_EQ(application.messages, (std::vector<unsigned int>{32771}));
}

// Through a map of each type, with coarse and fine blocks and edges that clip them.
template <class T, class Map>
void RoundTrip(Map &map, CMultiScaleMatrix<T> &raster, std::mt19937 &random,
               std::string const &file) {
  int const width = static_cast<int>(random() % 4) + 1;
  int const rows = static_cast<int>(random() % 20) + 1;
  int const cols = static_cast<int>(random() % 20) + 1;
  DefaultResolutionMap(nullptr);  // that of the round before is gone
  CMultiScaleByteMatrix pattern;
  pattern.Redim(rows, cols, width);
  for (int i = 0; i < 6; ++i)
    pattern.FineCell(static_cast<int>(random() % static_cast<unsigned>(rows)),
                     static_cast<int>(random() % static_cast<unsigned>(cols)), true);
  DefaultFineResolution(width);
  DefaultResolutionMap(&pattern);
  raster.Redim(1, 1, 1);  // no fine block of the round before stays
  raster.Redim(rows, cols, width);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col)
      raster.At(row, col) = static_cast<T>(static_cast<int>(random() % 65536) - 32768);
  raster.SetNoDataValue(random() % 2 == 0, static_cast<float>(random() % 100));
  CMultiScaleMatrix<T> const before = raster;
  ASSERT_NE(map.OnFileExport(file.c_str(), kIdrisi), 0);
  raster.Redim(1, 1, 1);
  raster.SetNoDataValue(!before.HasNoDataValue(), -1);
  ASSERT_NE(map.OnFileImport(file.c_str(), kIdrisi), 0);
  ASSERT_EQ(raster.HasNoDataValue(), before.HasNoDataValue());
  if (before.HasNoDataValue()) {
    ASSERT_EQ(raster.NoDataValue(), before.NoDataValue());
  }
  ASSERT_EQ(raster.NRows(), rows);
  ASSERT_EQ(raster.NCols(), cols);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col) ASSERT_EQ(raster.At(row, col), before.At(row, col));
}

TEST_F(IdrisiPair, RandomMapsOfAllTypesComeBackExactlyAtEveryScale) {
  constexpr unsigned kSeed = 52;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  CFloatMatrixBaseMap floatMap;
  floatMap.Attach("", "", &floats, nullptr, false);
  CShortMatrixBaseMap shortMap;
  shortMap.Attach("", "", &shorts, nullptr);
  CByteMatrixBaseMap byteMap;
  byteMap.Attach("", "", &bytes, nullptr);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    RoundTrip<float>(floatMap, floats, random, In("t.img"));
    RoundTrip<short>(shortMap, shorts, random, In("t.img"));
    RoundTrip<unsigned char>(byteMap, bytes, random, In("t.img"));
  }
}

TEST_F(IdrisiPair, RandomRastersComeBackExactly) {
  constexpr unsigned kSeed = 51;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 60; ++round) {
    int const width = static_cast<int>(random() % 4) + 1;
    int const rows = static_cast<int>(random() % 20) + 1;
    int const cols = static_cast<int>(random() % 20) + 1;
    floats.Redim(rows, cols, width);
    shorts.Redim(rows, cols, width);
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        floats.At(row, col) = static_cast<float>(random()) / 7.0F;
        shorts.At(row, col) = static_cast<short>(random() & 0xFFFF);
      }
    }
    DefaultFineResolution(width);
    CMultiScaleFloatMatrix floatsAgain;
    CMultiScaleShortMatrix shortsAgain;
    ASSERT_TRUE(ExportIdrisi(In("r").c_str(), "real", floats));
    ASSERT_TRUE(ImportIdrisi(In("r").c_str(), floatsAgain));
    ASSERT_EQ(Cells(floatsAgain), Cells(floats));
    ASSERT_TRUE(ExportIdrisi(In("s").c_str(), "integer", shorts));
    ASSERT_TRUE(ImportIdrisi(In("s").c_str(), shortsAgain));
    ASSERT_EQ(Cells(shortsAgain), Cells(shorts));
  }
}

}  // namespace
