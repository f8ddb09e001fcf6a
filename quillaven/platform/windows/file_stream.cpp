#include <cerrno>
#include <io.h>
#include <string>
#include <windows.h>

#include <quillaven/platform/file_stream_internal.h>

namespace {

// N keeps the handle from child processes. Directories cannot be opened here at all. The runtime has
// one number for a missing file and for a missing directory on the way to it; the system tells them
// apart.
std::FILE *Open(std::string const &path, std::string const &flags) {
  std::FILE *stream = std::fopen(path.c_str(), (flags + "N").c_str());
  if (stream == nullptr && errno == ENOENT && ::GetLastError() == ERROR_PATH_NOT_FOUND)
    errno = ENOTDIR;
  return stream;
}

// The runtime's number for an error of the system that it has not seen itself.
int ErrnoOf(DWORD error) {
  switch (error) {
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY:
    case ERROR_BUFFER_OVERFLOW:  // this and the next one: the name is too long
    case ERROR_FILENAME_EXCED_RANGE:
      return ENOTDIR;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return EACCES;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    default:
      return EIO;
  }
}

std::FILE *FailWith(int number) {
  errno = number;
  return nullptr;
}

// Closes a stream and keeps the error of the operation before.
void CloseFailed(std::FILE *stream) {
  int const number = errno;
  std::fclose(stream);
  errno = number;
}

// A file of no name that is gone when it is closed, which the system keeps in memory while it can.
std::FILE *OpenTemporaryFile() {
  char folder[MAX_PATH + 1] = "";
  char path[MAX_PATH + 1] = "";
  DWORD const length = ::GetTempPathA(sizeof folder, folder);
  if (length == 0) return FailWith(ErrnoOf(::GetLastError()));
  if (length > sizeof folder) return FailWith(ENAMETOOLONG);
  if (::GetTempFileNameA(folder, "qlv", 0, path) == 0) return FailWith(ErrnoOf(::GetLastError()));
  std::FILE *const file = Open(path, "w+bTD");
  int const number = errno;
  if (file == nullptr) ::DeleteFileA(path);
  errno = number;
  return file;
}

// False with errno set when either file fails.
bool CopyWithoutCr(std::FILE *from, std::FILE *to) {
  for (int byte = std::getc(from); byte != EOF;) {
    int const next = std::getc(from);
    if ((byte != '\r' || next != '\n') && std::putc(byte, to) == EOF) return false;
    byte = next;
  }
  return std::ferror(from) == 0 && std::fflush(to) == 0;
}

DWORD TypeOf(std::FILE *file) {
  return ::GetFileType(reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(file))));
}

bool HasCr(std::FILE *file) {
  int byte = std::getc(file);
  while (byte != EOF && byte != '\r') byte = std::getc(file);
  std::rewind(file);
  return byte == '\r';
}

// The runtime's text mode tells wrong places in a file whose lines end in LF alone, and takes the
// byte 26 for the end. So a text without CR is read as it lies, and any other one from a copy. What
// comes from a pipe or a console can be read once, so that it is copied without a look at it.
std::FILE *OpenTextToRead(char const *path) {
  std::FILE *const file = Open(path, "rb");
  if (file == nullptr || (TypeOf(file) == FILE_TYPE_DISK && !HasCr(file))) return file;
  std::FILE *copy = OpenTemporaryFile();
  if (copy != nullptr && !CopyWithoutCr(file, copy)) {
    CloseFailed(copy);
    copy = nullptr;
  }
  CloseFailed(file);
  if (copy != nullptr) std::rewind(copy);
  return copy;
}

}  // namespace

// On writing the runtime's own text mode turns LF into CR LF.
std::FILE *OpenFileStream(char const *path, char const *mode, bool text) {
  std::string flags(mode);
  if (text && flags == "rb") return OpenTextToRead(path);
  if (text) flags.back() = 't';
  return Open(path, flags);
}

// The runtime takes any place in a pipe and stays where it is.
int SeekStream(std::FILE *stream, long long offset, int whence) {
  if (TypeOf(stream) == FILE_TYPE_PIPE) {
    errno = ESPIPE;
    return -1;
  }
  return ::_fseeki64(stream, offset, whence);
}

long long TellStream(std::FILE *stream) {
  return ::_ftelli64(stream);
}
