#include "tests/support/open_handles.h"

#if defined(_WIN32)

#include <cstdint>
#include <initializer_list>
#include <windows.h>

int const kManyLaunches = 100;

// Handles are multiples of 4. Looking at each works under Wine too, which keeps no count of them.
static long CountHandles(std::uintptr_t from, std::uintptr_t to) {
  long count = 0;
  for (std::uintptr_t handle = 4 * from; handle < 4 * to; handle += 4) {
    DWORD flags = 0;
    if (::GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags)) ++count;
  }
  return count;
}

long OpenHandles() {
  return CountHandles(1, 20000);
}

static bool IsStandardStream(HANDLE handle) {
  for (DWORD const stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE})
    if (handle == ::GetStdHandle(stream)) return true;
  return false;
}

// A new process has directories open, and what is no file, but no file beside the standard streams.
static bool IsOpenFile(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION about{};
  return ::GetFileInformationByHandle(handle, &about) &&
         (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && !IsStandardStream(handle);
}

// Files among the small handles, and whatever is behind them: a new process has not got that many.
long InheritedHandles() {
  constexpr std::uintptr_t kSmall = 1000;
  long files = 0;
  for (std::uintptr_t handle = 4; handle < 4 * kSmall; handle += 4)
    if (IsOpenFile(reinterpret_cast<HANDLE>(handle))) ++files;
  return files + CountHandles(kSmall, 3000);
}

#else

#include <filesystem>
#include <iterator>

int const kManyLaunches = 1000;

// The listing itself has one open.
long OpenHandles() {
  std::filesystem::directory_iterator const open("/proc/self/fd");
  return static_cast<long>(std::distance(begin(open), end(open))) - 1;
}

long InheritedHandles() {
  constexpr long kStandardStreams = 3;
  return OpenHandles() - kStandardStreams;
}

#endif
