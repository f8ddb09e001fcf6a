// One raster at two scales: coarse blocks of 4 x 4 cells, one of them refined.

#include <cstdio>

#include <quillaven/quillaven.h>

namespace {

// A cell's distance from the top left corner, along rows and columns.
class CDistance : public CFloatMapFunc {
 public:
  float Eval(int row, int col) override { return static_cast<float>(row + col); }
};

}  // namespace

int main() {
  CMultiScaleFloatMatrix raster;
  raster.Redim(8, 8, 4);
  AssignMultiScaleFloatMatrix(raster, 0);
  raster.FineCell(0, 0, true);

  CDistance distance;
  MultiScaleFloatMatrixEvalMapFunc(raster,
                                   distance);  // 16 cells, and one value for each other block
  for (int row = 0; row < raster.NRows(); ++row) {
    for (int col = 0; col < raster.NCols(); ++col) std::printf("%3g", raster[row][col]);
    std::printf("\n");
  }
}
