#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <quillaven/platform/existing_file_internal.h>

namespace {

// Opening a directory for reading succeeds here, and only reading it fails.
int OpenFileAlone(char const *path) {
  int const handle = ::open(path, O_RDONLY | O_CLOEXEC);
  if (handle == -1) return -1;
  struct stat status {};
  if (::fstat(handle, &status) != 0 || !S_ISDIR(status.st_mode)) return handle;
  ::close(handle);
  errno = EISDIR;
  return -1;
}

}  // namespace

ExistingFile::ExistingFile(char const *path) : m_handle(OpenFileAlone(path)) {}

ExistingFile::~ExistingFile() {
  int const lastError = errno;
  if (IsOpen()) ::close(static_cast<int>(m_handle));
  errno = lastError;
}

// The system gives pipes, devices and files of its own making a size, too, but one that means
// nothing: it is 0, whatever there is to read.
std::optional<std::uint64_t> ExistingFile::Left() const {
  struct stat status {};
  if (::fstat(static_cast<int>(m_handle), &status) != 0) return std::nullopt;
  auto const size = static_cast<std::uint64_t>(status.st_size);
  if (!S_ISREG(status.st_mode) || size == 0 || size < m_read) return std::nullopt;
  return size - m_read;
}

std::size_t ExistingFile::Read(void *bytes, std::size_t count) {
  auto *at = static_cast<char *>(bytes);
  std::size_t arrived = 0;
  while (arrived < count) {
    ssize_t const got = ::read(static_cast<int>(m_handle), at + arrived, count - arrived);
    if (got < 0 && errno == EINTR) continue;
    m_failed = got < 0;
    if (got <= 0) break;
    arrived += static_cast<std::size_t>(got);
  }
  m_read += arrived;
  return arrived;
}
