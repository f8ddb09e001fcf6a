// Any bytes as a text file that becomes one line, and as a line that becomes a file. What was
// packed whole must come out again as the text it was.

#include <cstdlib>
#include <iterator>
#include <vector>

#include <quillaven/foundation/textio.h>

#include "fuzz/fuzz_support.h"

namespace {

std::string Packed(std::string const &file, int size) {
  std::vector<char> buffer(static_cast<std::size_t>(size));
  FileToLine(file.c_str(), buffer.data(), size);
  return buffer.data();
}

// The bytes as text, up to a zero byte, where the line ends too.
std::string TextOf(std::string const &bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\0'; ++i)
    if (bytes.compare(i, 2, "\r\n") != 0) text += bytes[i];
  return text;
}

std::string Content(std::string const &file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const bytes(reinterpret_cast<char const *>(data), size);
  std::string const file = application.Write("a.txt", data, size);
  std::string const again = file + ".again";
  for (int small = 1; small < 12; ++small) Packed(file, small);

  LineToFile(Packed(file, static_cast<int>(2 * size) + 4).c_str(), again.c_str());
  if (Content(again) != TextOf(bytes)) std::abort();
  LineToFile(bytes.c_str(), again.c_str());
  return 0;
}
