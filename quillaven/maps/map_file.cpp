// The map file: sizes, legend items and all cells of the fine grid, with nothing to tell it by.

#include <algorithm>
#include <cstdint>
#include <new>
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
// shorter ends too early.
void LoadItems(CBaseMap &map, CArchive &archive) {
  CStringArray names;
  CDWordArray colors;
  names.Serialize(archive);
  colors.Serialize(archive);
  if (map.m_nLegendItems < 0) throw std::bad_alloc();
  int const shorter = std::min(names.GetSize(), colors.GetSize());
  if (map.m_nLegendItems > shorter) throw CArchiveException(CArchiveException::endOfFile);
  auto const items = static_cast<std::size_t>(map.m_nLegendItems);
  map.m_LegendNames.resize(items);
  map.m_LegendColors.resize(items);
  for (int item = 0; item < map.m_nLegendItems; ++item) {
    auto const at = static_cast<std::size_t>(item);
    map.m_LegendNames[at] = names[item];
    map.m_LegendColors[at] = colors[item];
  }
}

// Stored sizes may differ from those of the raster; cells off the raster are stored as 0.
template <class T>
void StoreCells(CMultiScaleMatrix<T> const *raster, int rows, int cols, CArchive &archive) {
  std::vector<T> cells(static_cast<std::size_t>(std::max(cols, 0)));
  int const onRaster = raster == nullptr ? 0 : std::clamp(raster->NCols(), 0, std::max(cols, 0));
  for (int row = 0; cols > 0 && row < rows; ++row) {
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
  std::vector<T> cells(static_cast<std::size_t>(std::max(raster.NCols(), 0)));
  std::size_t const bytes = cells.size() * sizeof(T);
  for (int row = 0; bytes != 0 && row < raster.NRows(); ++row) {
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

template <class T>
void LoadRaster(CMultiScaleMatrix<T> &raster, int rows, int cols, CArchive &archive) {
  if (!AreCellsBelievable(rows, cols, archive.BytesLeft() / sizeof(T))) {
    raster.Redim(0, 0, DefaultFineResolution());
    throw CArchiveException(CArchiveException::endOfFile);
  }
  raster.Redim(rows, cols, DefaultFineResolution());
  LoadCells(raster, archive);
}

}  // namespace

void CBaseMap::Serialize(CArchive &archive) {
  if (archive.IsStoring()) {
    archive << m_nRows << m_nCols << m_nLegendItems;
    StoreItems(*this, archive);
  } else {
    archive >> m_nRows >> m_nCols >> m_nLegendItems;
    LoadItems(*this, archive);
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
    if (m_pMatrix != nullptr) LoadRaster(*m_pMatrix, m_nRows, m_nCols, archive);
  } catch (std::bad_alloc const &) {
    if (m_pMatrix != nullptr) m_pMatrix->Redim(0, 0, DefaultFineResolution());
    throw;
  }
}

template void CMatrixBaseMap<float>::Serialize(CArchive &);
template void CMatrixBaseMap<short>::Serialize(CArchive &);
template void CMatrixBaseMap<unsigned char>::Serialize(CArchive &);
