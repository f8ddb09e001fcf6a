// Any bytes as a legend file, which must always leave a legend that classifies and can be written.

#include <string>

#include <quillaven/maps/matrix_base_map.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  application.Write("Legends/a.txt", data, size);
  CMultiScaleByteMatrix raster;
  raster.Redim(1, 2, 1);
  raster.At(0, 0) = 3;
  raster.At(0, 1) = 200;
  CByteMatrixBaseMap map;
  try {
    map.Attach("a", "", &raster, "a.txt");
  } catch (std::string const &) {
    // a label that is none, which is thrown as told
  }
  for (int col = 0; col < 2; ++col) {
    map.GetCellColor(0, col);
    map.GetCellString(0, col);
  }
  for (float value : {-1e30F, -1.0F, 0.0F, 0.5F, 1e30F}) map.m_Legend.GetCellColor(&map, value);
  map.WriteLegend("b.txt");
  return 0;
}
