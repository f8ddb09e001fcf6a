#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/allocation_count.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

using Place = std::pair<int, int>;
using Names = std::vector<std::string>;
using Colors = std::vector<unsigned long>;

// Colours of ten classes: class i has colour i + 1.
Colors TenColors() {
  return {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
}
Names Digits() {
  return {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
}

// A map with a categorial legend of ten classes named by their numbers.
template <class Map, class Raster>
void AttachTen(Map &map, Raster &raster) {
  if constexpr (std::is_same_v<Map, CFloatMatrixBaseMap>) {
    map.Attach("base", "title", &raster, nullptr, false);
  } else {
    map.Attach("base", "title", &raster, nullptr);
  }
  Names names = Digits();
  Colors colors = TenColors();
  map.m_Legend.SetBaseMapLegend(&map, 0, 0, names, colors);
}

// A byte raster drawn in text, a digit for each cell.
CMultiScaleByteMatrix Drawn(std::vector<std::string> const &rows, int width = 1) {
  CMultiScaleByteMatrix raster;
  raster.Redim(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()), width);
  for (std::size_t r = 0; r < rows.size(); ++r)
    for (std::size_t c = 0; c < rows[r].size(); ++c)
      raster.At(static_cast<int>(r), static_cast<int>(c)) =
          static_cast<unsigned char>(rows[r][c] - '0');
  return raster;
}

std::vector<std::string> Shown(CMultiScaleByteMatrix const &raster) {
  std::vector<std::string> rows;
  for (int r = 0; r < raster.NRows(); ++r) {
    rows.emplace_back();
    for (int c = 0; c < raster.NCols(); ++c)
      rows.back() += static_cast<char>('0' + raster.At(r, c));
  }
  return rows;
}

TEST(MapWithoutARaster, ShowsAGreyRampWhereItWouldLie) {
  CFloatMatrixBaseMap map;
  map.m_nRows = 11;
  map.m_nCols = 11;
  EXPECT_EQ(map.GetCellColor(10, 10), 16777215UL);
  EXPECT_EQ(map.GetCellColor(0, 0), 0UL);
  EXPECT_EQ(map.GetCellColor(5, 5), 127UL * 65793UL);
  EXPECT_EQ(map.GetCellLegendIndex(3, 3), 0);
  EXPECT_EQ(map.GetCellString(3, 14), "3,14");
  EXPECT_EQ(map.NRows(), 0);
}

TEST(MapWithoutARaster, OfOneCellIsBlack) {
  CByteMatrixBaseMap map;
  map.m_nRows = 1;
  map.m_nCols = 1;
  EXPECT_EQ(map.GetCellColor(0, 0), 0UL);
}

TEST(MapWithoutARaster, IsNotHurtByAnyOperation) {
  RecordingApplication application;
  CShortMatrixBaseMap map;
  map.m_nRows = 4;
  map.m_nCols = 4;
  map.m_nSelectedItem = 3;
  map.SetCell(0, 0);
  map.ClearCell(0, 0);
  map.FillArea(1, 1);
  map.FineCell(0, 0, true);
  EXPECT_TRUE(map.FineCell(0, 0));
  CMultiScaleByteMatrix pattern;
  map.UpdateResolution(pattern, 4);
  EXPECT_EQ(map.OnFileExport("x", 1), 0);
  EXPECT_EQ(map.OnFileImport("x", 1), 0);
  EXPECT_EQ(map.WriteBitmap("x", 1, CRect(), ""), 0);
}

TEST(Attach, JoinsTheMapToItsRasterAndReadsTheLegend) {
  TemporaryDirectory directory;
  RecordingApplication application;
  application.helpFilePath = directory.Path("model.hlp");
  directory.Write("Legends/two.txt", "\t0\t1\t2\t3\ta\n\t1\t4\t5\t6\tb\n");
  CMultiScaleFloatMatrix raster;
  raster.Redim(3, 4, 1);
  CFloatMatrixBaseMap map;
  map.Attach("base", "title", &raster, "two.txt", true);
  EXPECT_EQ(map.m_strBaseName, "base");
  EXPECT_EQ(map.m_strTitle, "title");
  EXPECT_EQ(map.m_pMatrix, &raster);
  EXPECT_EQ(map.m_nRows, 3);
  EXPECT_EQ(map.m_nCols, 4);
  EXPECT_TRUE(map.m_bExportAsByte);
  EXPECT_EQ(map.GetLegendItemName(1), "b");
  map.WriteLegend("copy.txt");
  EXPECT_TRUE(directory.Has("Legends/copy.txt"));
  EXPECT_TRUE(application.boxes.empty());
}

TEST(Attach, NullLegendIsTheDefaultOfElevenClasses) {
  CMultiScaleByteMatrix raster;
  CByteMatrixBaseMap map;
  map.Attach("base", "title", &raster, nullptr);
  EXPECT_EQ(map.GetLegendItemCount(), 11);
}

TEST(Attach, MayBeCalledAgainWithAnotherRaster) {
  CMultiScaleByteMatrix first = Drawn({"12"});
  CMultiScaleByteMatrix second = Drawn({"3", "4"});
  CByteMatrixBaseMap map;
  AttachTen(map, first);
  AttachTen(map, second);
  EXPECT_EQ(map.m_nRows, 2);
  EXPECT_EQ(map.GetCellString(1, 0), "4");
}

TEST(TypedMap, CopySharesTheRasterAndHasALegendOfItsOwn) {
  CMultiScaleByteMatrix raster = Drawn({"12"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  CByteMatrixBaseMap copy(map);
  CByteMatrixBaseMap assigned;
  assigned = map;
  map.m_Legend.NClasses(2);
  raster.At(0, 0) = 5;
  EXPECT_EQ(copy.GetCellLegendIndex(0, 0), 5);
  EXPECT_EQ(assigned.GetCellLegendIndex(0, 0), 5);
  EXPECT_EQ(map.GetCellLegendIndex(0, 0), 1);
}

TEST(TypedMap, NoDataInForceIsWhiteAndHasNoItem) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 2, 1);
  raster.At(0, 0) = -9999.0F;
  raster.At(0, 1) = 2.0F;
  CFloatMatrixBaseMap map;
  AttachTen(map, raster);
  EXPECT_EQ(map.GetCellColor(0, 0), 1UL);  // not in force: the legend sees it
  EXPECT_EQ(map.GetCellLegendIndex(0, 0), 0);
  EXPECT_EQ(map.GetCellString(0, 0), "-9999");
  raster.SetNoDataValue(true, -9999.0F);
  EXPECT_EQ(map.GetCellColor(0, 0), 16777215UL);
  EXPECT_EQ(map.GetCellLegendIndex(0, 0), -1);
  EXPECT_EQ(map.GetCellString(0, 0), "NODATA");
  EXPECT_EQ(map.GetCellColor(0, 1), 3UL);
}

TEST(TypedMap, CellThatIsNoNumberCountsAsNoDataWhereThatIsInForce) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 1, 1);
  raster.At(0, 0) = std::nanf("");
  CFloatMatrixBaseMap map;
  AttachTen(map, raster);
  EXPECT_EQ(map.GetCellLegendIndex(0, 0), 0);
  raster.SetNoDataValue(true, -1.0F);
  EXPECT_EQ(map.GetCellLegendIndex(0, 0), -1);
  EXPECT_EQ(map.GetCellColor(0, 0), 16777215UL);
}

