// Runs a fuzz target once over each seed of a folder, without libFuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size);

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s SEED-FOLDER\n", argv[0]);
    return 2;
  }
  int count = 0;
  for (auto const &entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::vector<char> const bytes{std::istreambuf_iterator<char>(file),
                                  std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size());
    ++count;
  }
  std::printf("%d seeds replayed\n", count);
  return count > 0 ? 0 : 1;
}
