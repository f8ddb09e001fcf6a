// Any bytes as a map file of each of the three element types. Whatever comes of the load, the map is
// drawn, edited and stored: a failed load must leave a map that bears it.

#include <new>

#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/archive.h>
#include <quillaven/raster/raster_operations.h>

#include "fuzz/fuzz_support.h"

namespace {

template <class T>
void Use(CMatrixBaseMap<T> &map, std::string const &name) {
  try {
    CFile file(name.c_str(), CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    map.Serialize(archive);
  } catch (CArchiveException const &) {
  } catch (std::bad_alloc const &) {
  }
  for (int row = 0; row < map.NRows() && row < 64; ++row)
    for (int col = 0; col < map.NCols() && col < 64; ++col) map.GetCellColor(row, col);
  map.AddLegendItem("added", 1);
  if (static_cast<long long>(map.NRows()) * map.NCols() > (1 << 20)) return;  // takes too long
  CFile file((name + ".stored").c_str(), CFile::modeWrite | CFile::modeCreate);
  CArchive archive(&file, CArchive::store);
  map.Serialize(archive);
  archive.Close();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const file = application.Write("a.qmp", data, size);
  DefaultFineResolution(static_cast<int>(size % 4) + 1);
  CMultiScaleFloatMatrix floats;
  CFloatMatrixBaseMap floatMap;
  floatMap.Attach("a", "a", &floats, nullptr, false);
  Use(floatMap, file);
  CMultiScaleShortMatrix shorts;
  CShortMatrixBaseMap shortMap;
  shortMap.Attach("a", "a", &shorts, nullptr);
  Use(shortMap, file);
  CMultiScaleByteMatrix bytes;
  CByteMatrixBaseMap byteMap;
  byteMap.Attach("a", "a", &bytes, nullptr);
  Use(byteMap, file);
  return 0;
}
