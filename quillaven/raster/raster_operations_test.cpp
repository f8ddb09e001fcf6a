#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/raster/raster_operations.h>

#include "tests/support/allocation_count.h"

namespace {

using Place = std::pair<int, int>;

// Row x 100 + column, and a list of the places that were asked for.
template <class T>
class Recorder : public CMapFunc<T> {
 public:
  T Eval(int row, int col) override {
    places.emplace_back(row, col);
    return static_cast<T>(row * 10 + col);
  }
  std::vector<Place> places;
};

CMultiScaleFloatMatrix Made(int rows, int cols, int width) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(rows, cols, width);
  AssignMultiScaleFloatMatrix(raster, 0);
  return raster;
}

// A raster at one scale whose cells hold their place.
CMultiScaleFloatMatrix Places(int rows, int cols) {
  CMultiScaleFloatMatrix raster = Made(rows, cols, 1);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col) raster.At(row, col) = static_cast<float>(row * 100 + col);
  return raster;
}

TEST(DefaultFineResolution, IsOneUntilItIsSetAndIsNotTested) {
  EXPECT_EQ(DefaultFineResolution(), 1);
  DefaultFineResolution(-7);
  EXPECT_EQ(DefaultFineResolution(), -7);
  DefaultFineResolution(1);
}

TEST(DefaultResolutionMap, NullBringsBackWhollyCoarseRasters) {
  CMultiScaleByteMatrix map;
  map.Redim(8, 8, 4);
  map.FineCell(0, 0, true);
  CMultiScaleFloatMatrix raster;
  DefaultResolutionMap(&map);
  raster.Redim(8, 8, 4);
  EXPECT_TRUE(raster.FineCell(0, 0));
  DefaultResolutionMap(nullptr);
  raster.Redim(8, 8, 4);
  EXPECT_FALSE(raster.FineCell(0, 0));
}

// Which cells an update asks the map for shows in the values that coarsened blocks keep.
TEST(UpdateResolutionOfMap, CoarsenedBlocksKeepTheirMiddleCell) {
  CMultiScaleFloatMatrix map = Made(9, 9, 4);
  for (int row = 0; row < 9; row += 4)
    for (int col = 0; col < 9; col += 4) map.FineCell(row, col, true);
  for (int row = 0; row < 9; ++row)
    for (int col = 0; col < 9; ++col) map.At(row, col) = static_cast<float>(row * 100 + col);
  CMultiScaleByteMatrix coarse;
  coarse.Redim(9, 9, 4);
  UpdateResolutionOfMap(map, coarse, 4);
  EXPECT_EQ(map.At(0, 0), 202.0F);
  EXPECT_EQ(map.At(7, 7), 606.0F);
  EXPECT_EQ(map.At(3, 5), 206.0F);
  EXPECT_EQ(map.At(0, 8), 208.0F);
  EXPECT_EQ(map.At(8, 0), 802.0F);
  EXPECT_EQ(map.At(8, 8), 808.0F);
}

TEST(UpdateResolutionOfMap, RasterSmallerThanABlockIsSampledInItsMiddle) {
  CMultiScaleFloatMatrix map = Made(3, 3, 4);
  map.FineCell(0, 0, true);
  map.At(1, 1) = 7.0F;
  CMultiScaleByteMatrix coarse;
  coarse.Redim(3, 3, 4);
  UpdateResolutionOfMap(map, coarse, 4);
  EXPECT_EQ(map.At(0, 0), 7.0F);
}

TEST(UpdateResolutionOfMap, RefinedBlocksSpreadTheirValueAndOthersAreLeftAlone) {
  CMultiScaleShortMatrix map;
  map.Redim(8, 8, 4);
  map.At(0, 0) = 3;
  map.At(0, 4) = 4;
  map.At(4, 0) = 5;
  map.FineCell(4, 0, true);
  map.At(5, 1) = 6;
  CMultiScaleByteMatrix pattern;
  pattern.Redim(8, 8, 4);
  pattern.FineCell(0, 0, true);
  pattern.FineCell(4, 0, true);
  UpdateResolutionOfMap(map, pattern, 4);
  EXPECT_TRUE(map.FineCell(0, 0));
  EXPECT_EQ(map.At(3, 3), 3);
  EXPECT_FALSE(map.FineCell(0, 4));
  EXPECT_EQ(map.At(5, 1), 6);
  EXPECT_EQ(map.At(5, 2), 5);
}

