#include "tests/support/open_handles.h"

#if defined(_WIN32)

#include <windows.h>

long OpenHandles() {
  DWORD count = 0;
  ::GetProcessHandleCount(::GetCurrentProcess(), &count);
  return static_cast<long>(count);
}

#else

#include <filesystem>
#include <iterator>

// The listing itself has one open.
long OpenHandles() {
  std::filesystem::directory_iterator const open("/proc/self/fd");
  return static_cast<long>(std::distance(begin(open), end(open))) - 1;
}

#endif
