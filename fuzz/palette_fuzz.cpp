// Any bytes as an Idrisi palette.

#include <string>
#include <vector>

#include <quillaven/exchange/idrisi_palette.h>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const file = application.Write("a.smp", data, size);
  std::vector<unsigned long> palette;
  ReadIdrisiPalette(file.c_str(), palette);
  return palette.size() > 256 ? 1 : 0;
}
