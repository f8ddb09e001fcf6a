#include <windows.h>

#include <quillaven/platform/copy_file_internal.h>

bool CopyOneFile(char const *from, char const *to) {
  return ::CopyFileA(from, to, FALSE) != 0;
}
