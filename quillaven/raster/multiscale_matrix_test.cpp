#include <cstdint>
#include <limits>
#include <map>
#include <new>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/raster/multiscale_matrix.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>

namespace {

// The index entry of the block of a cell: slot + 1, or 0 for a coarse block.
template <class T>
int Entry(CMultiScaleMatrix<T> const &raster, int row, int col) {
  return CRasterAccess::FineIndex(raster)[row / raster.W()][col / raster.W()];
}

template <class T>
void Fill(CMultiScaleMatrix<T> &raster, T value) {
  for (int row = 0; row < raster.NRows(); ++row)
    for (int col = 0; col < raster.NCols(); ++col) raster.At(row, col) = value;
}

CMultiScaleFloatMatrix Made(int rows, int cols, int width, float value = 0.0F) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(rows, cols, width);
  Fill(raster, value);
  return raster;
}

// Puts a resolution map in force as long as it lives.
class MapInForce {
 public:
  explicit MapInForce(CMultiScaleByteMatrix &map) { DefaultResolutionMap(&map); }
  ~MapInForce() { DefaultResolutionMap(nullptr); }
  MapInForce(MapInForce const &) = delete;
  MapInForce &operator=(MapInForce const &) = delete;
};

template <class T>
class MultiScaleMatrix : public testing::Test {};
using ElementTypes = testing::Types<float, short, unsigned char>;
TYPED_TEST_SUITE(MultiScaleMatrix, ElementTypes);

TYPED_TEST(MultiScaleMatrix, IsEmptyWithOneScaleAfterConstruction) {
  CMultiScaleMatrix<TypeParam> const raster;
  EXPECT_EQ(raster.NRows(), 0);
  EXPECT_EQ(raster.NCols(), 0);
  EXPECT_EQ(raster.W(), 1);
  EXPECT_FALSE(raster.HasNoDataValue());
  EXPECT_EQ(raster.NoDataValue(), -9999.0F);
}

TYPED_TEST(MultiScaleMatrix, AtOneScaleEveryCellIsFineAndReadsTheCoarseTable) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(3, 4, 1);
  Fill(raster, TypeParam{7});
  EXPECT_TRUE(raster.FineCell(2, 3));
  raster.FineCell(2, 3, false);
  EXPECT_TRUE(raster.FineCell(2, 3));
  raster.At(2, 3) = TypeParam{9};
  EXPECT_EQ(CRasterAccess::Coarse(raster).m_ppRows[2][3], TypeParam{9});
}

TYPED_TEST(MultiScaleMatrix, CoarseTableCoversTheRasterWithBlocks) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(5, 7, 2);
  EXPECT_EQ(CRasterAccess::Coarse(raster).Rows(), 3);
  EXPECT_EQ(CRasterAccess::Coarse(raster).Cols(), 4);
  raster.Redim(4, 6, 2);
  EXPECT_EQ(CRasterAccess::Coarse(raster).Rows(), 2);
  EXPECT_EQ(CRasterAccess::Coarse(raster).Cols(), 3);
}

TYPED_TEST(MultiScaleMatrix, CellsOfACoarseBlockAreOneUntilItIsRefined) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(12, 12, 4);
  Fill(raster, TypeParam{5});
  EXPECT_EQ(&raster.At(5, 6), &raster.At(7, 7));
  raster.At(5, 6) = TypeParam{8};
  EXPECT_EQ(raster.At(7, 7), TypeParam{8});

  raster.FineCell(5, 6, true);
  for (int row = 4; row < 8; ++row)
    for (int col = 4; col < 8; ++col) EXPECT_EQ(raster.At(row, col), TypeParam{8});
  raster.At(6, 5) = TypeParam{9};
  EXPECT_EQ(raster.At(6, 4), TypeParam{8});
  EXPECT_EQ(raster.At(3, 5), TypeParam{5});

  raster.FineCell(6, 5, false);
  for (int row = 4; row < 8; ++row)
    for (int col = 4; col < 8; ++col) EXPECT_EQ(raster.At(row, col), TypeParam{9});
}

