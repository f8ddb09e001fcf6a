#include <algorithm>
#include <windows.h>

#include <quillaven/platform/new_file_internal.h>

namespace {

DWORD AccessRights(NewFile::Access access) {
  return access == NewFile::Access::kWrite ? GENERIC_WRITE : GENERIC_READ | GENERIC_WRITE;
}

}  // namespace

// INVALID_HANDLE_VALUE is -1 as a number.
NewFile::NewFile(char const *path, Access access)
    : m_handle(reinterpret_cast<std::intptr_t>(::CreateFileA(
          path, AccessRights(access), 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr))) {
}

NewFile::~NewFile() {
  DWORD const lastError = ::GetLastError();
  Close();
  ::SetLastError(lastError);
}

bool NewFile::Write(void const *bytes, std::size_t count) {
  auto const *at = static_cast<char const *>(bytes);
  while (count > 0) {
    DWORD const piece = static_cast<DWORD>(std::min<std::size_t>(count, 1U << 30));
    DWORD written = 0;
    if (!::WriteFile(reinterpret_cast<HANDLE>(m_handle), at, piece, &written, nullptr))
      return false;
    if (written == 0) return false;
    at += written;
    count -= written;
  }
  return true;
}

bool NewFile::Close() {
  if (m_handle == -1) return true;
  HANDLE const handle = reinterpret_cast<HANDLE>(m_handle);
  m_handle = -1;
  return ::CloseHandle(handle) != 0;
}
