// Any bytes as function tables in tagged form, one behind the other.

#include <quillaven/functions/spline.h>
#include <quillaven/platform/files.h>

#include "fuzz/fuzz_support.h"
#include "fuzz/table_support.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const name = application.Write("a.txt", data, size);
  CSpline table;
  CStdioFile file(name.c_str(), CFile::modeRead | CFile::typeText);
  for (int number = 0; number < 4 && table.OnRead(file, number); ++number) AskAndSimplify(table);
  CStdioFile out((name + ".out").c_str(), CFile::modeCreate | CFile::modeWrite);
  table.OnWrite(out, 1);
  return 0;
}
