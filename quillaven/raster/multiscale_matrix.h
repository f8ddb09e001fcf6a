// A raster whose blocks of W x W cells hold one value each, or one value for each cell.
//
//   CMultiScaleFloatMatrix raster;
//   raster.Redim(500, 800, 8);                 // coarse blocks of 8 x 8 cells
//   AssignMultiScaleFloatMatrix(raster, 0);
//   raster.FineCell(10, 20, true);             // the block of (10, 20) now has 64 values
//   raster[10][20] = 2.5F;                     // the same cell as raster.At(10, 20)
//
// Cells are addressed (row, col) of the fine grid, 0-based, whatever the scale of their block: a
// coarse block is one storage cell behind all its coordinates, and writing through one of them
// changes what the others read. With W = 1 there is no second scale and every cell counts as fine.
// Blocks at the right and bottom edge may reach beyond the raster.
//
// The no-data value is a property of the raster, a float for all element types; nothing here
// compares cells with it. Nothing here tests coordinates unless it says so. One thread at a time
// may change a raster; readers do not disturb each other. Exhausted memory is thrown as
// std::bad_alloc.

#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>
#include <vector>

#include <quillaven/platform/api.h>
#include <quillaven/raster/fine_block_pool.h>
#include <quillaven/raster/smart_io_matrix.h>

/// Which blocks are fine: 0 for a coarse block, otherwise slot + 1. One run, row after row.
class CFineIndex {
 public:
  int Rows() const { return m_nRows; }
  int Cols() const { return m_nCols; }
  std::int32_t const *operator[](int row) const { return m_Entries.data() + Offset(row); }
  std::int32_t *operator[](int row) { return m_Entries.data() + Offset(row); }

  /// Keeps the entries that both shapes have; the others are 0.
  void Resize(int rows, int cols);
  void Fill(std::int32_t entry) { m_Entries.assign(m_Entries.size(), entry); }
  std::int32_t Largest() const;
  std::size_t BytesOwned() const { return m_Entries.capacity() * sizeof(std::int32_t); }

 private:
  std::size_t Offset(int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_nCols);
  }

  std::vector<std::int32_t> m_Entries;
  int m_nRows = 0;
  int m_nCols = 0;
};

/// Divides row and column numbers by a fixed W: a multiplication and a shift that are exact for
/// every number from 0 to 2^31 - 1. Finding the block of a cell is the inner loop of everything.
class CBlockDivider {
 public:
  CBlockDivider() = default;
  explicit CBlockDivider(int width) {
    auto const divisor = static_cast<std::uint64_t>(width < 1 ? 1 : width);
    m_nShift = 31 + static_cast<int>(std::bit_width(divisor - 1));
    m_nFactor = ((std::uint64_t{1} << m_nShift) + divisor - 1) / divisor;
  }
  int operator()(int number) const {
    return static_cast<int>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(number)) * m_nFactor >> m_nShift);
  }

 private:
  std::uint64_t m_nFactor = std::uint64_t{1} << 31;
  int m_nShift = 31;
};

template <class T>
class CMultiScaleMatrix {
 public:
  /// What operator[] of the raster yields: one row, to be indexed by column.
  class CRowIndex {
   public:
    CRowIndex(CMultiScaleMatrix const *matrix, int row) : m_pMatrix(matrix), m_nRow(row) {}
    T &operator[](int col) const { return m_pMatrix->At(m_nRow, col); }

   private:
    CMultiScaleMatrix const *m_pMatrix;
    int m_nRow;
  };

  /// 0 rows, 0 columns, W = 1, no cells.
  CMultiScaleMatrix() = default;
  /// Deep copies: the two rasters share no storage, and slot numbers stay.
  CMultiScaleMatrix(CMultiScaleMatrix const &) = default;
  CMultiScaleMatrix &operator=(CMultiScaleMatrix const &other);
  ~CMultiScaleMatrix() = default;

  int NRows() const { return m_nRows; }
  int NCols() const { return m_nCols; }
  /// Cells along one side of a block.
  int W() const { return m_nResolution; }