TEST(UpdateResolutionOfMap, ResolutionBelowTwoChangesNothing) {
  CMultiScaleByteMatrix map;
  map.Redim(8, 8, 4);
  map.FineCell(0, 0, true);
  CMultiScaleByteMatrix coarse;
  coarse.Redim(8, 8, 4);
  for (int resolution : {1, 0, -3}) UpdateResolutionOfMap(map, coarse, resolution);
  EXPECT_TRUE(map.FineCell(0, 0));
}

TEST(UpdateResolutionOfMap, PatternAtOneScaleMakesAllBlocksFine) {
  CMultiScaleFloatMatrix map = Made(9, 6, 4);
  CMultiScaleByteMatrix pattern;
  pattern.Redim(9, 6, 1);
  UpdateResolutionOfMap(map, pattern, 4);
  for (int row = 0; row < 9; ++row)
    for (int col = 0; col < 6; ++col) EXPECT_TRUE(map.FineCell(row, col));
}

TEST(UpdateResolutionOfMap, PatternLargerThanTheMapIsSafe) {
  CMultiScaleFloatMatrix map = Made(5, 5, 4);
  CMultiScaleByteMatrix pattern;
  pattern.Redim(50, 50, 1);
  UpdateResolutionOfMap(map, pattern, 4);
  EXPECT_TRUE(map.FineCell(0, 0));
}

TEST(CopyMultiScaleMatrix, CoarseDestinationReadsOneMiddleCellForEachBlock) {
  CMultiScaleFloatMatrix const source = Places(8, 8);
  CMultiScaleFloatMatrix destination = Made(8, 8, 4);
  CopyMultiScaleFloatMatrix(destination, source);
  EXPECT_EQ(destination.At(0, 0), 202.0F);
  EXPECT_EQ(destination.At(0, 7), 206.0F);
  EXPECT_EQ(destination.At(7, 7), 606.0F);
}

TEST(CopyMultiScaleMatrix, RaggedBlockFilledMoreThanHalfIsSampledOtherwiseThanByAnUpdate) {
  // Rows 4 to 6: the copy takes row 6, the update row 5.
  CMultiScaleFloatMatrix const source = Places(7, 4);
  CMultiScaleFloatMatrix destination = Made(7, 4, 4);
  CopyMultiScaleFloatMatrix(destination, source);
  EXPECT_EQ(destination.At(4, 0), 602.0F);

  CMultiScaleFloatMatrix updated = Made(7, 4, 4);
  updated.FineCell(4, 0, true);
  CopyMultiScaleFloatMatrix(updated, source);
  CMultiScaleByteMatrix coarse;
  coarse.Redim(7, 4, 4);
  UpdateResolutionOfMap(updated, coarse, 4);
  EXPECT_EQ(updated.At(4, 0), 502.0F);
}

TEST(CopyMultiScaleMatrix, RaggedBlockFilledLessThanHalfIsSampledInItsRemainder) {
  CMultiScaleFloatMatrix const source = Places(6, 5);
  CMultiScaleFloatMatrix destination = Made(6, 5, 4);
  CopyMultiScaleFloatMatrix(destination, source);
  EXPECT_EQ(destination.At(5, 4), 504.0F);
}

TEST(CopyMultiScaleMatrix, DestinationAtOneScaleReadsEveryCellOfACoarseSource) {
  CMultiScaleFloatMatrix source = Made(6, 6, 3);
  source.At(0, 0) = 1;
  source.At(0, 3) = 2;
  source.FineCell(3, 3, true);
  source.At(4, 4) = 9;
  CMultiScaleFloatMatrix destination = Made(6, 6, 1);
  CopyMultiScaleFloatMatrix(destination, source);
  for (int row = 0; row < 6; ++row)
    for (int col = 0; col < 6; ++col) EXPECT_EQ(destination.At(row, col), source.At(row, col));
}