TEST(TypedMap, IntegersAreComparedWithTheNoDataValueAsNumbers) {
  CMultiScaleShortMatrix raster;
  raster.Redim(1, 2, 1);
  raster.At(0, 0) = -9999;
  raster.At(0, 1) = 3;
  raster.SetNoDataValue(true, -9999.0F);
  CShortMatrixBaseMap map;
  AttachTen(map, raster);
  EXPECT_EQ(map.GetCellString(0, 0), "NODATA");
  EXPECT_EQ(map.GetCellString(0, 1), "3");
  raster.SetNoDataValue(true, 3.5F);
  EXPECT_EQ(map.GetCellLegendIndex(0, 1), 3);
}

TEST(TypedMap, FollowsARedimensionedRasterFromTheFirstCellOfADrawOn) {
  CMultiScaleByteMatrix raster = Drawn({"12", "34"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  raster = Drawn({"111", "222", "333"});
  EXPECT_EQ(map.NRows(), 3);
  EXPECT_EQ(map.OnMap(2, 2), 0);
  map.GetCellColor(1, 1);
  map.GetCellString(0, 0);
  EXPECT_EQ(map.OnMap(2, 2), 0);
  map.GetCellColor(0, 0);
  EXPECT_EQ(map.OnMap(2, 2), 1);
  raster = Drawn({"1"});
  map.GetCellLegendIndex(0, 0);
  EXPECT_EQ(map.OnMap(1, 1), 0);
}

TEST(TypedMap, CellOffTheRasterIsShownAsOneWithoutData) {
  CMultiScaleByteMatrix raster = Drawn({"12", "34"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  for (auto const &[row, col] : {Place(-1, 0), Place(0, -1), Place(2, 0), Place(0, 2)}) {
    EXPECT_EQ(map.GetCellColor(row, col), 16777215UL);
    EXPECT_EQ(map.GetCellLegendIndex(row, col), -1);
    EXPECT_EQ(map.GetCellString(row, col), "NODATA");
  }
}

TEST(TypedMap, StandsBeforeTheOperationsOfOtherKindsOfMapUnchanged) {
  CMultiScaleByteMatrix raster = Drawn({"12"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  EXPECT_FALSE(map.CanShowFeature());
  EXPECT_FALSE(map.ShowFeature(0, 0));
  EXPECT_FALSE(map.CanShowFunction());
  EXPECT_FALSE(map.ShowFunction(0, 0));
  EXPECT_FALSE(map.AllowNumericEditing());
  EXPECT_EQ(map.GetLegendItemSymbol(0), 0);
  EXPECT_EQ(map.UnderlineItem(0), 0);
  EXPECT_EQ(map.OnOpenDocument("a"), 0);
  EXPECT_EQ(map.OnReadDocument("a"), 0);
  EXPECT_EQ(map.OnSaveDocument("a"), 0);
}

TEST(SetCell, StoresTheNumberThatTheItemIsNamedByOrTheItemItself) {
  CMultiScaleFloatMatrix floats;
  floats.Redim(1, 1, 1);
  CFloatMatrixBaseMap floatMap;
  AttachTen(floatMap, floats);
  floatMap.m_LegendNames[3] = "2.5 metres";
  floatMap.m_nSelectedItem = 3;
  floatMap.SetCell(0, 0);
  EXPECT_EQ(floats.At(0, 0), 2.5F);
  EXPECT_EQ(floatMap.ValueOfLegendIndex(3), 2.5F);

  CMultiScaleShortMatrix shorts;
  shorts.Redim(1, 1, 1);
  CShortMatrixBaseMap shortMap;
  AttachTen(shortMap, shorts);
  shortMap.m_nSelectedItem = 7;
  shortMap.SetCell(0, 0);
  EXPECT_EQ(shorts.At(0, 0), 7);

  CMultiScaleByteMatrix bytes = Drawn({"0"});
  CByteMatrixBaseMap byteMap;
  AttachTen(byteMap, bytes);
  byteMap.m_LegendNames[7] = "wood";
  byteMap.m_nSelectedItem = 7;
  byteMap.SetCell(0, 0);
  EXPECT_EQ(bytes.At(0, 0), 7);
  byteMap.m_nSelectedItem = 263;
  byteMap.SetCell(0, 0);
  EXPECT_EQ(bytes.At(0, 0), 7);
}

TEST(SetCell, ItemWhoseNameIsNoNumberIsZero) {
  CFloatMatrixBaseMap floatMap;
  floatMap.AddLegendItem("wood", 0);
  EXPECT_EQ(floatMap.ValueOfLegendIndex(0), 0.0F);
  EXPECT_EQ(floatMap.ValueOfLegendIndex(-1), 0.0F);
  EXPECT_EQ(floatMap.ValueOfLegendIndex(5), 0.0F);
  CShortMatrixBaseMap shortMap;
  shortMap.AddLegendItem("70000", 0);
  EXPECT_EQ(shortMap.ValueOfLegendIndex(0), static_cast<short>(70000 - 65536));
}

TEST(SetCell, ItemNamedByANumberThatNoIntHoldsIsTheNearestInt) {
  CMultiScaleShortMatrix raster;
  raster.Redim(1, 1, 1);
  CShortMatrixBaseMap map;
  map.Attach("a", "a", &raster, nullptr);
  map.ClearLegend();
  map.AddLegendItem("99999999999", 0);
  EXPECT_EQ(map.ValueOfLegendIndex(0), -1);  // the low bits of 2147483647
}

TEST(SetCell, ChangesAWholeCoarseBlock) {
  CMultiScaleByteMatrix raster = Drawn({"0000", "0000", "0000", "0000"}, 2);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 4;
  map.SetCell(1, 2);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"0044", "0044", "0000", "0000"}));
}

// An application that looks at the map when it is told of a change.
class Watcher : public RecordingApplication {
 public:
  void OnMainWindowMessage(unsigned int message) override {
    RecordingApplication::OnMainWindowMessage(message);
    modifiedWhenTold.push_back(map->IsModified());
    endedWhenTold.push_back(waitCursorEnded);
    cellWhenTold.push_back(raster->At(0, 0));
  }
  CBaseMap *map = nullptr;
  CMultiScaleByteMatrix *raster = nullptr;
  std::vector<int> modifiedWhenTold;
  std::vector<int> endedWhenTold;
  std::vector<int> cellWhenTold;
};

TEST(SetCell, TellsTheWindowAfterTheChangeAndBeforeTheModifiedBit) {
  CMultiScaleByteMatrix raster = Drawn({"12"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  Watcher watcher;
  watcher.map = &map;
  watcher.raster = &raster;
  map.m_nSelectedItem = 9;
  map.SetCell(0, 0);
  EXPECT_EQ(watcher.messages, (std::vector<unsigned int>{32771}));
  EXPECT_EQ(watcher.cellWhenTold, (std::vector<int>{9}));
  EXPECT_EQ(watcher.modifiedWhenTold, (std::vector<int>{0}));
  EXPECT_EQ(map.IsModified(), 2);
}

TEST(ClearCell, StoresZeroWhateverIsSelectedAndIsNoDataIfThatIsZero) {
  RecordingApplication application;
  CMultiScaleByteMatrix raster = Drawn({"12"});
  raster.SetNoDataValue(true, 0.0F);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 9;
  map.ClearCell(0, 1);
  EXPECT_EQ(raster.At(0, 1), 0);
  EXPECT_EQ(map.GetCellString(0, 1), "NODATA");
  EXPECT_EQ(map.IsModified(), 2);
  EXPECT_EQ(application.messages.size(), 1U);
}

TEST(SetCell, OffTheRasterStoresNothingAndStillTells) {
  RecordingApplication application;
  CMultiScaleByteMatrix raster = Drawn({"12"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.SetCell(-1, 0);
  map.ClearCell(0, 2);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"12"}));
  EXPECT_EQ(application.messages.size(), 2U);
  EXPECT_EQ(map.IsModified(), 2);
}

TEST(FineCell, GoesToTheRaster) {
  CMultiScaleByteMatrix raster = Drawn({"0000", "0000", "0000", "0000"}, 2);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.FineCell(1, 1, true);
  EXPECT_TRUE(raster.FineCell(0, 0));
  EXPECT_TRUE(map.FineCell(0, 1));
  EXPECT_FALSE(map.FineCell(2, 2));
  CMultiScaleByteMatrix pattern;
  pattern.Redim(4, 4, 2);
  pattern.FineCell(3, 3, true);
  map.UpdateResolution(pattern, 2);
  EXPECT_FALSE(raster.FineCell(0, 0));
  EXPECT_TRUE(raster.FineCell(3, 3));
}

// The factor of the next draw of a seed.
double FactorOfSeed(unsigned seed) {
  std::srand(seed);
  double const factor = (std::rand() & 32767) * 3.051850947599719e-5 + 0.5;
  std::srand(seed);
  return std::clamp(factor, 0.5, 1.5);
}

TEST(Jitter, MultipliesFloatsAndTruncatesIntegersToTheirLowBits) {
  CMultiScaleFloatMatrix floats;
  floats.Redim(1, 1, 1);
  floats.At(0, 0) = 2.0F;
  CFloatMatrixBaseMap floatMap;
  AttachTen(floatMap, floats);
  floatMap.m_bJitter = true;
  CMultiScaleByteMatrix bytes;
  bytes.Redim(1, 1, 1);
  bytes.At(0, 0) = 200;
  CByteMatrixBaseMap byteMap;
  byteMap.Attach("", "", &bytes, nullptr);
  Names names(256);
  Colors colors(256);
  byteMap.m_Legend.SetBaseMapLegend(&byteMap, 0, 0, names, colors);
  byteMap.m_bJitter = true;
  CMultiScaleShortMatrix shorts;
  shorts.Redim(1, 1, 1);
  shorts.At(0, 0) = -30000;
  CShortMatrixBaseMap shortMap;
  AttachTen(shortMap, shorts);
  shortMap.m_bJitter = true;
  bool wrapped = false;
  // Seeds far apart: the first numbers of neighbouring seeds are alike on some systems.
  for (unsigned seed = 0; seed < 200 * 331; seed += 331) {
    double const factor = FactorOfSeed(seed);
    int const product = static_cast<int>(200 * factor);
    wrapped = wrapped || product > 255;
    EXPECT_EQ(byteMap.GetCellLegendIndex(0, 0), product & 255) << seed;
    std::srand(seed);
    EXPECT_EQ(floatMap.GetCellLegendIndex(0, 0),
              static_cast<int>(static_cast<float>(2.0F * factor)));
    std::srand(seed);
    EXPECT_EQ(shortMap.GetCellString(0, 0),
              std::to_string(static_cast<short>(static_cast<int>(-30000 * factor))));
  }
  EXPECT_TRUE(wrapped);
  EXPECT_EQ(bytes.At(0, 0), 200);
}

TEST(Jitter, OfAFloatThatEqualsTheNoDataValueLeavesItEvenIfThatIsNotInForce) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 1, 1);
  raster.At(0, 0) = -9999.0F;
  CFloatMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_bJitter = true;
  std::srand(1);
  int const next = std::rand();
  std::srand(1);
  EXPECT_EQ(map.GetCellString(0, 0), "-9999");
  EXPECT_EQ(std::rand(), next);  // nothing was drawn
}

TEST(Jitter, DrawsAnewForEachQuestion) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 1, 1);
  raster.At(0, 0) = 1.0F;
  CFloatMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_bJitter = true;
  std::vector<std::string> texts;
  for (int i = 0; i < 20; ++i) texts.push_back(map.GetCellString(0, 0));
  std::sort(texts.begin(), texts.end());
  EXPECT_GT(std::unique(texts.begin(), texts.end()) - texts.begin(), 5);
}

