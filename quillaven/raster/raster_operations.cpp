#include <algorithm>
#include <cstdint>
#include <vector>

#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>
#include <quillaven/raster/resolution_defaults_internal.h>

namespace {

std::int32_t g_nDefaultFineResolution = 1;
CMultiScaleByteMatrix *g_pDefaultResolutionMap = nullptr;  // not owned

// Cells that lie in rows side by side, and where on the raster they are.
template <class T>
struct CellRectangle {
  int row;
  int col;
  int height;
  int width;
  T *cells;
  int stride;  // from one row of cells to the next
};

// Walks a raster block by block in row order: `coarse(r0, c0, cell)` for a coarse block with its
// top left cell, `fine(rectangle)` for a fine block, cut at the raster's edge. At W = 1 each row of
// the raster is a rectangle. Sizes below 1 hold no block.
template <class T, class Coarse, class Fine>
void WalkBlocks(CMultiScaleMatrix<T> const &raster, Coarse coarse, Fine fine) {
  int const rows = raster.NRows();
  int const cols = raster.NCols();
  int const width = raster.W();
  if (rows < 1 || cols < 1) return;
  if (width < 2) {
    for (int row = 0; row < rows; ++row)
      fine(CellRectangle<T>{row, 0, 1, cols, CRasterAccess::CoarseRow(raster, row), cols});
    return;
  }
  int const blockCols = CRasterAccess::BlocksAlong(cols, width);
  for (int blockRow = 0; blockRow < CRasterAccess::BlocksAlong(rows, width); ++blockRow) {
    std::int32_t const *index = CRasterAccess::IndexRow(raster, blockRow);
    T *values = CRasterAccess::CoarseRow(raster, blockRow);
    int const r0 = blockRow * width;
    int const height = std::min(width, rows - r0);
    for (int blockCol = 0; blockCol < blockCols; ++blockCol) {
      int const c0 = blockCol * width;
      std::int32_t const entry = index[blockCol];
      if (entry == 0) {
        coarse(r0, c0, values[blockCol]);
        continue;
      }
      fine(CellRectangle<T>{r0, c0, height, std::min(width, cols - c0),
                            CRasterAccess::FineRow(raster, entry, 0), width});
    }
  }
}

// Whether a fine block reaches beyond the raster's edge. Nobody can address its cells there, and
// they keep what they hold: then the pool cannot be written in one go.
template <class T>
bool HasFineBlockAcrossTheEdge(CMultiScaleMatrix<T> const &raster) {
  CFineIndex const &index = CRasterAccess::FineIndex(raster);
  auto const isFine = [](std::int32_t entry) { return entry != 0; };
  std::int32_t const *lastRow = index[index.Rows() - 1];
  if (raster.NRows() % raster.W() > 0 && std::any_of(lastRow, lastRow + index.Cols(), isFine))
    return true;
  for (int row = 0; raster.NCols() % raster.W() > 0 && row < index.Rows(); ++row)
    if (isFine(index[row][index.Cols() - 1])) return true;
  return false;
}

// Sets the coarse blocks of a row to `value(blockCol)`. The cells that belong to fine blocks are
// written back as they are, which leaves a loop without branches.
template <class T, class Value>
void SetCoarseBlocks(CMultiScaleMatrix<T> &raster, int blockRow, Value value) {
  std::int32_t const *index = CRasterAccess::IndexRow(raster, blockRow);
  T *cells = CRasterAccess::CoarseRow(raster, blockRow);
  int const count = CRasterAccess::FineIndex(raster).Cols();
  for (int blockCol = 0; blockCol < count; ++blockCol) {
    T const set = value(blockCol);
    T const kept = cells[blockCol];
    cells[blockCol] = index[blockCol] == 0 ? set : kept;
  }
}

// std::fill_n in steps of a fixed count, which the compiler turns into a few wide stores.
template <class T>
void FillRun(T *cells, std::size_t count, T value) {
  constexpr std::size_t kStep = 64;
  for (; count >= kStep; cells += kStep, count -= kStep) std::fill_n(cells, kStep, value);
  std::fill_n(cells, count, value);
}

// A fine block within the raster lies in one run of cells; one across the edge is filled by rows.
template <class T>
void FillRectangle(CellRectangle<T> const &part, T value) {
  bool const isWhole = part.width == part.stride;
  auto const run = static_cast<std::size_t>(isWhole ? part.height * part.width : part.width);
  for (int i = 0; i < (isWhole ? 1 : part.height); ++i)
    FillRun(part.cells + i * part.stride, run, value);
}

// At two scales the pool is filled in the order of its storage, free slots and all, which is
// faster than block by block.
template <class T>
void Assign(CMultiScaleMatrix<T> &matrix, T value) {
  if (matrix.NRows() < 1 || matrix.NCols() < 1) return;
  if (matrix.W() < 2) {
    for (int row = 0; row < matrix.NRows(); ++row)
      FillRun(CRasterAccess::CoarseRow(matrix, row), static_cast<std::size_t>(matrix.NCols()),
              value);
    return;
  }
  if (HasFineBlockAcrossTheEdge(matrix)) {
    WalkBlocks(
        matrix, [value](int, int, T &cell) { cell = value; },
        [value](CellRectangle<T> const &part) { FillRectangle(part, value); });
    return;
  }
  for (int blockRow = 0; blockRow < CRasterAccess::FineIndex(matrix).Rows(); ++blockRow)
    SetCoarseBlocks(matrix, blockRow, [value](int) { return value; });
  for (CSmartIOMatrix<T> const &block : CRasterAccess::Pool(matrix).m_Blocks)
    FillRun(block.m_ppRows[0], static_cast<std::size_t>(block.Cols()), value);
}

// A row of cells. A function of its own, so that the few numbers that it needs stay in registers
// across the calls, and unrolled, as a taken branch more or less is a tenth of a call's time.
template <class T>
[[gnu::noinline]] void EvalRow(CMapFunc<T> &function, int row, int col, T *cells, T *end) {
#pragma GCC unroll 8
  for (; cells != end; ++cells, ++col) *cells = function.Eval(row, col);
}

template <class T>
void EvalRectangle(CellRectangle<T> const &part, CMapFunc<T> &function) {
  T *cells = part.cells;
  for (int i = 0; i < part.height; ++i, cells += part.stride)
    EvalRow(function, part.row + i, part.col, cells, cells + part.width);
}

template <class T>
void Eval(CMultiScaleMatrix<T> &matrix, CMapFunc<T> &function) {
  WalkBlocks(
      matrix, [&function](int r0, int c0, T &cell) { cell = function.Eval(r0, c0); },
      [&function](CellRectangle<T> const &part) { EvalRectangle(part, function); });
}

// The offset of the sample of a coarse block that begins at `origin`: half a block, or half of what
// the last block holds where half a block would lie outside.
int SampleOffset(int origin, int size, int width) {
  int const half = width / 2;
  return origin < size - half ? half : size % width / 2;
}

// A raster or a plain matrix as the source of a copy: one cell, and a stretch of a row.
template <class T>
struct RasterSource {
  CMultiScaleMatrix<T> const &raster;

