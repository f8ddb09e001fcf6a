// Reads a grid, fills the area around a cell and writes the grid back.

#include <cstdio>
#include <string>

#include <quillaven/quillaven.h>

int main(int argc, char **argv) {
  std::string const out = argc > 1 ? argv[1] : ".";

  CMultiScaleFloatMatrix raster;  // the cells; a map does not own them
  CFloatMatrixBaseMap map;        // what shows and edits them
  map.Attach("Small", "A small map", &raster, nullptr, false);  // no legend file: 11 grey classes
  if (map.OnFileImport("small.asc", 1) == 0) return 1;          // 1: an ASCII grid

  map.m_nSelectedItem = 5;
  map.GetCellColor(0, 0);  // a draw begins at the top left; the map takes its size from the raster
  map.FillArea(1, 2);
  std::printf("%s, modified %d\n", map.GetCellString(1, 2).c_str(), map.IsModified());
  return map.OnFileExport((out + "/edited.asc").c_str(), 1) != 0 ? 0 : 1;
}
