// What rasters do when memory runs out, and where they take none.

#include <limits>
#include <new>

#include <gtest/gtest.h>

#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/allocation_count.h"

namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kHuge = 1 << 20;  // the pool block of such a block has 2^48 cells

template <class T>
class RasterMemory : public testing::Test {
 protected:
  ~RasterMemory() override { DefaultResolutionMap(nullptr); }
};

using Elements = testing::Types<float, short, unsigned char>;
TYPED_TEST_SUITE(RasterMemory, Elements);

template <class T>
CMultiScaleMatrix<T> Make(int rows, int cols, int resolution, T value) {
  CMultiScaleMatrix<T> raster;
  raster.Redim(rows, cols, resolution);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col) raster.At(row, col) = value;
  return raster;
}

template <class T>
void ExpectEmptyAndUsable(CMultiScaleMatrix<T> &raster) {
  EXPECT_EQ(raster.NRows(), 0);
  EXPECT_EQ(raster.NCols(), 0);
  EXPECT_EQ(raster.W(), 1);
  T value{};
  EXPECT_FALSE(raster.GetSave(0, 0, value));
  raster.FineCell(0, 0, true);
  DefaultResolutionMap(nullptr);
  raster.Redim(4, 4, 2);
  raster.FineCell(0, 0, true);
  raster.At(1, 1) = T{6};
  EXPECT_EQ(raster.At(1, 1), T{6});
  EXPECT_EQ(CRasterAccess::FineIndex(raster)[0][0], 256);
}

TYPED_TEST(RasterMemory, RedimToASizeThatNoMemoryHoldsLeavesAnEmptyRaster) {
  auto raster = Make<TypeParam>(4, 4, 2, TypeParam{1});
  raster.SetNoDataValue(true, 3.0F);
  raster.FineCell(0, 0, true);
  EXPECT_THROW(raster.Redim(kMaxInt, kMaxInt, 1), std::bad_alloc);
  EXPECT_TRUE(raster.HasNoDataValue());
  EXPECT_EQ(raster.NoDataValue(), 3.0F);
  ExpectEmptyAndUsable(raster);
}

TYPED_TEST(RasterMemory, RedimLeavesAnEmptyRasterWhicheverAllocationFails) {
  CMultiScaleByteMatrix map;
  map.Redim(12, 12, 2);
  map.FineCell(3, 3, true);
  int failures = 0;
  for (int failing = 1;; ++failing) {
    ASSERT_LT(failing, 100);
    auto raster = Make<TypeParam>(6, 6, 2, TypeParam{1});
    raster.SetNoDataValue(true, 3.0F);
    raster.FineCell(0, 0, true);
    DefaultResolutionMap(&map);
    bool failed = false;
    {
      FailingAllocation const fixture(failing);
      try {
        raster.Redim(12, 12, 2);
      } catch (std::bad_alloc const &) {
        failed = true;
      }
    }
    if (!failed) break;
    ++failures;
    EXPECT_EQ(raster.NoDataValue(), 3.0F);
    ExpectEmptyAndUsable(raster);
  }
  EXPECT_GE(failures, 5);
}

TYPED_TEST(RasterMemory, RefiningABlockThatNoMemoryHoldsChangesNothing) {
  CMultiScaleMatrix<TypeParam> raster;
  for (int width : {kHuge, kMaxInt}) {
    raster.Redim(3, 3, width);
    raster.At(0, 0) = TypeParam{5};
    EXPECT_THROW(raster.FineCell(1, 1, true), std::bad_alloc);
    EXPECT_FALSE(raster.FineCell(1, 1));
    EXPECT_EQ(raster.At(2, 2), TypeParam{5});
    EXPECT_EQ(CRasterAccess::Pool(raster).SlotCount(), 0);
  }
}

TYPED_TEST(RasterMemory, RedimUnderAMapWithBlocksThatNoMemoryHoldsLeavesAnEmptyRaster) {
  CMultiScaleByteMatrix map;
  map.Redim(3, 3, 2);
  map.FineCell(0, 0, true);
  DefaultResolutionMap(&map);
  CMultiScaleMatrix<TypeParam> raster;
  EXPECT_THROW(raster.Redim(3, 3, kHuge), std::bad_alloc);
  ExpectEmptyAndUsable(raster);
}

TYPED_TEST(RasterMemory, RefiningChangesNothingWhicheverAllocationFails) {
  int failures = 0;
  for (int failing = 1;; ++failing) {
    ASSERT_LT(failing, 100);
    auto raster = Make<TypeParam>(40, 40, 1 + 1, TypeParam{1});
    for (int block = 0; block < 256; ++block) raster.FineCell(block / 20 * 2, block % 20 * 2, true);
    auto copy = raster;  // its lists have no room to spare
    bool failed = false;
    {
      FailingAllocation const fixture(failing);
      try {
        copy.FineCell(39, 39, true);
      } catch (std::bad_alloc const &) {
        failed = true;
      }
    }
    if (!failed) {
      EXPECT_EQ(CRasterAccess::FineIndex(copy)[19][19], 512);
      break;
    }
    ++failures;
    EXPECT_FALSE(copy.FineCell(39, 39));
    EXPECT_EQ(CRasterAccess::Pool(copy).SlotCount(), 256);
    EXPECT_EQ(copy.At(0, 0), TypeParam{1});
    copy.FineCell(39, 39, true);
    EXPECT_EQ(CRasterAccess::FineIndex(copy)[19][19], 512);
    EXPECT_EQ(copy.At(39, 39), TypeParam{1});
  }
  EXPECT_GE(failures, 4);
}