std::vector<std::string> Fill(std::vector<std::string> const &rows, Place start, int item,
                              int width = 1) {
  CMultiScaleByteMatrix raster = Drawn(rows, width);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = item;
  map.FillArea(start.first, start.second);
  return Shown(raster);
}

TEST(FillArea, PaintsOneClassInFourDirections) {
  EXPECT_EQ(Fill({"1121", "1221", "1111", "2112"}, {0, 0}, 5),
            (std::vector<std::string>{"5525", "5225", "5555", "2552"}));
  EXPECT_EQ(Fill({"1121", "1221", "2111", "2112"}, {0, 0}, 5),
            (std::vector<std::string>{"5521", "5221", "2111", "2112"}));
}

TEST(FillArea, DoesNotGoThroughCorners) {
  EXPECT_EQ(Fill({"12", "21"}, {0, 0}, 5), (std::vector<std::string>{"52", "21"}));
}

TEST(FillArea, OnACellOfTheSelectedClassDoesNothingAndLeavesTheWaitCursorOn) {
  RecordingApplication application;
  CMultiScaleByteMatrix raster = Drawn({"11"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 1;
  map.FillArea(0, 0);
  EXPECT_EQ(map.IsModified(), 0);
  EXPECT_TRUE(application.messages.empty());
  EXPECT_EQ(application.waitCursorBegun, 1);
  EXPECT_EQ(application.waitCursorEnded, 0);
}

TEST(FillArea, TellsOnceAfterTheWaitCursorEnded) {
  CMultiScaleByteMatrix raster = Drawn({"111", "111"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  Watcher watcher;
  watcher.map = &map;
  watcher.raster = &raster;
  map.m_nSelectedItem = 4;
  map.FillArea(1, 1);
  EXPECT_EQ(watcher.messages, (std::vector<unsigned int>{32771}));
  EXPECT_EQ(watcher.endedWhenTold, (std::vector<int>{1}));
  EXPECT_EQ(watcher.modifiedWhenTold, (std::vector<int>{0}));
  EXPECT_EQ(watcher.cellWhenTold, (std::vector<int>{4}));
  EXPECT_EQ(map.IsModified(), 2);
  EXPECT_EQ(watcher.waitCursorBegun, 1);
}

TEST(FillArea, OutsideTheMapPaintsNothingAndStillTells) {
  RecordingApplication application;
  CMultiScaleByteMatrix raster = Drawn({"11", "11"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 4;
  map.FillArea(-1, 0);
  map.FillArea(0, 2);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"11", "11"}));
  EXPECT_EQ(application.messages.size(), 2U);
  EXPECT_EQ(application.waitCursorEnded, 2);
  EXPECT_EQ(map.IsModified(), 2);
}

TEST(FillArea, OfARegionWithoutDataFillsIt) {
  CMultiScaleByteMatrix raster = Drawn({"0010", "0110"});
  raster.SetNoDataValue(true, 0.0F);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 7;
  map.FillArea(0, 0);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"7710", "7110"}));
}

