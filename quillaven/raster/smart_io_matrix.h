// A plain matrix that is indexed as a two-level array through one pointer.
//
//   CSmartIOFloatMatrix matrix;
//   matrix.Resize(3, 4);
//   matrix.m_ppRows[2][3] = 1.5F;
//
// The cells lie in one contiguous run, row after row. In front of the row pointers lies a header
// with the shape and the no-data settings, so that they travel with the handle. Cells are not
// initialised, and no index is tested.

#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <quillaven/platform/api.h>

/// What lies in front of the row pointers.
struct CSmartIOHeader {
  std::uint32_t m_nMagic = 0x12345678;  ///< written, never tested
  std::int32_t m_nHeaderRows = 0;
  std::int32_t m_nHeaderCols = 0;
  bool m_bHasNoData = false;
  float m_fNoData = -9999.0F;  ///< a float for all element types
};

template <class T>
class CSmartIOMatrix {
 public:
  CSmartIOMatrix() = default;
  /// Deep copies, no-data settings included. A source without a table gives a target without one.
  CSmartIOMatrix(CSmartIOMatrix const &other);
  CSmartIOMatrix &operator=(CSmartIOMatrix const &other);
  /// Moves hand over the one handle, and leave a matrix without a table behind.
  CSmartIOMatrix(CSmartIOMatrix &&other) noexcept
      : m_ppRows(std::exchange(other.m_ppRows, nullptr)) {}
  CSmartIOMatrix &operator=(CSmartIOMatrix &&other) noexcept {
    std::swap(m_ppRows, other.m_ppRows);
    return *this;
  }
  virtual ~CSmartIOMatrix();

  /// Gives the matrix a shape. The same shape as before changes nothing; any other loses the cells
  /// and keeps the no-data settings. With rows or cols below 1 there are no cells and all row
  /// pointers are null. Throws std::bad_alloc, with the matrix left empty and its settings kept.
  void Resize(int rows, int cols);
  /// Releases everything, the header included.
  void Release();

  int Rows() const { return m_ppRows != nullptr ? Header()->m_nHeaderRows : 0; }
  int Cols() const { return m_ppRows != nullptr ? Header()->m_nHeaderCols : 0; }
  bool HasNoDataValue() const { return m_ppRows != nullptr && Header()->m_bHasNoData; }
  float NoDataValue() const {
    return m_ppRows != nullptr ? Header()->m_fNoData : CSmartIOHeader().m_fNoData;
  }
  /// Makes a header without cells if there is none yet, so that settings can come before the shape.
  void SetNoDataValue(bool has, float value);

  /// Bytes allocated: header, row pointers and cells.
  std::size_t BytesOwned() const;

  T **m_ppRows = nullptr;  ///< the one handle; null until the first Resize or SetNoDataValue

 private:
  // The header, rounded up so that the row pointers behind it are aligned.
  static constexpr std::size_t kHeaderBytes =
      (sizeof(CSmartIOHeader) + alignof(T *) - 1) / alignof(T *) * alignof(T *);

  CSmartIOHeader *Header() const {
    return reinterpret_cast<CSmartIOHeader *>(reinterpret_cast<char *>(m_ppRows) - kHeaderBytes);
  }
  static T **MakeTable(CSmartIOHeader const &header);
  void ReleaseCells();
  std::size_t CellCount() const;
};

QUILLAVEN_API_INSTANCE(CSmartIOMatrix<float>);
QUILLAVEN_API_INSTANCE(CSmartIOMatrix<short>);
QUILLAVEN_API_INSTANCE(CSmartIOMatrix<unsigned char>);

using CSmartIOFloatMatrix = CSmartIOMatrix<float>;
using CSmartIOShortMatrix = CSmartIOMatrix<short>;
using CSmartIOByteMatrix = CSmartIOMatrix<unsigned char>;
