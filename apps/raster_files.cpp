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

std::string InLowerCase(char const *text) {
  CString lower(text);
  lower.MakeLower();
  return lower;
}

Failure UnreadableFile(std::string const &file) {
  return Failure("'" + file + "' could not be read");
}

template <class T>
void LoadMap(CMatrixBaseMap<T> &map, std::string const &file) {
  std::optional<MapHead> const head = ReadMapHead(file);
  if (!head) throw Failure("'" + file + "' is no map file, or ends before its last cell");
  if (head->cellBytes == 0) throw Failure("'" + file + "' holds no cells");
  if (head->cellBytes != static_cast<int>(sizeof(T)))
    throw Failure("'" + file + "' has cells of " + std::to_string(head->cellBytes) +
                  " bytes, not " + std::to_string(sizeof(T)) + ": choose another --type");
  try {
    CFile stream(file.c_str(), CFile::modeRead);
    CArchive archive(&stream, CArchive::load);
    map.Serialize(archive);
  } catch (CException const &) {
    throw UnreadableFile(file);
  }
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

// What an import of the pair would refuse without a word.
void RequireReadablePair(std::string const &file, Console const &console) {
  CIdrisiImageHeader header = ReadIdrisiDocument(file, console);
  std::string const document = "'" + IdrisiDocument(file) + "'";
  if (InLowerCase(header.FileType()) != "binary")
    throw Failure(document + " is of an image of type " + header.FileType() +
                  ": only binary ones are read");
  if (IdrisiCellBytes(header) == 0)
    throw Failure(document + " is of cells of type " + header.DataType() +
                  ": only real, integer and byte ones are read");
  if (!HasCells(header.Rows(), header.Columns()))
    throw Failure(document + " tells of no cells: " + std::to_string(header.Rows()) + " rows, " +
                  std::to_string(header.Columns()) + " columns");
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
  std::uint64_t bytes = 0;
  try {
    map.Serialize(archive);
    bytes = archive.BytesLeft();
  } catch (CArchiveException const &) {
    return std::nullopt;
  } catch (CFileException const &) {
    throw UnreadableFile(file);
  } catch (std::bad_alloc const &) {
    return std::nullopt;
  }
  if (map.m_nRows < 0 || map.m_nCols < 0) return std::nullopt;
  MapHead head{map.m_nRows, map.m_nCols, map.m_nLegendItems, 0};
  auto const cells = static_cast<std::uint64_t>(CellsOf(map));
  if (bytes == 0 && cells == 0) return head;
  for (int const width : {4, 2, 1}) {
    head.cellBytes = width;
    if (cells != 0 && bytes == cells * static_cast<std::uint64_t>(width)) return head;
  }
  return std::nullopt;
}

std::string IdrisiDocument(std::string const &file) {
  return file.substr(0, file.rfind('.')) + ".doc";
}
std::string IdrisiImage(std::string const &file) {
  return file.substr(0, file.rfind('.')) + ".img";
}

CIdrisiImageHeader ReadIdrisiDocument(std::string const &file, Console const &console) {
  std::string const document = IdrisiDocument(file);
  CIdrisiImageHeader header;
  bool const read = header.ReadFile(document.c_str());
  console.ThrowIfBoxShown(document);
  if (!read) throw Failure("'" + document + "' ends before its last line");
  return header;
}

int IdrisiCellBytes(CIdrisiImageHeader const &header) {
  if (InLowerCase(header.FileType()) != "binary") return 0;
  std::string const type = InLowerCase(header.DataType());
  return type == "real" ? 4 : type == "integer" ? 2 : type == "byte" ? 1 : 0;
}

void RequireIdrisiImage(std::string const &file, CIdrisiImageHeader &header) {
  std::string const image = IdrisiImage(file);
  RequirePlainFile(image);
  int const width = IdrisiCellBytes(header);
  if (width == 0 || !HasCells(header.Rows(), header.Columns())) return;
  std::uint64_t const cells =
      static_cast<std::uint64_t>(header.Rows()) * static_cast<std::uint64_t>(header.Columns());
  if (std::filesystem::file_size(SystemPath(image)) / static_cast<std::uint64_t>(width) < cells)
    throw Failure("'" + image + "' ends before its last cell");
}

template <class T>
void LoadRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                Console const &console) {
  RequirePlainFile(file);
  if (kind == RasterKind::kMap) return LoadMap(map, file);
  if (kind == RasterKind::kGrid) RequireGrid(file);
  if (kind == RasterKind::kIdrisi) RequireReadablePair(file, console);
  int const read =
      map.OnFileImport(file.c_str(), kind == RasterKind::kGrid ? kGridFormat : kIdrisiFormat);
  console.ThrowIfBoxShown(file);
  // A grid that asks for more cells than it could hold leaves none behind.
  bool const none = !HasCells(map.NRows(), map.NCols());
  if (none && read != 0) throw Failure("'" + file + "' holds no cells");
  bool const whole = read != 0 || (kind == RasterKind::kGrid && GridIsComplete(file, CellsOf(map)));
  if (none || !whole) throw Failure("'" + file + "' ends before its last cell");
}

template <class T>
void StoreRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                 Console const &console) {
  try {
    if (kind == RasterKind::kMap) return StoreMap(map, file);
  } catch (CFileException const &) {
    throw Failure("'" + file + "' could not be written whole");
  }
  bool const isGrid = kind == RasterKind::kGrid;
  if (isGrid) RequireCheckableTarget(file);
  int const written = map.OnFileExport(file.c_str(), isGrid ? kGridFormat : kIdrisiFormat);
  console.ThrowIfBoxShown(file);
  if (written == 0) throw Failure("cannot write '" + file + "'");
  if (isGrid) RequireWrittenGrid(file, CellsOf(map));
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
