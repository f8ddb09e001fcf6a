// Stands for any program that is launched: tells what it was given, takes its time, and fails.
//
//   launched_program [FILE MILLISECONDS [ARGUMENT...]]
//
// After the time it writes to FILE what is open in it beside the standard streams, as a number, and
// the arguments, one a line. It always ends with status 3.

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "tests/support/open_handles.h"

int main(int argc, char **argv) {
  constexpr int kStatus = 3;
  if (argc < 3) return kStatus;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
  long const open = InheritedHandles();
  std::ofstream file(argv[1], std::ios::binary);
  file << open << '\n';
  for (int i = 3; i < argc; ++i) file << argv[i] << '\n';
  return kStatus;
}
