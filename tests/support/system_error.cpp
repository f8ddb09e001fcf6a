#include "tests/support/system_error.h"

#if defined(_WIN32)

#include <windows.h>

unsigned long const kMissingFileError = ERROR_FILE_NOT_FOUND;
unsigned long const kMissingDirectoryError = ERROR_PATH_NOT_FOUND;
unsigned long const kAccessError = ERROR_ACCESS_DENIED;
unsigned long const kDiskFullError = ERROR_DISK_FULL;
unsigned long const kMissingLibraryError = ERROR_MOD_NOT_FOUND;
unsigned long const kNoLibraryError = ERROR_BAD_EXE_FORMAT;

void SetLastSystemError(unsigned long code) {
  ::SetLastError(code);
}

// Only for texts without inserts.
std::string TextOfSystemError(unsigned long code) {
  char text[512];
  DWORD const length = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, code, 0, text, sizeof text, nullptr);
  return {text, length};
}

#else

#include <cerrno>
#include <cstring>

unsigned long const kMissingFileError = ENOENT;
unsigned long const kMissingDirectoryError = ENOENT;
unsigned long const kAccessError = EACCES;
unsigned long const kDiskFullError = ENOSPC;
unsigned long const kMissingLibraryError = ENOENT;
unsigned long const kNoLibraryError = ENOEXEC;

void SetLastSystemError(unsigned long code) {
  errno = static_cast<int>(code);
}

std::string TextOfSystemError(unsigned long code) {
  return std::strerror(static_cast<int>(code));
}

#endif