TYPED_TEST(MultiScaleMatrix, RowIndexReadsAndWritesTheSameCells) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(6, 6, 3);
  Fill(raster, TypeParam{0});
  raster.FineCell(0, 0, true);
  raster[1][2] = TypeParam{4};
  EXPECT_EQ(raster.At(1, 2), TypeParam{4});
  EXPECT_EQ(&raster[1][2], &raster.At(1, 2));
}

TYPED_TEST(MultiScaleMatrix, SaveReadTestsItsCoordinates) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(4, 5, 2);
  Fill(raster, TypeParam{3});
  TypeParam out{1};
  for (auto const &[row, col] : {std::pair{-1, 0}, {4, 0}, {0, -1}, {0, 5}}) {
    EXPECT_FALSE(raster.GetSave(row, col, out));
    EXPECT_EQ(out, TypeParam{1});
  }
  EXPECT_TRUE(raster.GetSave(3, 4, out));
  EXPECT_EQ(out, TypeParam{3});
}

TYPED_TEST(MultiScaleMatrix, NoDataSettingsComeBeforeTheShapeAndStayWithIt) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.SetNoDataValue(true, -1.0F);
  raster.Redim(3, 3, 1);
  EXPECT_TRUE(raster.HasNoDataValue());
  EXPECT_EQ(raster.NoDataValue(), -1.0F);
  raster.Redim(9, 9, 4);
  raster.Redim(0, 0, 1);
  EXPECT_TRUE(raster.HasNoDataValue());
  EXPECT_EQ(raster.NoDataValue(), -1.0F);
}

TYPED_TEST(MultiScaleMatrix, DestructReleasesTheCoarseCellsAndTheSettings) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(8, 8, 4);
  raster.SetNoDataValue(true, 1.0F);
  raster.FineCell(0, 0, true);
  raster.Destruct();
  EXPECT_EQ(raster.NRows(), 0);
  EXPECT_EQ(raster.NCols(), 0);
  EXPECT_EQ(raster.W(), 4);
  EXPECT_FALSE(raster.HasNoDataValue());
  EXPECT_EQ(raster.NoDataValue(), -9999.0F);
  raster.FineCell(0, 0, false);
  EXPECT_FALSE(raster.FineCell(0, 0));
  raster.Redim(4, 4, 2);
  EXPECT_EQ(raster.NRows(), 4);
}

TYPED_TEST(MultiScaleMatrix, CopiesShareNothingAndKeepTheirSlots) {
  CMultiScaleMatrix<TypeParam> raster;
  raster.Redim(8, 8, 4);
  raster.SetNoDataValue(true, 2.0F);
  Fill(raster, TypeParam{1});
  raster.FineCell(5, 5, true);
  raster.At(5, 5) = TypeParam{6};
  CMultiScaleMatrix<TypeParam> copy(raster);
  CMultiScaleMatrix<TypeParam> assigned;
  assigned.Redim(100, 3, 7);
  assigned = raster;
  Fill(raster, TypeParam{0});
  raster.Redim(2, 2, 1);
  for (CMultiScaleMatrix<TypeParam> *same : {&copy, &assigned}) {
    EXPECT_EQ(same->NRows(), 8);
    EXPECT_EQ(same->W(), 4);
    EXPECT_EQ(same->At(5, 5), TypeParam{6});
    EXPECT_EQ(same->At(4, 4), TypeParam{1});
    EXPECT_EQ(Entry(*same, 5, 5), 256);
    EXPECT_EQ(same->NoDataValue(), 2.0F);
    same->FineCell(0, 0, true);
    EXPECT_EQ(Entry(*same, 0, 0), 255);
  }
}

TYPED_TEST(MultiScaleMatrix, CopyOfAnEmptyRasterHasNoTable) {
  CMultiScaleMatrix<TypeParam> const empty;
  CMultiScaleMatrix<TypeParam> copy;
  copy.Redim(2, 2, 1);
  copy = empty;
  EXPECT_EQ(copy.NRows(), 0);
  EXPECT_EQ(CRasterAccess::Coarse(copy).m_ppRows, nullptr);
}

TEST(MultiScaleMatrixCopy, AssignmentToItselfChangesNothing) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4, 3.0F);
  raster.FineCell(0, 0, true);
  CMultiScaleFloatMatrix &same = raster;
  raster = same;
  EXPECT_EQ(raster.At(0, 0), 3.0F);
  EXPECT_TRUE(raster.FineCell(0, 0));
}

