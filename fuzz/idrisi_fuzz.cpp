// Any bytes as the documentation of an Idrisi image; what follows a zero byte is the image.

#include <algorithm>

#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/raster/raster_operations.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  auto const *zero = std::find(data, data + size, 0);
  auto const *image = zero == data + size ? zero : zero + 1;
  std::string const file = application.Write("a.doc", data, static_cast<std::size_t>(zero - data));
  application.Write("a.img", image, static_cast<std::size_t>(data + size - image));
  // At each scale, and with every other block fine where the raster reaches.
  int const width = static_cast<int>(size % 4) + 1;
  CMultiScaleByteMatrix pattern;
  pattern.Redim(8, 8, width);
  for (int block = 0; block < 8; block += 2) pattern.FineCell(block, block, true);
  DefaultFineResolution(width);
  DefaultResolutionMap(size % 3 == 0 ? nullptr : &pattern);
  CMultiScaleFloatMatrix floats;
  ImportIdrisi(file.c_str(), floats);
  CMultiScaleShortMatrix shorts;
  ImportIdrisi(file.c_str(), shorts);
  CMultiScaleByteMatrix bytes;
  ImportIdrisi(file.c_str(), bytes);
  DefaultResolutionMap(nullptr);
  return 0;
}
