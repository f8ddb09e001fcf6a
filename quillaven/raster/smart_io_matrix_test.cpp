#include <cstdint>

#include <gtest/gtest.h>

#include <quillaven/raster/smart_io_matrix.h>

namespace {

// The first field of the header that lies in front of the row pointers.
template <class T>
std::uint32_t Magic(CSmartIOMatrix<T> const &matrix) {
  constexpr std::size_t kHeader =
      (sizeof(CSmartIOHeader) + alignof(T *) - 1) / alignof(T *) * alignof(T *);
  return *reinterpret_cast<std::uint32_t const *>(reinterpret_cast<char const *>(matrix.m_ppRows) -
                                                  kHeader);
}

TEST(SmartIOMatrix, HasNoTableUntilItHasASize) {
  CSmartIOFloatMatrix const matrix;
  EXPECT_EQ(matrix.m_ppRows, nullptr);
  EXPECT_EQ(matrix.Rows(), 0);
  EXPECT_FALSE(matrix.HasNoDataValue());
  EXPECT_EQ(matrix.NoDataValue(), -9999.0F);
}

TEST(SmartIOMatrix, IsATwoLevelArrayOverOneRunOfCells) {
  CSmartIOShortMatrix matrix;
  matrix.Resize(3, 4);
  for (int row = 0; row < 3; ++row) EXPECT_EQ(matrix.m_ppRows[row], matrix.m_ppRows[0] + 4 * row);
  matrix.m_ppRows[2][3] = 7;
  EXPECT_EQ(matrix.m_ppRows[0][11], 7);
  EXPECT_EQ(Magic(matrix), 0x12345678U);
}

TEST(SmartIOMatrix, SameSizeKeepsTheCellsAndTheTable) {
  CSmartIOByteMatrix matrix;
  matrix.Resize(2, 2);
  unsigned char **table = matrix.m_ppRows;
  matrix.m_ppRows[1][1] = 9;
  matrix.Resize(2, 2);
  EXPECT_EQ(matrix.m_ppRows, table);
  EXPECT_EQ(matrix.m_ppRows[1][1], 9);
}

TEST(SmartIOMatrix, EmptyResizeOfAnEmptyMatrixMakesNoHeader) {
  CSmartIOFloatMatrix matrix;
  matrix.Resize(0, 0);
  EXPECT_EQ(matrix.m_ppRows, nullptr);
}

TEST(SmartIOMatrix, SettingsNeedNoCellsAndSurviveEveryResize) {
  CSmartIOFloatMatrix matrix;
  matrix.SetNoDataValue(true, 4.0F);
  EXPECT_NE(matrix.m_ppRows, nullptr);
  EXPECT_EQ(matrix.Rows(), 0);
  matrix.Resize(5, 5);
  matrix.Resize(0, 3);
  EXPECT_TRUE(matrix.HasNoDataValue());
  EXPECT_EQ(matrix.NoDataValue(), 4.0F);
}

TEST(SmartIOMatrix, WithoutColumnsAllRowPointersAreNull) {
  CSmartIOFloatMatrix matrix;
  matrix.Resize(3, 0);
  for (int row = 0; row < 3; ++row) EXPECT_EQ(matrix.m_ppRows[row], nullptr);
  matrix.Resize(-3, 4);
  EXPECT_EQ(matrix.Rows(), -3);
  CSmartIOFloatMatrix const copy(matrix);
  EXPECT_EQ(copy.Rows(), -3);
}

TEST(SmartIOMatrix, CopiesAreDeep) {
  CSmartIOFloatMatrix matrix;
  matrix.Resize(2, 2);
  matrix.SetNoDataValue(true, 1.0F);
  matrix.m_ppRows[1][0] = 3.0F;
  CSmartIOFloatMatrix const copy(matrix);
  matrix.m_ppRows[1][0] = 4.0F;
  EXPECT_EQ(copy.m_ppRows[1][0], 3.0F);
  EXPECT_TRUE(copy.HasNoDataValue());
}

}  // namespace
