// Tells the start record that it was started with, or has the library start a program.
//
//   start_record FILE               writes flags, title, show state and the bytes behind lpReserved2
//   start_record --launch COMMAND   starts a command by WinExecAndWait, as an icon without the focus

#include <cstring>
#include <fstream>
#include <windows.h>

#include <quillaven/quillaven.h>

int main(int argc, char **argv) {
  if (argc == 3 && std::strcmp(argv[1], "--launch") == 0) {
    WinExecAndWait(argv[2], SW_SHOWMINNOACTIVE);
    return 0;
  }
  if (argc != 2) return 2;
  STARTUPINFOA start{};
  ::GetStartupInfoA(&start);
  std::ofstream file(argv[1], std::ios::binary);
  file << start.dwFlags << '\n'
       << start.lpTitle << '\n'
       << start.wShowWindow << '\n'
       << start.cbReserved2 << '\n';
}
