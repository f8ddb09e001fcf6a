// The storage of a raster, for what works on whole rasters: rows of blocks, and rows of cells
// copied in one go.
//
//   std::vector<float> cells(raster.NCols());
//   CRasterAccess::ReadRow(raster, row, 0, raster.NCols(), cells.data());

#pragma once

#include <algorithm>
#include <cstdint>

#include <quillaven/raster/multiscale_matrix.h>

struct CRasterAccess {
  /// Blocks of `width` cells that cover `cells` cells; none for sizes below 1.
  static int BlocksAlong(int cells, int width) {
    if (cells < 1) return 0;
    std::int64_t const w = std::max(width, 1);
    return static_cast<int>((cells + w - 1) / w);
  }

  template <class T>
  static CFineIndex const &FineIndex(CMultiScaleMatrix<T> const &raster) {
    return raster.m_FineIndex;
  }
  template <class T>
  static CFineBlockPool<T> const &Pool(CMultiScaleMatrix<T> const &raster) {
    return raster.m_Pool;
  }
  template <class T>
  static CSmartIOMatrix<T> const &Coarse(CMultiScaleMatrix<T> const &raster) {
    return raster.m_Coarse;
  }
  /// The entries of a row of blocks, coarse values and index; the index is null at W below 2.
  template <class T>
  static T *CoarseRow(CMultiScaleMatrix<T> const &raster, int blockRow) {
    return raster.m_Coarse.m_ppRows[blockRow];
  }
  template <class T>
  static std::int32_t const *IndexRow(CMultiScaleMatrix<T> const &raster, int blockRow) {
    return raster.m_nResolution < 2 ? nullptr : raster.m_FineIndex[blockRow];
  }
  /// Row i of a fine block with that index entry: W cells.
  template <class T>
  static T *FineRow(CMultiScaleMatrix<T> const &raster, std::int32_t entry, int i) {
    return raster.m_Pool.Cells(entry - 1) + i * raster.m_Pool.m_nBlockWidth;
  }

  /// Copies `count` cells of a row, from column `first` on. They must lie on the raster.
  template <class T>
  static void ReadRow(CMultiScaleMatrix<T> const &raster, int row, int first, int count, T *out) {
    EachRun(raster, row, first, count, [&out](T *cells, int length, bool coarse) {
      if (coarse) {
        std::fill_n(out, length, *cells);
      } else {
        std::copy_n(cells, length, out);
      }
      out += length;
    });
  }

  /// The cells of a row from column `first` on: the raster's own where they lie side by side, else
  /// copied to `buffer`, which has room for `count` of them.
  template <class T>
  static T const *Row(CMultiScaleMatrix<T> const &raster, int row, int first, int count,
                      T *buffer) {
    if (raster.m_nResolution < 2 && count > 0) return CoarseRow(raster, row) + first;
    ReadRow(raster, row, first, count, buffer);
    return buffer;
  }

  /// Stores a whole row as if cell by cell: in a coarse block the last cell wins.
  template <class T>
  static void WriteRow(CMultiScaleMatrix<T> const &raster, int row, T const *in) {
    EachRun(raster, row, 0, raster.NCols(), [&in](T *cells, int length, bool coarse) {
      if (coarse) {
        *cells = in[length - 1];
      } else {
        std::copy_n(in, length, cells);
      }
      in += length;
    });
  }

  /// Bytes of everything that the raster allocated.
  template <class T>
  static std::size_t BytesOwned(CMultiScaleMatrix<T> const &raster) {
    return raster.m_Coarse.BytesOwned() + raster.m_Pool.BytesOwned() +
           raster.m_FineIndex.BytesOwned();
  }

 private:
  // Calls `visit(cells, length, coarse)` for each stretch of a row that lies in one piece of
  // storage.
  template <class T, class Visit>
  static void EachRun(CMultiScaleMatrix<T> const &raster, int row, int first, int count,
                      Visit visit) {
    if (count < 1) return;
    int const width = raster.m_nResolution;
    if (width < 2) {
      visit(CoarseRow(raster, row) + first, count, false);
      return;
    }
    int const blockRow = raster.m_Divide(row);
    std::int32_t const *index = IndexRow(raster, blockRow);
    T *coarse = CoarseRow(raster, blockRow);
    int const i = row - blockRow * width;
    int const end = first + count;
    for (int col = first; col < end;) {
      int const blockCol = raster.m_Divide(col);
      int const j = col - blockCol * width;
      int const length = std::min(width - j, end - col);
      std::int32_t const entry = index[blockCol];
      if (entry == 0) {
        visit(coarse + blockCol, length, true);
      } else {
        visit(FineRow(raster, entry, i) + j, length, false);
      }
      col += length;
    }
  }
};