TEST(FineBlockSlots, AreDealtFromTheHighestNumberDownAndReusedLastInFirstOut) {
  CMultiScaleFloatMatrix raster = Made(16, 16, 4);
  raster.FineCell(0, 0, true);
  EXPECT_EQ(Entry(raster, 0, 0), 256);
  raster.FineCell(0, 4, true);
  EXPECT_EQ(Entry(raster, 0, 4), 255);
  raster.FineCell(0, 0, false);
  EXPECT_EQ(Entry(raster, 0, 0), 0);
  raster.FineCell(0, 8, true);
  EXPECT_EQ(Entry(raster, 0, 8), 256);
  raster.FineCell(0, 12, true);
  EXPECT_EQ(Entry(raster, 0, 12), 254);
}

TEST(FineBlockSlots, The257thBlockOpensASecondPoolBlock) {
  CMultiScaleByteMatrix raster;
  raster.Redim(2, 2 * 300, 2);
  for (int block = 0; block < 256; ++block) raster.FineCell(0, 2 * block, true);
  EXPECT_EQ(Entry(raster, 0, 2 * 255), 1);
  EXPECT_EQ(CRasterAccess::Pool(raster).m_Blocks.size(), 1U);
  raster.FineCell(0, 2 * 256, true);
  EXPECT_EQ(Entry(raster, 0, 2 * 256), 512);
  EXPECT_EQ(CRasterAccess::Pool(raster).m_Blocks.size(), 2U);
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 512);
}

TEST(FineBlockSlots, ScaleThatABlockHasAlreadyChangesNothing) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4, 1.0F);
  raster.FineCell(0, 0, true);
  raster.At(1, 1) = 2.0F;
  raster.FineCell(2, 2, true);
  EXPECT_EQ(raster.At(1, 1), 2.0F);
  EXPECT_EQ(raster.At(2, 2), 1.0F);
  raster.FineCell(4, 4, false);
  EXPECT_EQ(raster.At(4, 4), 1.0F);
}

TEST(FineBlockSlots, CellsOutsideTheRasterChangeNothing) {
  CMultiScaleFloatMatrix raster = Made(7, 7, 4, 1.0F);
  for (auto const &[row, col] : {std::pair{-1, 0}, {0, -1}, {7, 0}, {0, 7}, {1000000, 1000000}}) {
    raster.FineCell(row, col, true);
    EXPECT_FALSE(raster.FineCell(row, col));
  }
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 0);
}

// The list of free slots as it is told: a stack with holes.
struct NaivePool {
  std::vector<int> list;
  std::map<int, int> position;  // of each free slot
  int slots = 0;

  int Acquire() {
    if (list.empty()) {
      for (int slot = slots; slot < slots + 256; ++slot) {
        position[slot] = static_cast<int>(list.size());
        list.push_back(slot);
      }
      slots += 256;
    }
    int const slot = list.back();
    list[static_cast<std::size_t>(position[slot])] = -1;
    position.erase(slot);
    while (!list.empty() && list.back() == -1) list.pop_back();
    return slot;
  }
  void Release(int slot) {
    position[slot] = static_cast<int>(list.size());
    list.push_back(slot);
  }
};

TEST(FineBlockSlots, FollowTheStackOfFreeSlotsThroughAnyHistory) {
  constexpr unsigned kSeed = 256;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  CMultiScaleShortMatrix raster;
  raster.Redim(60, 60, 2);
  NaivePool naive;
  std::map<std::pair<int, int>, int> slots;
  for (int step = 0; step < 20000; ++step) {
    int const row = static_cast<int>(random() % 60);
    int const col = static_cast<int>(random() % 60);
    std::pair const block{row / 2, col / 2};
    bool const fine = random() % 2 == 0;
    if (fine && !slots.contains(block)) slots[block] = naive.Acquire();
    if (!fine && slots.contains(block)) {
      naive.Release(slots[block]);
      slots.erase(block);
    }
    raster.FineCell(row, col, fine);
    ASSERT_EQ(Entry(raster, row, col), slots.contains(block) ? slots[block] + 1 : 0) << step;
  }
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), naive.slots);
}

