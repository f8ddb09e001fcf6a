// Stands for any program that is launched: tells what it was given, takes its time, and fails.
//
//   launched_program [FILE MILLISECONDS [ARGUMENT...]]
//
// After the time it writes to FILE what is open in it beside the standard streams, as a number, and
// the arguments, one a line. It always ends with status 3.

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace {

// The listing itself has the directory open.
std::ptrdiff_t OpenDescriptors() {
  std::error_code failed;
  std::filesystem::directory_iterator const open("/proc/self/fd", failed);
  constexpr std::ptrdiff_t kStandardStreamsAndListing = 4;
  return failed ? 0 : std::distance(begin(open), end(open)) - kStandardStreamsAndListing;
}

}  // namespace

int main(int argc, char **argv) {
  constexpr int kStatus = 3;
  if (argc < 3) return kStatus;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
  std::ptrdiff_t const open = OpenDescriptors();
  std::ofstream file(argv[1], std::ios::binary);
  file << open << '\n';
  for (int i = 3; i < argc; ++i) file << argv[i] << '\n';
  return kStatus;
}
