// The room of the typed maps that exchanges their rasters with other programs.

#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/maps/cells_changed_internal.h>
#include <quillaven/maps/matrix_base_map.h>

namespace {

// Format numbers; all others are none. The name of a file and its extension have no part in it.
constexpr int kIdrisi = 0;
constexpr int kAsciiGrid = 1;

}  // namespace

template <class T>
int CMatrixBaseMap<T>::OnFileExport(char const *file, int format) {
  if (m_pMatrix == nullptr) return 0;
  switch (format) {
    case kIdrisi:
      return ExportIdrisi(file, ExportDataType(), *m_pMatrix) ? 1 : 0;
    case kAsciiGrid:
      return ExportAsciiGrid(file, GridTexts{}, *m_pMatrix) ? 1 : 0;
    default:
      return 0;
  }
}

// The window is told and the map counts as modified before anything else, for every format number
// and whatever comes of it.
template <class T>
int CMatrixBaseMap<T>::OnFileImport(char const *file, int format) {
  TellCellsChanged();
  SetModifiedFlag(kCellsChanged);
  if (m_pMatrix == nullptr) return 0;
  GridTexts texts;  // read and dropped: a map has no place on the ground
  switch (format) {
    case kIdrisi:
      return ImportIdrisi(file, *m_pMatrix) ? 1 : 0;
    case kAsciiGrid:
      return ImportAsciiGrid(file, texts, *m_pMatrix) ? 1 : 0;
    default:
      return 0;
  }
}

template int CMatrixBaseMap<float>::OnFileExport(char const *, int);
template int CMatrixBaseMap<short>::OnFileExport(char const *, int);
template int CMatrixBaseMap<unsigned char>::OnFileExport(char const *, int);
template int CMatrixBaseMap<float>::OnFileImport(char const *, int);
template int CMatrixBaseMap<short>::OnFileImport(char const *, int);
template int CMatrixBaseMap<unsigned char>::OnFileImport(char const *, int);
