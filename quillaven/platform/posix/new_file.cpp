#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <quillaven/platform/new_file_internal.h>

namespace {

int ModeOf(NewFile::Access access) {
  return access == NewFile::Access::kWrite ? O_WRONLY : O_RDWR;
}

}  // namespace

NewFile::NewFile(char const *path, Access access)
    : m_handle(::open(path, ModeOf(access) | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {}

NewFile::~NewFile() {
  int const lastError = errno;
  Close();
  errno = lastError;
}

bool NewFile::Write(void const *bytes, std::size_t count) {
  auto const *at = static_cast<char const *>(bytes);
  while (count > 0) {
    ssize_t const written = ::write(static_cast<int>(m_handle), at, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    at += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

bool NewFile::Close() {
  if (m_handle == -1) return true;
  int const handle = static_cast<int>(m_handle);
  m_handle = -1;
  return ::close(handle) == 0;
}
