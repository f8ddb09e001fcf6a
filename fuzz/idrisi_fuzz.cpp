// Any bytes as the documentation of an Idrisi image; what follows a zero byte is the image.

#include <algorithm>

#include <quillaven/exchange/raster_exchange_internal.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  auto const *zero = std::find(data, data + size, 0);
  auto const *image = std::min(zero + 1, data + size);
  std::string const file = application.Write("a.doc", data, static_cast<std::size_t>(zero - data));
  application.Write("a.img", image, static_cast<std::size_t>(data + size - image));
  CMultiScaleFloatMatrix floats;
  ImportIdrisi(file.c_str(), floats);
  CMultiScaleShortMatrix shorts;
  ImportIdrisi(file.c_str(), shorts);
  CMultiScaleByteMatrix bytes;
  ImportIdrisi(file.c_str(), bytes);
  return 0;
}
