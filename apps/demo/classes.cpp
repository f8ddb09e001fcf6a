// What the chapters share: the land use as classes, and counts over rasters of them.

#include <algorithm>

#include "apps/demo/story.h"

namespace {

constexpr int kAsciiGrid = 1;  // the format number of OnFileImport and OnFileExport

}  // namespace

// A land-use class is the number of its legend item, so the map to edit is a byte map, whose cells
// are item numbers. The grid marks cells without data by -9999, which no byte holds: it is read as
// shorts, and its no-data cells become 255.
CMultiScaleByteMatrix ReadClasses(std::string const &grid) {
  CMultiScaleShortMatrix read;
  CShortMatrixBaseMap map;
  map.Attach("Landuse", "Land use", &read, "Landuse.txt");
  if (map.OnFileImport(grid.c_str(), kAsciiGrid) == 0)
    throw Failure("cannot read all of '" + grid + "'");

  CMultiScaleByteMatrix classes;
  classes.SetNoDataValue(true, kNoDataClass);
  classes.Redim(read.NRows(), read.NCols(), read.W());
  for (int row = 0; row < read.NRows(); ++row) {
    for (int col = 0; col < read.NCols(); ++col) {
      short const value = read.At(row, col);
      bool const hasData = static_cast<float>(value) != read.NoDataValue();
      classes.At(row, col) = hasData ? static_cast<unsigned char>(value) : kNoDataClass;
    }
  }
  return classes;
}

void AttachLandUse(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster) {
  map.Attach("Landuse", "Land use of Liechtenstein", &raster, "Landuse.txt");
}

CRect Whole(CMultiScaleByteMatrix const &raster) {
  CRect whole;
  whole.right = raster.NCols() - 1;
  whole.bottom = raster.NRows() - 1;
  return whole;
}

long long CountDifferences(CMultiScaleByteMatrix const &a, CMultiScaleByteMatrix const &b) {
  long long different = 0;
  for (int row = 0; row < a.NRows(); ++row)
    for (int col = 0; col < a.NCols(); ++col) different += a.At(row, col) != b.At(row, col);
  return different;
}
