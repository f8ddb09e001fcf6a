// Any bytes as an ASCII grid, at one scale and at two, into each element type.

#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/raster/raster_operations.h>

#include "fuzz/fuzz_support.h"

namespace {

template <class T>
void ImportAndTouch(std::string const &file) {
  GridTexts texts;
  CMultiScaleMatrix<T> raster;
  ImportAsciiGrid(file.c_str(), texts, raster);
  T value{};
  raster.GetSave(raster.NRows(), raster.NCols(), value);  // outside: rows may be far below zero
  if (raster.NRows() > 0 && raster.NCols() > 0)
    raster.GetSave(raster.NRows() - 1, raster.NCols() - 1, value);
  raster.FineCell(0, 0, true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const file = application.Write("a.asc", data, size);
  for (int width : {1, 3}) {
    DefaultFineResolution(width);
    ImportAndTouch<float>(file);
    ImportAndTouch<short>(file);
    ImportAndTouch<unsigned char>(file);
  }
  return 0;
}