// A map that sees, at each question, which cells have been painted since the one before.
class PaintingOrder : public CByteMatrixBaseMap {
 public:
  int GetCellLegendIndex(int row, int col) override {
    for (int r = 0; r < m_nRows; ++r)
      for (int c = 0; c < m_nCols; ++c)
        if (m_pMatrix->At(r, c) == m_nSelectedItem &&
            std::find(order.begin(), order.end(), Place(r, c)) == order.end())
          order.emplace_back(r, c);
    return CByteMatrixBaseMap::GetCellLegendIndex(row, col);
  }
  std::vector<Place> order;
};

TEST(FillArea, PaintsBreadthFirstUpRightDownLeft) {
  // The frame of another class is asked for its class behind each painted cell, so none goes
  // unseen.
  CMultiScaleByteMatrix raster = Drawn({"22222", "21112", "21112", "21112", "22222"});
  PaintingOrder map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 5;
  map.FillArea(2, 2);
  map.GetCellLegendIndex(0, 0);
  EXPECT_EQ(
      map.order,
      (std::vector<Place>{{2, 2}, {1, 2}, {2, 3}, {3, 2}, {2, 1}, {1, 3}, {1, 1}, {3, 3}, {3, 1}}));
}

TEST(FillArea, LeavesACoarseBlockOnlyFromTheCellThatItCameTo) {
  // Painting a coarse block through one cell changes all of them, so that its own cells stop
  // matching: the fill goes on only to neighbours of the painted cell that lie in other blocks.
  EXPECT_EQ(Fill({"1122", "1122", "1111", "1111"}, {0, 0}, 5, 2),
            (std::vector<std::string>{"5522", "5522", "1111", "1111"}));
  EXPECT_EQ(Fill({"1122", "1122", "1111", "1111"}, {1, 0}, 5, 2),
            (std::vector<std::string>{"5522", "5522", "5511", "5511"}));
}