TEST(Redim, ToTheSameShapeKeepsCoarseValuesAndLosesFineBlocks) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4, 3.0F);
  raster.FineCell(0, 0, true);
  raster.Redim(8, 8, 4);
  EXPECT_FALSE(raster.FineCell(0, 0));
  EXPECT_EQ(raster.At(7, 7), 3.0F);
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 0);
  EXPECT_TRUE(CRasterAccess::Pool(raster).m_Blocks.empty());
}

TEST(Redim, ToTheSameCoarseShapeKeepsCoarseValuesWhateverTheCellsAre) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4, 3.0F);
  raster.Redim(6, 7, 4);
  EXPECT_EQ(raster.At(5, 6), 3.0F);
  raster.Redim(2, 2, 1);
  EXPECT_EQ(raster.At(1, 1), 3.0F);
}

TEST(Redim, ToOneScaleLeavesThePoolUntilASecondScaleComesBack) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4);
  raster.FineCell(0, 0, true);
  raster.Redim(8, 8, 1);
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 256);
  EXPECT_EQ(CRasterAccess::FineIndex(raster).Rows(), 0);
  raster.Redim(8, 8, 2);
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 0);
}

TEST(Redim, WithAResolutionMapMakesItsBlocksFine) {
  CMultiScaleByteMatrix map;
  map.Redim(8, 8, 4);
  map.FineCell(0, 4, true);
  map.FineCell(7, 0, true);
  MapInForce const inForce(map);
  CMultiScaleFloatMatrix raster;
  raster.Redim(8, 8, 4);
  EXPECT_EQ(Entry(raster, 0, 0), 0);
  EXPECT_EQ(Entry(raster, 0, 4), 256);
  EXPECT_EQ(Entry(raster, 4, 0), 255);
  EXPECT_EQ(Entry(raster, 4, 4), 0);
}

TEST(Redim, FollowsAResolutionMapOfAnotherSizeWhereBothHaveBlocks) {
  CMultiScaleByteMatrix map;
  map.Redim(8, 8, 4);
  for (int row : {0, 4})
    for (int col : {0, 4}) map.FineCell(row, col, true);
  MapInForce const inForce(map);
  CMultiScaleFloatMatrix larger = Made(20, 5, 4);
  EXPECT_TRUE(larger.FineCell(7, 4));
  EXPECT_FALSE(larger.FineCell(8, 0));
  CMultiScaleFloatMatrix other =
      Made(20, 20, 2);  // the map has another resolution: safe all the same
  other.At(19, 19) = 1.0F;
}

TEST(Redim, WithAResolutionMapLeavesOldEntriesOfCoarseBlocksInPlace) {
  CMultiScaleFloatMatrix raster = Made(16, 64, 4);
  for (int col = 0; col < 64; col += 4)
    for (int row = 0; row < 16; row += 4) raster.FineCell(row, col, true);
  int const old = Entry(raster, 0, 0);
  CMultiScaleByteMatrix map;
  map.Redim(16, 64, 4);
  map.FineCell(4, 4, true);
  MapInForce const inForce(map);
  raster.Redim(16, 64, 4);
  EXPECT_EQ(Entry(raster, 4, 4), 256);
  EXPECT_EQ(Entry(raster, 0, 0), old);
  EXPECT_TRUE(raster.FineCell(0, 0));
  // The slots that they name are gone: whatever is done with them stays within the raster's
  // storage.
  Fill(raster, 1.0F);
  for (int col = 0; col < 64; col += 4)
    for (int row = 0; row < 16; row += 4) raster.FineCell(row, col, (row + col) % 8 == 0);
  Fill(raster, 2.0F);
  EXPECT_EQ(raster.At(15, 63), 2.0F);
}

