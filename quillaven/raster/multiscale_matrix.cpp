#include <algorithm>
#include <limits>
#include <new>

#include <quillaven/raster/multiscale_matrix.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/resolution_defaults_internal.h>

void CFineIndex::Resize(int rows, int cols) {
  if (rows == m_nRows && cols == m_nCols) return;
  CFineIndex resized;
  resized.m_nRows = rows;
  resized.m_nCols = cols;
  resized.m_Entries.resize(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
  int const bothCols = std::min(cols, m_nCols);
  for (int row = 0; row < std::min(rows, m_nRows); ++row)
    std::copy_n((*this)[row], bothCols, resized[row]);
  *this = std::move(resized);
}

std::int32_t CFineIndex::Largest() const {
  return m_Entries.empty() ? 0 : *std::max_element(m_Entries.begin(), m_Entries.end());
}

template <class T>
CMultiScaleMatrix<T> &CMultiScaleMatrix<T>::operator=(CMultiScaleMatrix const &other) {
  if (this == &other) return *this;
  // The parts that allocate come first, so that a failure leaves this raster as it was.
  CSmartIOMatrix<T> coarse(other.m_Coarse);
  CFineBlockPool<T> pool(other.m_Pool);
  m_FineIndex = other.m_FineIndex;
  m_Spare = other.m_Spare;
  m_Pool = std::move(pool);
  std::swap(m_Coarse.m_ppRows, coarse.m_ppRows);
  m_nRows = other.m_nRows;
  m_nCols = other.m_nCols;
  m_nResolution = other.m_nResolution;
  m_Divide = other.m_Divide;
  return *this;
}

template <class T>
bool CMultiScaleMatrix<T>::GetSave(int row, int col, T &out) const {
  if (!Holds(row, col)) return false;
  out = At(row, col);
  return true;
}

template <class T>
bool CMultiScaleMatrix<T>::FineCell(int row, int col) const {
  if (m_nResolution < 2) return true;
  return Holds(row, col) && m_FineIndex[m_Divide(row)][m_Divide(col)] != 0;
}

template <class T>
void CMultiScaleMatrix<T>::FineCell(int row, int col, bool fine) {
  if (m_nResolution < 2 || !Holds(row, col) || FineCell(row, col) == fine) return;
  if (fine) {
    Refine(m_Divide(row), m_Divide(col));
  } else {
    Coarsen(row, col);
  }
}

// There is no averaging: the block takes the value of the cell that the caller names.
template <class T>
void CMultiScaleMatrix<T>::Coarsen(int row, int col) {
  int const blockRow = m_Divide(row);
  int const blockCol = m_Divide(col);
  T const value = At(row, col);
  m_Pool.ReleaseSlot(m_FineIndex[blockRow][blockCol] - 1);  // may run out of memory, so comes first
  m_FineIndex[blockRow][blockCol] = 0;
  CoarseAt(blockRow, blockCol) = value;
}

template <class T>
void CMultiScaleMatrix<T>::Refine(int blockRow, int blockCol) {
  int const slot = m_Pool.AcquireSlot();
  m_Pool.MarkInUse(slot);
  m_FineIndex[blockRow][blockCol] = slot + 1;
  std::fill_n(m_Pool.Cells(slot), m_nResolution * m_nResolution, CoarseAt(blockRow, blockCol));
}

template <class T>
void CMultiScaleMatrix<T>::Redim(int rows, int cols, int resolution) {
  m_nRows = rows;
  m_nCols = cols;
  m_nResolution = resolution;
  m_Divide = CBlockDivider(resolution);
  try {
    Reshape();
  } catch (...) {
    m_nRows = 0;
    m_nCols = 0;
    m_nResolution = 1;
    m_Coarse.Resize(0, 0);
    m_FineIndex = {};
    throw;
  }
}

template <class T>
void CMultiScaleMatrix<T>::Reshape() {
  int const blockRows = CRasterAccess::BlocksAlong(m_nRows, m_nResolution);
  int const blockCols = CRasterAccess::BlocksAlong(m_nCols, m_nResolution);
  m_Coarse.Resize(blockRows, blockCols);
  if (m_nResolution < 2) {
    // The pool stays as it is, unreachable, until a resolution of 2 or more comes.
    m_FineIndex = {};
    return;
  }
  m_FineIndex.Resize(blockRows, blockCols);
  m_Pool.Reset(m_nResolution);
  if (DefaultResolutionMapInForce() == nullptr) {
    m_FineIndex.Fill(0);
  } else {
    FollowDefaultResolutionMap();
  }
}

// Blocks that the map has as fine get a slot each, with cells that are not initialised. All other
// entries are not written, so those of an earlier shape still name the slots of that shape; storage
// is provided behind them, so that reading them is harmless.
template <class T>
void CMultiScaleMatrix<T>::FollowDefaultResolutionMap() {
  CMultiScaleByteMatrix const &map = *DefaultResolutionMapInForce();
  CFineIndex const &mapIndex = CRasterAccess::FineIndex(map);
  int const blockRows = std::min({m_FineIndex.Rows(), mapIndex.Rows(),
                                  CRasterAccess::BlocksAlong(map.NRows(), m_nResolution)});
  int const blockCols = std::min({m_FineIndex.Cols(), mapIndex.Cols(),
                                  CRasterAccess::BlocksAlong(map.NCols(), m_nResolution)});
  for (int blockRow = 0; blockRow < blockRows; ++blockRow) {
    for (int blockCol = 0; blockCol < blockCols; ++blockCol) {
      if (mapIndex[blockRow][blockCol] == 0) continue;
      int const slot = m_Pool.AcquireSlot();
      m_Pool.MarkInUse(slot);
      m_FineIndex[blockRow][blockCol] = slot + 1;
    }
  }
  m_Pool.ProvideStorageBelow(m_FineIndex.Largest());
}

template <class T>
void CMultiScaleMatrix<T>::Destruct() {
  m_Coarse.Release();
  m_nRows = 0;
  m_nCols = 0;
}

template class CMultiScaleMatrix<float>;
template class CMultiScaleMatrix<short>;
template class CMultiScaleMatrix<unsigned char>;
