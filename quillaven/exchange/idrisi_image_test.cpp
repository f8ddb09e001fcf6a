#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr int kIdrisi = 0;

class IdrisiPair : public testing::Test {
 protected:
  ~IdrisiPair() override { DefaultFineResolution(1); }

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
  EXPECT_EQ(directory.Read("a.doc"),
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
  EXPECT_NE(directory.Read("b.doc").find("flag value  : -2.5\nflag def'n  : NODATA\n"),
            std::string::npos);
  for (auto const &[flag, has, value] : {std::tuple{"none", false, 0.0F},
                                         {"-1", true, -1.0F},
                                         {"7 is water", true, 7.0F},
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

TEST_F(IdrisiPair, ImageThatIsTooShortIsFalseAndRepeatsItsBuffer) {
  WritePair("byte", 3, 2, "\1\2\3");
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(Cells(bytes), (Numbers{1, 2, 3, 2, 3, 2}));
  EXPECT_TRUE(application.boxes.empty());
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

TEST_F(IdrisiPair, ThatAsksForMoreCellsThanItsImageHoldsIsNotBelieved) {
  WritePair("byte", 2000000000, 2000000000, "123");
  EXPECT_FALSE(Import(bytes));
  EXPECT_EQ(bytes.NRows(), 0);
}

TEST_F(IdrisiPair, ThatCannotBeWrittenIsFalseWithoutABox) {
  bytes.Redim(1, 1, 1);
  EXPECT_FALSE(ExportIdrisi(In("no/such/a").c_str(), "byte", bytes));
  std::filesystem::create_directories(In("d.img"));
  EXPECT_FALSE(ExportIdrisi(In("d").c_str(), "byte", bytes));
  EXPECT_TRUE(application.boxes.empty());
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