TEST(Redim, OldEntriesBeyondTheSlotsAreProvidedWithStorage) {
  CMultiScaleByteMatrix raster;
  raster.Redim(2, 2 * 600, 2);
  for (int block = 0; block < 600; ++block) raster.FineCell(0, 2 * block, true);
  CMultiScaleByteMatrix map;
  map.Redim(2, 2 * 600, 2);
  MapInForce const inForce(map);
  raster.Redim(2, 2 * 600, 2);
  EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 0);
  Fill<unsigned char>(raster, 3);
  for (int block = 0; block < 600; ++block) raster.FineCell(1, 2 * block, false);
  EXPECT_EQ(raster.At(0, 1000), 3);
  raster.FineCell(0, 0, true);
  EXPECT_EQ(Entry(raster, 0, 0), 256);
}

TEST(Redim, OfTheMapInForceItselfIsSafe) {
  CMultiScaleByteMatrix map;
  map.Redim(8, 8, 4);
  map.FineCell(0, 0, true);
  MapInForce const inForce(map);
  map.Redim(12, 12, 4);
  EXPECT_TRUE(map.FineCell(0, 0));
  EXPECT_FALSE(map.FineCell(11, 11));
  map.At(3, 3) = 1;
}

TEST(Redim, ToMoreRowsGivesNewRowsOfCoarseBlocks) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4);
  CMultiScaleByteMatrix map;
  map.Redim(4, 4, 4);
  MapInForce const inForce(map);
  raster.Redim(80, 8, 4);
  for (int row = 0; row < 80; ++row) EXPECT_FALSE(raster.FineCell(row, 0));
}

TEST(Redim, OfSizesBelowOneIsEmpty) {
  for (int width : {1, 4}) {
    for (auto const &[rows, cols] : {std::pair{-1, 5}, {5, -1}, {0, 0}, {0, 5}, {5, 0}}) {
      CMultiScaleFloatMatrix raster = Made(8, 8, width);
      raster.Redim(rows, cols, width);
      float out = 4.0F;
      EXPECT_FALSE(raster.GetSave(0, 0, out));
      raster.FineCell(0, 0, true);
      CMultiScaleFloatMatrix const copy(raster);
      EXPECT_EQ(copy.NRows(), raster.NRows());
    }
  }
}

TEST(Redim, OfAResolutionBelowOneHasOneScale) {
  CMultiScaleFloatMatrix raster;
  for (int width : {0, -1, std::numeric_limits<int>::min()}) {
    raster.Redim(5, 6, width);
    Fill(raster, 1.0F);
    EXPECT_TRUE(raster.FineCell(4, 5));
    EXPECT_EQ(raster.At(4, 5), 1.0F);
  }
}

TEST(Redim, ThatMemoryCannotHoldLeavesTheRasterEmptyAndUsable) {
  CMultiScaleFloatMatrix raster = Made(8, 8, 4);
  raster.SetNoDataValue(true, 5.0F);
  constexpr int kHuge = std::numeric_limits<int>::max();
  EXPECT_THROW(raster.Redim(kHuge, kHuge, 1), std::bad_alloc);
  EXPECT_EQ(raster.NRows(), 0);
  EXPECT_EQ(raster.NCols(), 0);
  EXPECT_EQ(raster.W(), 1);
  EXPECT_TRUE(raster.HasNoDataValue());
  raster.Redim(3, 3, 2);
  Fill(raster, 1.0F);
  EXPECT_EQ(raster.At(2, 2), 1.0F);
}

TEST(Redim, OfOneHugeBlockIsCoarseAndCannotBeRefined) {
  CMultiScaleFloatMatrix raster = Made(5, 5, std::numeric_limits<int>::max(), 2.0F);
  EXPECT_EQ(raster.At(4, 4), 2.0F);
  EXPECT_THROW(raster.FineCell(0, 0, true), std::bad_alloc);
  EXPECT_EQ(raster.At(4, 4), 2.0F);
  EXPECT_FALSE(raster.FineCell(0, 0));
}

TEST(BlockDivider, DividesExactly) {
  std::mt19937 random(31);
  constexpr int kLast = std::numeric_limits<int>::max();
  for (int width = 1; width < 3000; ++width) {
    CBlockDivider const divide(width);
    for (int number : {0, 1, width - 1, width, width + 1, kLast, kLast - 1, kLast / width * width,
                       kLast / width * width - 1})
      ASSERT_EQ(divide(number), number / width) << number << " / " << width;
    for (int i = 0; i < 100; ++i) {
      int const number = static_cast<int>(random() >> 1);
      ASSERT_EQ(divide(number), number / width) << number << " / " << width;
    }
  }
  for (int i = 0; i < 100000; ++i) {
    int const width = static_cast<int>(random() >> 1) | 1;
    int const number = static_cast<int>(random() >> 1);
    ASSERT_EQ(CBlockDivider(width)(number), number / width) << number << " / " << width;
  }
}

