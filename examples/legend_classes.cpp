// A legend turns values into classes, names and colours.

#include <cstdio>

#include <quillaven/quillaven.h>

int main() {
  CMultiScaleFloatMatrix raster;
  raster.Redim(1, 3, 1);
  raster[0][0] = 0.0F;
  raster[0][1] = 0.42F;
  raster[0][2] = 7.0F;

  CFloatMatrixBaseMap map;
  map.Attach("Share", "A share of something", &raster, nullptr, false);
  for (int col = 0; col < raster.NCols(); ++col) {
    int const item = map.GetCellLegendIndex(0, col);
    std::printf("%s is in class %d, %s\n", map.GetCellString(0, col).c_str(), item,
                map.GetLegendItemName(item).c_str());
  }
}
