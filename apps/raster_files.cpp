#include "apps/raster_files.h"

#include <cctype>
#include <cstdint>
#include <filesystem>

#include "apps/files.h"

namespace {

constexpr int kIdrisiFormat = 0;
constexpr int kGridFormat = 1;

// The part of a map file before its cells.
class MapWithoutCells : public CBaseMap {
 public:
  int GetCellLegendIndex(int /*row*/, int /*col*/) override { return -1; }
};

long long CellsOf(CBaseMap const &map) {
  return static_cast<long long>(map.NRows()) * map.NCols();
}

template <class T>
void LoadMap(CMatrixBaseMap<T> &map, std::string const &file) {
  std::optional<MapHead> const head = ReadMapHead(file);
  if (!head) throw Failure("'" + file + "' is no map file, or ends before its last cell");
  if (head->cellBytes != static_cast<int>(sizeof(T)))
    throw Failure("'" + file + "' has cells of " + std::to_string(head->cellBytes) +
                  " bytes, not " + std::to_string(sizeof(T)) + ": choose another --type");
  CFile stream(file.c_str(), CFile::modeRead);
  CArchive archive(&stream, CArchive::load);
  map.Serialize(archive);
}

template <class T>
void StoreMap(CMatrixBaseMap<T> &map, std::string const &file) {
  CFile stream;
  CFileException reason;
  if (!stream.Open(file.c_str(), CFile::modeWrite | CFile::modeCreate, &reason))
    throw Failure("cannot write '" + file + "'");
  map.m_nRows = map.NRows();
  map.m_nCols = map.NCols();
  CArchive archive(&stream, CArchive::store);
  map.Serialize(archive);
  archive.Close();
  stream.Close();
}

}  // namespace

std::optional<RasterKind> KindOfRaster(std::string const &file) {
  std::string extension = std::filesystem::path(file).extension().string();
  for (char &c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == ".asc") return RasterKind::kGrid;
  if (extension == ".doc" || extension == ".img") return RasterKind::kIdrisi;
  if (extension == ".qmp") return RasterKind::kMap;
  return std::nullopt;
}

// The file has nothing to tell it by: it is one if its sizes make up its length.
std::optional<MapHead> ReadMapHead(std::string const &file) {
  CFile stream;
  if (!stream.Open(file.c_str(), CFile::modeRead)) return std::nullopt;
  CArchive archive(&stream, CArchive::load);
  MapWithoutCells map;
  try {
    map.Serialize(archive);
  } catch (CArchiveException const &) {
    return std::nullopt;
  } catch (std::bad_alloc const &) {
    return std::nullopt;
  }
  if (map.m_nRows < 1 || map.m_nCols < 1) return std::nullopt;
  auto const cells = static_cast<std::uint64_t>(CellsOf(map));
  std::uint64_t const bytes = archive.BytesLeft();
  for (int width : {4, 2, 1})
    if (bytes == cells * static_cast<std::uint64_t>(width))
      return MapHead{map.m_nRows, map.m_nCols, map.m_nLegendItems, width};
  return std::nullopt;
}

template <class T>
void LoadRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                Console const &console) {
  RequireReadable(file);
  if (kind == RasterKind::kMap) return LoadMap(map, file);
  if (kind == RasterKind::kGrid) RequireGrid(file);
  int const read =
      map.OnFileImport(file.c_str(), kind == RasterKind::kGrid ? kGridFormat : kIdrisiFormat);
  console.ThrowIfBoxShown();
  bool const whole = read != 0 || (kind == RasterKind::kGrid && GridIsComplete(file, CellsOf(map)));
  if (CellsOf(map) == 0 || !whole) throw Failure("'" + file + "' ends before its last cell");
}

template <class T>
void StoreRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                 Console const &console) {
  try {
    if (kind == RasterKind::kMap) return StoreMap(map, file);
  } catch (CFileException const &) {
    throw Failure("'" + file + "' could not be written whole");
  }
  int const written =
      map.OnFileExport(file.c_str(), kind == RasterKind::kGrid ? kGridFormat : kIdrisiFormat);
  console.ThrowIfBoxShown();
  if (written == 0) throw Failure("cannot write '" + file + "'");
}

template void LoadRaster(CMatrixBaseMap<float> &, std::string const &, RasterKind, Console const &);
template void LoadRaster(CMatrixBaseMap<short> &, std::string const &, RasterKind, Console const &);
template void LoadRaster(CMatrixBaseMap<unsigned char> &, std::string const &, RasterKind,
                         Console const &);
template void StoreRaster(CMatrixBaseMap<float> &, std::string const &, RasterKind,
                          Console const &);
template void StoreRaster(CMatrixBaseMap<short> &, std::string const &, RasterKind,
                          Console const &);
template void StoreRaster(CMatrixBaseMap<unsigned char> &, std::string const &, RasterKind,
                          Console const &);