TYPED_TEST(RasterMemory, CoarseningChangesNothingWhenItFails) {
  auto raster = Make<TypeParam>(40, 40, 2, TypeParam{1});
  for (int block = 0; block < 256; ++block) raster.FineCell(block / 20 * 2, block % 20 * 2, true);
  auto copy = raster;
  copy.At(1, 1) = TypeParam{9};
  {
    FailingAllocation const fixture(1);
    EXPECT_THROW(copy.FineCell(1, 1, false), std::bad_alloc);
  }
  EXPECT_TRUE(copy.FineCell(1, 1));
  EXPECT_EQ(copy.At(0, 0), TypeParam{1});
  EXPECT_EQ(copy.At(1, 1), TypeParam{9});
  copy.FineCell(1, 1, false);
  EXPECT_EQ(copy.At(0, 0), TypeParam{9});
}

TYPED_TEST(RasterMemory, AnAssignmentThatFailsLeavesTheTargetAsItIs) {
  auto source = Make<TypeParam>(9, 9, 3, TypeParam{1});
  source.SetNoDataValue(true, 2.0F);
  source.FineCell(0, 0, true);
  int failures = 0;
  for (int failing = 1;; ++failing) {
    ASSERT_LT(failing, 100);
    auto target = Make<TypeParam>(4, 4, 2, TypeParam{7});
    bool failed = false;
    {
      FailingAllocation const fixture(failing);
      try {
        target = source;
      } catch (std::bad_alloc const &) {
        failed = true;
      }
    }
    if (!failed) {
      EXPECT_EQ(target.At(8, 8), TypeParam{1});
      break;
    }
    ++failures;
    EXPECT_EQ(target.NRows(), 4);
    EXPECT_EQ(target.At(3, 3), TypeParam{7});
  }
  EXPECT_GE(failures, 5);
}

TYPED_TEST(RasterMemory, APlainMatrixKeepsItsSettingWhenAResizeFails) {
  CSmartIOMatrix<TypeParam> matrix;
  EXPECT_THROW(matrix.Resize(kMaxInt, kMaxInt), std::bad_alloc);
  EXPECT_EQ(matrix.m_ppRows, nullptr);
  matrix.Resize(3, 3);
  matrix.SetNoDataValue(true, 4.0F);
  EXPECT_THROW(matrix.Resize(kMaxInt, kMaxInt), std::bad_alloc);
  EXPECT_EQ(matrix.Rows(), 0);
  EXPECT_EQ(matrix.NoDataValue(), 4.0F);
  {
    FailingAllocation const fixture(1);  // the row table, after the cells
    EXPECT_THROW(matrix.Resize(5, 5), std::bad_alloc);
  }
  matrix.Resize(2, 2);
  EXPECT_EQ(matrix.Rows(), 2);
  EXPECT_TRUE(matrix.HasNoDataValue());
}

TEST(RasterMemoryUse, WalksOverRastersAllocateNothing) {
  for (int width : {1, 4}) {
    auto floats = Make<float>(21, 22, width, 1.0F);
    floats.FineCell(0, 0, true);
    floats.FineCell(20, 20, true);
    auto bytes = Make<unsigned char>(21, 22, width, 1);
    auto const source = Make<float>(21, 22, 3, 2.0F);
    auto const alike = floats;
    struct : CFloatMapFunc {
      float Eval(int row, int col) override { return static_cast<float>(row + col); }
    } function;
    long const before = AllocationCount();
    AssignMultiScaleFloatMatrix(floats, 0.0F);
    AssignMultiScaleByteMatrix(bytes, 0);
    CopyMultiScaleFloatMatrix(floats, source);
    CopyMultiScaleFloatMatrix(floats, alike);
    MultiScaleFloatMatrixEvalMapFunc(floats, function);
    floats.At(3, 3) = floats[4][4];
    EXPECT_EQ(AllocationCount(), before);
  }
}

TEST(RasterMemoryUse, AFineBlockCostsAnAllocationOnceIn256) {
  auto raster = Make<float>(80, 80, 2, 1.0F);
  raster.FineCell(0, 0, true);
  long const before = AllocationCount();
  for (int block = 1; block < 256; ++block) raster.FineCell(block / 40 * 2, block % 40 * 2, true);
  EXPECT_EQ(AllocationCount(), before);
}

// At most a tenth more than the stored values and 4 bytes for each block.
TEST(RasterMemoryUse, KeepsToTheStoredValuesAndAnIndex) {
  auto raster = Make<float>(1000, 1000, 8, 1.0F);
  for (int block = 0; block < 1536; ++block)
    raster.FineCell(block * 10 / 125 * 8, block * 10 % 125 * 8, true);
  double const values = (1536.0 * 64 + 125 * 125 - 1536) * sizeof(float);
  EXPECT_LE(static_cast<double>(CRasterAccess::BytesOwned(raster)), 1.1 * values + 4.0 * 125 * 125);
  auto const oneScale = Make<float>(1000, 1000, 1, 1.0F);
  EXPECT_LE(static_cast<double>(CRasterAccess::BytesOwned(oneScale)), 1.1 * 4.0 * 1000 * 1000);
}

}  // namespace