  int Rows() const { return raster.NRows(); }
  int Cols() const { return raster.NCols(); }
  T At(int row, int col) const { return raster.At(row, col); }
  void Read(int row, int col, int count, T *out) const {
    CRasterAccess::ReadRow(raster, row, col, count, out);
  }
};

template <class T>
struct PlainSource {
  CSmartIOMatrix<T> const &matrix;

  int Rows() const { return matrix.Rows(); }
  int Cols() const { return matrix.Cols(); }
  T At(int row, int col) const { return matrix.m_ppRows[row][col]; }
  void Read(int row, int col, int count, T *out) const {
    std::copy_n(matrix.m_ppRows[row] + col, count, out);
  }
};

// Cells that the source does not have keep their values.
template <class T, class Source>
void CopyByBlocks(CMultiScaleMatrix<T> &destination, Source source) {
  int const rows = destination.NRows();
  int const cols = destination.NCols();
  int const width = std::max(destination.W(), 1);
  WalkBlocks(
      destination,
      [&](int r0, int c0, T &cell) {
        int const row = r0 + SampleOffset(r0, rows, width);
        int const col = c0 + SampleOffset(c0, cols, width);
        if (row < source.Rows() && col < source.Cols()) cell = source.At(row, col);
      },
      [&](CellRectangle<T> const &part) {
        int const height = std::min(part.height, source.Rows() - part.row);
        int const held = std::min(part.width, source.Cols() - part.col);
        for (int i = 0; i < height && held > 0; ++i)
          source.Read(part.row + i, part.col, held, part.cells + i * part.stride);
      });
}

// Whether two rasters of two scales have the same shape with the same blocks in the same slots, as
// all have that were made under one resolution map.
template <class T>
bool AreAlike(CMultiScaleMatrix<T> const &a, CMultiScaleMatrix<T> const &b) {
  if (a.W() < 2 || a.W() != b.W() || a.NRows() != b.NRows() || a.NCols() != b.NCols()) return false;
  CFineIndex const &index = CRasterAccess::FineIndex(a);
  CFineIndex const &other = CRasterAccess::FineIndex(b);
  for (int row = 0; row < index.Rows(); ++row)
    if (!std::equal(index[row], index[row] + index.Cols(), other[row])) return false;
  return true;
}

template <class T>
void CopyRaster(CMultiScaleMatrix<T> &destination, CMultiScaleMatrix<T> const &source) {
  if (&destination == &source) return;
  if (destination.NRows() < 1 || destination.NCols() < 1 || !AreAlike(destination, source) ||
      HasFineBlockAcrossTheEdge(destination))
    return CopyByBlocks(destination, RasterSource<T>{source});
  for (int blockRow = 0; blockRow < CRasterAccess::FineIndex(source).Rows(); ++blockRow) {
    T const *coarse = CRasterAccess::CoarseRow(source, blockRow);
    SetCoarseBlocks(destination, blockRow, [coarse](int blockCol) { return coarse[blockCol]; });
  }
  std::vector<CSmartIOMatrix<T>> const &from = CRasterAccess::Pool(source).m_Blocks;
  std::vector<CSmartIOMatrix<T>> const &to = CRasterAccess::Pool(destination).m_Blocks;
  for (std::size_t i = 0; i < std::min(from.size(), to.size()); ++i)
    std::copy_n(from[i].m_ppRows[0], from[i].Cols(), to[i].m_ppRows[0]);
}

// The sample cells of the blocks along one side: the middle of each whole block, and the middle of
// the remainder of a ragged one.
template <class Visit>
void EachSample(int size, int width, Visit visit) {
  int const remainder = size % width;
  int const full = size - remainder;
  for (std::int64_t at = width / 2; at < full; at += width) visit(static_cast<int>(at));
  if (remainder > 0) visit(full + remainder / 2);
}

template <class T>
void UpdateResolution(CMultiScaleMatrix<T> &map, CMultiScaleByteMatrix &resMap, int resolution) {
  if (resolution < 2) return;
  EachSample(resMap.NRows(), resolution, [&](int row) {
    EachSample(resMap.NCols(), resolution,
               [&](int col) { map.FineCell(row, col, resMap.FineCell(row, col)); });
  });
}

}  // namespace