// A raster written naively: a value for every cell, and the set of fine blocks.
struct NaiveRaster {
  int rows = 0;
  int cols = 0;
  int width = 1;
  std::vector<int> cells;
  std::map<std::pair<int, int>, bool> fine;

  int &Cell(int row, int col) { return cells[static_cast<std::size_t>(row * cols + col)]; }
  bool IsFine(int row, int col) { return width < 2 || fine[{row / width, col / width}]; }
  template <class Visit>
  void EachOfBlock(int row, int col, Visit visit) {
    for (int r = row / width * width; r < std::min(rows, row / width * width + width); ++r)
      for (int c = col / width * width; c < std::min(cols, col / width * width + width); ++c)
        visit(Cell(r, c));
  }
  void Set(int row, int col, int value) {
    if (IsFine(row, col)) {
      Cell(row, col) = value;
    } else {
      EachOfBlock(row, col, [value](int &cell) { cell = value; });
    }
  }
  void SetFine(int row, int col, bool to) {
    if (width < 2 || IsFine(row, col) == to) return;
    int const value = Cell(row, col);
    fine[{row / width, col / width}] = to;
    if (!to) EachOfBlock(row, col, [value](int &cell) { cell = value; });
  }
};

TYPED_TEST(MultiScaleMatrix, BehavesAsADenseGridWithASetOfFineBlocks) {
  constexpr unsigned kSeed = 2101;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 60; ++round) {
    NaiveRaster naive;
    naive.rows = static_cast<int>(random() % 20) + 1;
    naive.cols = static_cast<int>(random() % 20) + 1;
    naive.width = static_cast<int>(random() % 6) + 1;
    naive.cells.assign(static_cast<std::size_t>(naive.rows * naive.cols), 0);
    CMultiScaleMatrix<TypeParam> raster;
    raster.Redim(naive.rows, naive.cols, naive.width);
    Fill(raster, TypeParam{0});
    for (int step = 0; step < 300; ++step) {
      int const row = static_cast<int>(random() % static_cast<unsigned>(naive.rows));
      int const col = static_cast<int>(random() % static_cast<unsigned>(naive.cols));
      int const value = static_cast<int>(random() % 100);
      bool const fine = random() % 2 == 0;
      if (random() % 3 == 0) {
        naive.SetFine(row, col, fine);
        raster.FineCell(row, col, fine);
      } else {
        naive.Set(row, col, value);
        raster.At(row, col) = static_cast<TypeParam>(value);
      }
    }
    std::vector<TypeParam> line(static_cast<std::size_t>(naive.cols));
    for (int row = 0; row < naive.rows; ++row) {
      CRasterAccess::ReadRow(raster, row, 0, naive.cols, line.data());
      for (int col = 0; col < naive.cols; ++col) {
        ASSERT_EQ(raster.At(row, col), static_cast<TypeParam>(naive.Cell(row, col))) << round;
        ASSERT_EQ(line[static_cast<std::size_t>(col)], raster.At(row, col));
        ASSERT_EQ(raster.FineCell(row, col), naive.IsFine(row, col));
      }
    }
  }
}

TEST(RowAccess, WritingARowLeavesTheLastCellOfEachCoarseBlock) {
  CMultiScaleFloatMatrix raster = Made(4, 7, 3);
  raster.FineCell(0, 3, true);
  std::vector<float> const row{1, 2, 3, 4, 5, 6, 7};
  CRasterAccess::WriteRow(raster, 1, row.data());
  EXPECT_EQ(raster.At(0, 0), 3.0F);
  EXPECT_EQ(raster.At(1, 3), 4.0F);
  EXPECT_EQ(raster.At(1, 5), 6.0F);
  EXPECT_EQ(raster.At(0, 3), 0.0F);
  EXPECT_EQ(raster.At(1, 6), 7.0F);
}

}  // namespace
