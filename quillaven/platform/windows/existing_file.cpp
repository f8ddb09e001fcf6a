#include <algorithm>
#include <windows.h>

#include <quillaven/platform/existing_file_internal.h>

// INVALID_HANDLE_VALUE is -1 as a number.
ExistingFile::ExistingFile(char const *path)
    : m_handle(reinterpret_cast<std::intptr_t>(::CreateFileA(
          path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))) {}

ExistingFile::~ExistingFile() {
  DWORD const lastError = ::GetLastError();
  if (IsOpen()) ::CloseHandle(reinterpret_cast<HANDLE>(m_handle));
  ::SetLastError(lastError);
}

std::optional<std::uint64_t> ExistingFile::Left() const {
  HANDLE const handle = reinterpret_cast<HANDLE>(m_handle);
  LARGE_INTEGER length{};
  if (::GetFileType(handle) != FILE_TYPE_DISK || !::GetFileSizeEx(handle, &length))
    return std::nullopt;
  auto const size = static_cast<std::uint64_t>(length.QuadPart);
  if (size < m_read) return std::nullopt;
  return size - m_read;
}

std::size_t ExistingFile::Read(void *bytes, std::size_t count) {
  auto *at = static_cast<char *>(bytes);
  std::size_t arrived = 0;
  while (arrived < count) {
    DWORD const piece = static_cast<DWORD>(std::min<std::size_t>(count - arrived, 1U << 30));
    DWORD got = 0;
    if (!::ReadFile(reinterpret_cast<HANDLE>(m_handle), at + arrived, piece, &got, nullptr)) {
      m_failed = ::GetLastError() != ERROR_BROKEN_PIPE;  // which is how a pipe tells its end
      break;
    }
    if (got == 0) break;
    arrived += got;
  }
  m_read += arrived;
  return arrived;
}