TEST(FillArea, WithAPaintValueOfTheOldClassPaintsEachCellOnceAndEnds) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(20, 30, 1);
  AssignMultiScaleFloatMatrix(raster, 3.0F);
  CFloatMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_LegendNames[5] = "3.25";  // the item's value falls into class 3 again
  map.m_nSelectedItem = 5;
  map.FillArea(10, 10);
  for (int row = 0; row < 20; ++row)
    for (int col = 0; col < 30; ++col) ASSERT_EQ(raster.At(row, col), 3.25F);
}

TEST(FillArea, WithJitterEnds) {
  std::srand(4);
  CMultiScaleByteMatrix raster = Drawn(std::vector<std::string>(30, std::string(30, '4')));
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_bJitter = true;
  for (int item = 0; item < 10; ++item) {
    map.m_nSelectedItem = item;
    map.FillArea(15, 15);
  }
  SUCCEED();
}

TEST(FillArea, IsExactUpTo1024Columns) {
  std::vector<std::string> filled =
      Fill({std::string(1024, '1'), std::string(1024, '1')}, {0, 0}, 5);
  EXPECT_EQ(filled, (std::vector<std::string>{std::string(1024, '5'), std::string(1024, '5')}));
}

TEST(FillArea, OnAMapWhoseRasterHasGrownAsksAgainForEveryClass) {
  // The map still knows 10 columns when the fill begins, and learns of 1500 at cell (0, 0).
  CMultiScaleByteMatrix raster;
  raster.Redim(2, 10, 1);
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  raster.Redim(2, 1500, 1);
  for (int col = 0; col < 1500; ++col) {
    raster.At(0, col) = 1;
    raster.At(1, col) = 2;
  }
  map.m_nSelectedItem = 5;
  map.FillArea(0, 3);
  for (int col = 0; col < 1500; ++col) {
    EXPECT_EQ(raster.At(0, col), col < 1024 ? 5 : 1) << col;
    EXPECT_EQ(raster.At(1, col), 2) << col;
  }
}