  /// The storage of a cell, to be read and written. Not tested; no division, no allocation.
  T &At(int row, int col) const;
  CRowIndex operator[](int row) const { return {this, row}; }

  /// At with a test: false, and `out` as it was, for a cell that is none.
  bool GetSave(int row, int col, T &out) const;

  /// Whether the block of a cell is fine; true for every place at W = 1, else false outside the
  /// raster.
  bool FineCell(int row, int col) const;
  /// Brings the block of a cell to a scale. A block that becomes fine has its coarse value in every
  /// cell; one that becomes coarse keeps the value of exactly the cell that is named. Nothing
  /// happens at W = 1, outside the raster, or where the block has that scale already.
  void FineCell(int row, int col, bool fine);

  /// The settings for cells without data; -9999 and not in force until they are set. They can be
  /// made before the shape, and stay with every Redim.
  bool HasNoDataValue() const { return m_Coarse.HasNoDataValue(); }
  float NoDataValue() const { return m_Coarse.NoDataValue(); }
  void SetNoDataValue(bool has, float value) { m_Coarse.SetNoDataValue(has, value); }

  /// Gives the raster a shape. Fine values never survive; coarse values stay where the coarse grid
  /// keeps its shape, and are undefined otherwise. With W of 2 or more the fine blocks are those of
  /// the default resolution map, and none without one. Negative sizes make an empty raster. If
  /// memory runs out, std::bad_alloc leaves the raster empty.
  ///
  /// With a default resolution map, blocks that the map has as coarse keep the index entries of the
  /// shape before: a raster that had fine blocks still shows those as fine, with undefined values.
  void Redim(int rows, int cols, int resolution);

  /// Releases the coarse cells with the no-data settings; the raster then has no rows and columns.
  void Destruct();

 private:
  friend struct CRasterAccess;

  T &CoarseAt(int blockRow, int blockCol) const { return m_Coarse.m_ppRows[blockRow][blockCol]; }
  bool Holds(int row, int col) const {
    return 0 <= row && row < m_nRows && 0 <= col && col < m_nCols;
  }
  void Coarsen(int row, int col);
  void Refine(int blockRow, int blockCol);
  void Reshape();
  void FollowDefaultResolutionMap();

  // The short and byte rasters carry one more field, which stays empty.
  struct CNoSpare {};
  using CSpare = std::conditional_t<std::is_same_v<T, float>, CNoSpare, std::vector<std::int32_t>>;

  std::int32_t m_nRows = 0;
  std::int32_t m_nCols = 0;
  std::int32_t m_nResolution = 1;
  CBlockDivider m_Divide;      // by m_nResolution
  CSmartIOMatrix<T> m_Coarse;  // one cell for each block; its header has the no-data settings
  CFineBlockPool<T> m_Pool;
  CFineIndex m_FineIndex;  // empty when W is below 2
  [[no_unique_address]] CSpare m_Spare;
};

template <class T>
inline T &CMultiScaleMatrix<T>::At(int row, int col) const {
  if (m_nResolution < 2) return CoarseAt(row, col);
  int const blockRow = m_Divide(row);
  int const blockCol = m_Divide(col);
  std::int32_t const entry = m_FineIndex[blockRow][blockCol];
  if (entry == 0) return CoarseAt(blockRow, blockCol);
  int const i = row - blockRow * m_nResolution;
  int const j = col - blockCol * m_nResolution;
  return m_Pool.Cells(entry - 1)[i * m_Pool.m_nBlockWidth + j];
}

QUILLAVEN_API_INSTANCE(CMultiScaleMatrix<float>);
QUILLAVEN_API_INSTANCE(CMultiScaleMatrix<short>);
QUILLAVEN_API_INSTANCE(CMultiScaleMatrix<unsigned char>);

using CMultiScaleFloatMatrix = CMultiScaleMatrix<float>;
using CMultiScaleShortMatrix = CMultiScaleMatrix<short>;
using CMultiScaleByteMatrix = CMultiScaleMatrix<unsigned char>;
