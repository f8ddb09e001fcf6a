// A program outside the tree: an installed library is all that it needs.
#include <cstdio>

#include <quillaven/quillaven.h>

int main() {
  CMultiScaleFloatMatrix raster;
  raster.Redim(6, 8, 4);
  AssignMultiScaleFloatMatrix(raster, 1.5F);
  raster.FineCell(0, 0, true);
  raster[0][1] = 2.5F;
  std::printf("%g %g %g\n", raster.At(0, 0), raster.At(0, 1), raster.At(5, 7));
}
