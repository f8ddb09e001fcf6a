#include <algorithm>
#include <memory>
#include <new>

#include <quillaven/raster/smart_io_matrix.h>

template <class T>
std::size_t CSmartIOMatrix<T>::CellCount() const {
  if (Rows() < 1 || Cols() < 1) return 0;
  return static_cast<std::size_t>(Rows()) * static_cast<std::size_t>(Cols());
}

// A header with its row pointers and, for a shape of at least one cell, the cells. The run of cells
// belongs to row pointer 0.
template <class T>
T **CSmartIOMatrix<T>::MakeTable(CSmartIOHeader const &header) {
  auto const rows = static_cast<std::size_t>(std::max(header.m_nHeaderRows, 0));
  auto const cols = static_cast<std::size_t>(std::max(header.m_nHeaderCols, 0));
  std::unique_ptr<T[]> cells;
  if (rows > 0 && cols > 0) cells.reset(new T[rows * cols]);

  char *allocation = static_cast<char *>(::operator new(kHeaderBytes + rows * sizeof(T *)));
  new (allocation) CSmartIOHeader(header);
  T **table = reinterpret_cast<T **>(allocation + kHeaderBytes);
  for (std::size_t row = 0; row < rows; ++row)
    table[row] = cells != nullptr ? cells.get() + row * cols : nullptr;
  (void)cells.release();
  return table;  // NOLINT: the table owns the cells by its first row
}

template <class T>
CSmartIOMatrix<T>::CSmartIOMatrix(CSmartIOMatrix const &other) {
  if (other.m_ppRows == nullptr) return;
  m_ppRows = MakeTable(*other.Header());
  if (std::size_t const count = CellCount(); count > 0)
    std::copy_n(other.m_ppRows[0], count, m_ppRows[0]);
}

template <class T>
CSmartIOMatrix<T> &CSmartIOMatrix<T>::operator=(CSmartIOMatrix const &other) {
  if (this != &other) {
    CSmartIOMatrix copy(other);
    std::swap(m_ppRows, copy.m_ppRows);
  }
  return *this;
}

template <class T>
CSmartIOMatrix<T>::~CSmartIOMatrix() {
  Release();
}

// Leaves an empty matrix with its settings.
template <class T>
void CSmartIOMatrix<T>::ReleaseCells() {
  if (m_ppRows == nullptr) return;
  if (Rows() > 0) delete[] m_ppRows[0];
  Header()->m_nHeaderRows = 0;
  Header()->m_nHeaderCols = 0;
}

template <class T>
void CSmartIOMatrix<T>::Release() {
  if (m_ppRows == nullptr) return;
  ReleaseCells();
  ::operator delete(static_cast<void *>(Header()));
  m_ppRows = nullptr;
}

template <class T>
void CSmartIOMatrix<T>::Resize(int rows, int cols) {
  if (rows == Rows() && cols == Cols()) return;
  CSmartIOHeader header;
  header.m_bHasNoData = HasNoDataValue();
  header.m_fNoData = NoDataValue();
  ReleaseCells();  // first, so that two sets of cells never stand side by side
  header.m_nHeaderRows = rows;
  header.m_nHeaderCols = cols;
  T **table = MakeTable(header);
  Release();
  m_ppRows = table;
}

template <class T>
void CSmartIOMatrix<T>::SetNoDataValue(bool has, float value) {
  if (m_ppRows == nullptr) m_ppRows = MakeTable({});
  Header()->m_bHasNoData = has;
  Header()->m_fNoData = value;
}

template <class T>
std::size_t CSmartIOMatrix<T>::BytesOwned() const {
  if (m_ppRows == nullptr) return 0;
  return kHeaderBytes + static_cast<std::size_t>(std::max(Rows(), 0)) * sizeof(T *) +
         CellCount() * sizeof(T);
}

template class CSmartIOMatrix<float>;
template class CSmartIOMatrix<short>;
template class CSmartIOMatrix<unsigned char>;
