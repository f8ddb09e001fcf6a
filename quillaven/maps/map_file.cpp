// The map file: sizes, legend items and all cells of the fine grid, with nothing to tell it by.

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include <quillaven/foundation/byte_order_internal.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/archive.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>
#include <quillaven/raster/shape_check_internal.h>

namespace {

void StoreItems(CBaseMap const &map, CArchive &archive) {
  CStringArray names;
  CDWordArray colors;
  for (int item = 0; item < map.m_nLegendItems; ++item) {
    names.Add(map.GetLegendItemName(item).c_str());  // a name ends at its first zero byte
    colors.Add(static_cast<std::uint32_t>(map.GetLegendItemColor(item)));
  }
  names.Serialize(archive);
  colors.Serialize(archive);
}

// The number of items rules: arrays that are longer lose the rest, and a file whose arrays are
// shorter ends too early. The map changes only when all items are there, so that its number of
// items is the size of its two lists whatever the file holds.
void LoadItems(CBaseMap &map, int count, CArchive &archive) {
  CStringArray names;
  CDWordArray colors;
  names.Serialize(archive);
  colors.Serialize(archive);
  if (count < 0) throw std::bad_alloc();
  if (count > std::min(names.GetSize(), colors.GetSize()))
    throw CArchiveException(CArchiveException::endOfFile);
  std::vector<std::string> ownNames(static_cast<std::size_t>(count));
  std::vector<unsigned long> ownColors(static_cast<std::size_t>(count));
  for (int item = 0; item < count; ++item) {
    auto const at = static_cast<std::size_t>(item);
    ownNames[at] = names[item];
    ownColors[at] = colors[item];
  }
  map.m_LegendNames.swap(ownNames);
  map.m_LegendColors.swap(ownColors);
  map.m_nLegendItems = count;
}

// Stored sizes may differ from those of the raster; cells off the raster are stored as 0.
template <class T>
void StoreCells(CMultiScaleMatrix<T> const *raster, int rows, int cols, CArchive &archive) {
  if (rows < 1 || cols < 1) return;
  std::vector<T> cells(static_cast<std::size_t>(cols));
  int const onRaster = raster == nullptr ? 0 : std::clamp(raster->NCols(), 0, cols);
  for (int row = 0; row < rows; ++row) {
    if (raster != nullptr && row < raster->NRows()) {
      CRasterAccess::ReadRow(*raster, row, 0, onRaster, cells.data());
      SwapIfBigEndian(cells);
    } else {
      std::fill(cells.begin(), cells.end(), T{});
    }
    archive.Write(cells.data(), cells.size() * sizeof(T));
  }
}

// A file that ends early keeps the rows before its end, and the cells of its last row.
template <class T>
void LoadCells(CMultiScaleMatrix<T> &raster, CArchive &archive) {
  if (raster.NRows() < 1 || raster.NCols() < 1) return;
  std::vector<T> cells(static_cast<std::size_t>(raster.NCols()));
  std::size_t const bytes = cells.size() * sizeof(T);
  for (int row = 0; row < raster.NRows(); ++row) {
    std::size_t const read = archive.Read(cells.data(), bytes);
    SwapIfBigEndian(cells);
    if (read == bytes) {
      CRasterAccess::WriteRow(raster, row, cells.data());
      continue;
    }
    for (std::size_t col = 0; col < read / sizeof(T); ++col)
      raster.At(row, static_cast<int>(col)) = cells[col];
    throw CArchiveException(CArchiveException::endOfFile);
  }
}

// Cells that the rest of the file has room for. A file that only reads, as a pipe does, cannot tell
// its length, and counts as one with room for none.
template <class T>
std::uint64_t RoomForCells(CArchive &archive) {
  try {
    return archive.BytesLeft() / sizeof(T);
  } catch (CFileException const &) {
    return 0;
  }
}

// A map without cells, which agrees with its raster and can be used on.
template <class T>
void EmptyMap(CBaseMap &map, CMultiScaleMatrix<T> *raster) {
  map.m_nRows = 0;
  map.m_nCols = 0;
  if (raster != nullptr) raster->Redim(0, 0, DefaultFineResolution());
}

}  // namespace

void CBaseMap::Serialize(CArchive &archive) {
  if (archive.IsStoring()) {
    archive << m_nRows << m_nCols << m_nLegendItems;
    StoreItems(*this, archive);
  } else {
    int rows = 0;
    int cols = 0;
    int items = 0;
    archive >> rows >> cols >> items;
    LoadItems(*this, items, archive);
    m_nRows = rows;
    m_nCols = cols;
  }
}

template <class T>
void CMatrixBaseMap<T>::Serialize(CArchive &archive) {
  if (archive.IsStoring()) {
    CBaseMap::Serialize(archive);
    StoreCells(m_pMatrix, m_nRows, m_nCols, archive);
    return;
  }
  try {
    CBaseMap::Serialize(archive);
    if (!AreCellsBelievable(m_nRows, m_nCols, [&] { return RoomForCells<T>(archive); })) {
      EmptyMap(*this, m_pMatrix);
      throw CArchiveException(CArchiveException::endOfFile);
    }
    if (m_pMatrix == nullptr) return;
    m_pMatrix->Redim(m_nRows, m_nCols, DefaultFineResolution());
    LoadCells(*m_pMatrix, archive);
  } catch (std::bad_alloc const &) {
    EmptyMap(*this, m_pMatrix);
    throw;
  }
}

template void CMatrixBaseMap<float>::Serialize(CArchive &);
template void CMatrixBaseMap<short>::Serialize(CArchive &);
template void CMatrixBaseMap<unsigned char>::Serialize(CArchive &);