TEST(CopyMultiScaleMatrix, BytesComeFromARasterOrAPlainMatrixInTheSameWay) {
  CMultiScaleByteMatrix source;
  source.Redim(7, 9, 1);
  CSmartIOByteMatrix plain;
  plain.Resize(7, 9);
  for (int row = 0; row < 7; ++row)
    for (int col = 0; col < 9; ++col)
      source.At(row, col) = plain.m_ppRows[row][col] = static_cast<unsigned char>(row * 10 + col);
  CMultiScaleByteMatrix first;
  first.Redim(7, 9, 4);
  first.FineCell(0, 4, true);
  CMultiScaleByteMatrix second(first);
  CopyMultiScaleByteMatrix(first, source);
  CopyMultiScaleByteMatrix(second, plain);
  EXPECT_EQ(first.At(0, 0), 22);
  EXPECT_EQ(first.At(1, 5), 15);
  for (int row = 0; row < 7; ++row)
    for (int col = 0; col < 9; ++col) EXPECT_EQ(first.At(row, col), second.At(row, col));
}

TEST(CopyMultiScaleMatrix, CellsThatTheSourceDoesNotHaveKeepTheirValues) {
  CMultiScaleFloatMatrix const source = Places(2, 3);
  for (int width : {1, 4}) {
    CMultiScaleFloatMatrix destination = Made(9, 9, width);
    AssignMultiScaleFloatMatrix(destination, 5.0F);
    CopyMultiScaleFloatMatrix(destination, source);
    EXPECT_EQ(destination.At(8, 8), 5.0F);
  }
  CMultiScaleByteMatrix bytes;
  bytes.Redim(3, 3, 2);
  CopyMultiScaleByteMatrix(bytes, CSmartIOByteMatrix());
}

TEST(AssignMultiScaleMatrix, SetsEveryAddressableCell) {
  CMultiScaleFloatMatrix raster = Made(7, 9, 4);
  raster.FineCell(0, 0, true);
  raster.FineCell(6, 8, true);
  AssignMultiScaleFloatMatrix(raster, 3.0F);
  for (int row = 0; row < 7; ++row)
    for (int col = 0; col < 9; ++col) EXPECT_EQ(raster.At(row, col), 3.0F);
  CMultiScaleByteMatrix bytes;
  bytes.Redim(3, 3, 1);
  AssignMultiScaleByteMatrix(bytes, 200);
  EXPECT_EQ(bytes.At(2, 2), 200);
}

TEST(AssignMultiScaleMatrix, AllocatesNothing) {
  for (int cols : {8, 9}) {  // with and without fine blocks across the edge
    CMultiScaleFloatMatrix raster = Made(8, cols, 4);
    raster.FineCell(0, 0, true);
    raster.FineCell(7, cols - 1, true);
    long const before = AllocationCount();
    AssignMultiScaleFloatMatrix(raster, 3.0F);
    CopyMultiScaleFloatMatrix(raster, raster);
    EXPECT_EQ(AllocationCount(), before) << cols;
  }
}

TEST(AssignMultiScaleMatrix, CellsOfAFineBlockBeyondTheEdgeKeepWhatTheyHold) {
  CMultiScaleFloatMatrix raster = Made(4, 5, 4);
  raster.FineCell(0, 4, true);
  float *block = &raster.At(0, 4);  // rows of four cells, of which the first is on the raster
  block[1] = 77;
  AssignMultiScaleFloatMatrix(raster, 3.0F);
  EXPECT_EQ(block[0], 3.0F);
  EXPECT_EQ(block[1], 77.0F);
  CMultiScaleFloatMatrix const source = raster;
  block[1] = 78;
  CopyMultiScaleFloatMatrix(raster, source);
  EXPECT_EQ(block[1], 78.0F);
}

TEST(AssignMultiScaleMatrix, SetsEveryCellThoughTwoBlocksNameOneSlot) {
  CMultiScaleFloatMatrix raster = Made(4, 6, 4);
  raster.FineCell(0, 4, true);
  CMultiScaleByteMatrix pattern;
  pattern.Redim(4, 6, 4);
  pattern.FineCell(0, 0, true);
  DefaultResolutionMap(&pattern);
  raster.Redim(4, 6, 4);  // block 0 gets the slot that the entry of block 1 still names
  DefaultResolutionMap(nullptr);
  AssignMultiScaleFloatMatrix(raster, 7.0F);
  for (int row = 0; row < 4; ++row)
    for (int col = 0; col < 6; ++col) EXPECT_EQ(raster.At(row, col), 7.0F) << row << ", " << col;
}