CMultiScaleByteMatrix const *DefaultResolutionMapInForce() {
  return g_pDefaultResolutionMap;
}

int DefaultFineResolution() {
  return g_nDefaultFineResolution;
}
void DefaultFineResolution(int resolution) {
  g_nDefaultFineResolution = resolution;
}
void DefaultResolutionMap(CMultiScaleByteMatrix *map) {
  g_pDefaultResolutionMap = map;
}

void UpdateResolutionOfMap(CMultiScaleFloatMatrix &map, CMultiScaleByteMatrix &resMap,
                           int resolution) {
  UpdateResolution(map, resMap, resolution);
}
void UpdateResolutionOfMap(CMultiScaleShortMatrix &map, CMultiScaleByteMatrix &resMap,
                           int resolution) {
  UpdateResolution(map, resMap, resolution);
}
void UpdateResolutionOfMap(CMultiScaleByteMatrix &map, CMultiScaleByteMatrix &resMap,
                           int resolution) {
  UpdateResolution(map, resMap, resolution);
}

void CopyMultiScaleFloatMatrix(CMultiScaleFloatMatrix &destination,
                               CMultiScaleFloatMatrix const &source) {
  CopyRaster(destination, source);
}
void CopyMultiScaleByteMatrix(CMultiScaleByteMatrix &destination,
                              CMultiScaleByteMatrix const &source) {
  CopyRaster(destination, source);
}
void CopyMultiScaleByteMatrix(CMultiScaleByteMatrix &destination,
                              CSmartIOByteMatrix const &source) {
  CopyByBlocks(destination, PlainSource<unsigned char>{source});
}

void AssignMultiScaleFloatMatrix(CMultiScaleFloatMatrix &matrix, float value) {
  Assign(matrix, value);
}
void AssignMultiScaleByteMatrix(CMultiScaleByteMatrix &matrix, unsigned char value) {
  Assign(matrix, value);
}

void MultiScaleFloatMatrixEvalMapFunc(CMultiScaleFloatMatrix &matrix, CFloatMapFunc &function) {
  Eval(matrix, function);
}
void MultiScaleShortMatrixEvalMapFunc(CMultiScaleShortMatrix &matrix, CShortMapFunc &function) {
  Eval(matrix, function);
}
void MultiScaleByteMatrixEvalMapFunc(CMultiScaleByteMatrix &matrix, CByteMapFunc &function) {
  Eval(matrix, function);
}