TEST(FillArea, BeyondColumn1023GoesOnAtTheStartOfTheNextRow) {
  // The column has ten bits in the queue: column 1024 of row 0 comes up as column 0 of row 1. So
  // the fill leaves out the columns from 1024 on, and here it crosses a wall through that gap.
  std::string const row = std::string(1000, '2') + std::string(30, '1');
  std::string const next = "1" + std::string(1029, '2');
  EXPECT_EQ(
      Fill({row, next}, {0, 1010}, 5),
      (std::vector<std::string>{std::string(1000, '2') + std::string(24, '5') + std::string(6, '1'),
                                "5" + std::string(1029, '2')}));
  // A start from column 1024 on is misread in the same way.
  EXPECT_EQ(Fill({row, next}, {0, 1024}, 5),
            (std::vector<std::string>{row, "5" + std::string(1029, '2')}));
  // In the last row there is no next one: nothing is painted, and nothing out of range is touched.
  EXPECT_EQ(Fill({row}, {0, 1029}, 5), (std::vector<std::string>{row}));
}

TEST(FillArea, OnAMapWhoseRasterHasShrunkStaysOnTheRaster) {
  CMultiScaleByteMatrix raster = Drawn({"111", "111", "111"});
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  raster = Drawn({"11", "11"});
  map.m_nSelectedItem = 5;
  map.FillArea(1, 1);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"55", "55"}));
  raster = Drawn({"1"});
  map.m_nRows = 3;
  map.m_nCols = 3;
  map.FillArea(2, 2);
  EXPECT_EQ(Shown(raster), (std::vector<std::string>{"1"}));
}