TEST(EvalMapFunc, AsksForACoarseBlockOnceAtItsTopLeftCell) {
  CMultiScaleFloatMatrix raster = Made(10, 15, 5);
  Recorder<float> function;
  MultiScaleFloatMatrixEvalMapFunc(raster, function);
  EXPECT_EQ(function.places,
            (std::vector<Place>{{0, 0}, {0, 5}, {0, 10}, {5, 0}, {5, 5}, {5, 10}}));
  EXPECT_EQ(raster.At(9, 14), 60.0F);
}

TEST(EvalMapFunc, AsksForEveryCellOfAFineBlockInRows) {
  CMultiScaleFloatMatrix raster = Made(10, 15, 5);
  raster.FineCell(5, 10, true);
  Recorder<float> function;
  MultiScaleFloatMatrixEvalMapFunc(raster, function);
  ASSERT_EQ(function.places.size(), 5U + 25U);
  EXPECT_EQ(function.places[5], Place(5, 10));
  EXPECT_EQ(function.places[6], Place(5, 11));
  EXPECT_EQ(function.places[10], Place(6, 10));
  EXPECT_EQ(function.places.back(), Place(9, 14));
  EXPECT_EQ(raster.At(9, 14), 104.0F);
}

TEST(EvalMapFunc, AtOneScaleGoesThroughAllCellsInRowOrder) {
  CMultiScaleShortMatrix shorts;
  shorts.Redim(2, 3, 1);
  Recorder<short> function;
  MultiScaleShortMatrixEvalMapFunc(shorts, function);
  EXPECT_EQ(function.places, (std::vector<Place>{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {1, 2}}));
  CMultiScaleByteMatrix bytes;
  bytes.Redim(2, 2, 2);
  Recorder<unsigned char> byteFunction;
  MultiScaleByteMatrixEvalMapFunc(bytes, byteFunction);
  EXPECT_EQ(byteFunction.places, (std::vector<Place>{{0, 0}}));
}

TEST(WholeRasterOperations, DoNothingWithoutRowsOrColumns) {
  for (auto const &[rows, cols] : {Place(0, 5), Place(5, 0), Place(0, 0), Place(-2, 3)}) {
    for (int width : {1, 4, 0, -1}) {
      CMultiScaleFloatMatrix raster;
      raster.Redim(rows, cols, width);
      AssignMultiScaleFloatMatrix(raster, 1.0F);
      CopyMultiScaleFloatMatrix(raster, Places(3, 3));
      Recorder<float> function;
      MultiScaleFloatMatrixEvalMapFunc(raster, function);
      EXPECT_TRUE(function.places.empty());
    }
  }
}

TEST(WholeRasterOperations, AgreeWithCellByCellLoopsOnRandomRasters) {
  constexpr unsigned kSeed = 22;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  auto const number = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 200; ++round) {
    int const rows = number(1, 25);
    int const cols = number(1, 25);
    int const width = number(1, 7);
    CMultiScaleFloatMatrix const source = Places(rows, cols);
    CMultiScaleFloatMatrix raster = Made(rows, cols, width);
    for (int i = 0; i < 10; ++i)
      raster.FineCell(number(0, rows - 1), number(0, cols - 1), number(0, 1) == 1);
    CopyMultiScaleFloatMatrix(raster, source);
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        int r = row;
        int c = col;
        if (!raster.FineCell(row, col)) {
          int const r0 = row / width * width;
          int const c0 = col / width * width;
          r = r0 + (r0 + width / 2 < rows ? width / 2 : rows % width / 2);
          c = c0 + (c0 + width / 2 < cols ? width / 2 : cols % width / 2);
        }
        ASSERT_EQ(raster.At(row, col), source.At(r, c)) << round << ": " << row << ", " << col;
      }
    }
    // Into a raster of the same blocks, as a copy has them, every cell goes as it is.
    CMultiScaleFloatMatrix same = raster;
    AssignMultiScaleFloatMatrix(same, -1.0F);
    CopyMultiScaleFloatMatrix(same, raster);
    for (int row = 0; row < rows; ++row)
      for (int col = 0; col < cols; ++col)
        ASSERT_EQ(same.At(row, col), raster.At(row, col)) << round << ": " << row << ", " << col;
  }
}

}  // namespace