// The fill written a second time, over classes in a grid with its blocks.
std::vector<std::string> NaiveFill(std::vector<std::string> cells, Place start, int item,
                                   int width) {
  int const rows = static_cast<int>(cells.size());
  int const cols = static_cast<int>(cells[0].size());
  auto at = [&cells](int r, int c) -> char & {
    return cells[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
  };
  char const old = at(start.first, start.second);
  char const paint = static_cast<char>('0' + item);
  if (old == paint) return cells;
  std::deque<Place> queue{start};
  while (!queue.empty()) {
    auto const [r, c] = queue.front();
    queue.pop_front();
    if (at(r, c) != old) continue;
    for (int i = r / width * width; i < std::min(rows, r / width * width + width); ++i)
      for (int j = c / width * width; j < std::min(cols, c / width * width + width); ++j)
        at(i, j) = paint;
    for (auto const &[i, j] : {Place(r - 1, c), Place(r, c + 1), Place(r + 1, c), Place(r, c - 1)})
      if (i >= 0 && i < rows && j >= 0 && j < cols && at(i, j) == old) queue.emplace_back(i, j);
  }
  return cells;
}

TEST(FillArea, AgreesWithANaiveFillOnRandomRasters) {
  constexpr unsigned kSeed = 1024;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 400; ++round) {
    auto const below = [&random](int count) {
      return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    int const rows = below(20) + 1;
    int const cols = below(20) + 1;
    int const width = below(4) + 1;
    int const classes = below(3) + 1;
    std::vector<std::string> cells(static_cast<std::size_t>(rows));
    for (std::string &row : cells)
      for (int c = 0; c < cols; ++c) row += static_cast<char>('0' + below(classes));
    // Through a raster of that width, so that the blocks are of one value.
    cells = Shown(Drawn(cells, width));
    Place const start{below(rows), below(cols)};
    int const item = below(4);
    ASSERT_EQ(Fill(cells, start, item, width), NaiveFill(cells, start, item, width)) << round;
  }
}

TEST(GetCellColor, AllocatesNothing) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(64, 64, 4);
  AssignMultiScaleFloatMatrix(raster, 0.3F);
  raster.FineCell(0, 0, true);
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  long const before = AllocationCount();
  unsigned long sum = 0;
  for (int row = 0; row < 64; ++row)
    for (int col = 0; col < 64; ++col)
      sum +=
          map.GetCellColor(row, col) + static_cast<unsigned long>(map.GetCellLegendIndex(row, col));
  EXPECT_EQ(AllocationCount(), before);
  EXPECT_GT(sum, 0UL);
}

TEST(FillArea, AllocatesFarLessThanOnceForACell) {
  CMultiScaleByteMatrix raster = Drawn(std::vector<std::string>(200, std::string(200, '1')));
  CByteMatrixBaseMap map;
  AttachTen(map, raster);
  map.m_nSelectedItem = 5;
  long const before = AllocationCount();
  map.FillArea(100, 100);
  EXPECT_LT(AllocationCount() - before, 200 * 200 / 20);
}

}  // namespace
