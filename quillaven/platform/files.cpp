#include <cerrno>
#include <utility>

#include <quillaven/platform/file_stream_internal.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/system_paths.h>

namespace {

int CauseOfErrno(int number) {
  switch (number) {
    case ENOENT:
      return CFileException::fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
      return CFileException::badPath;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return CFileException::accessDenied;
    case EMFILE:
    case ENFILE:
      return CFileException::tooManyOpenFiles;
    case ENOSPC:
    case EFBIG:
      return CFileException::diskFull;
    case EBADF:
      return CFileException::invalidFile;
    case EIO:
      return CFileException::hardIO;
    default:
      return CFileException::genericException;
  }
}

char const *ModeOfFlags(unsigned int flags) {
  bool const reads = (flags & CFile::modeWrite) == 0;
  if ((flags & CFile::modeCreate) != 0) return reads ? "w+b" : "wb";
  bool const writes = (flags & (CFile::modeWrite | CFile::modeReadWrite)) != 0;
  return writes ? "r+b" : "rb";
}

// Stays where it is, which is what a C stream wants between reading and writing. A file without
// places, such as a pipe, wants nothing.
void TurnAround(std::FILE *stream) {
  if (SeekStream(stream, 0, SEEK_CUR) != 0 && errno != ESPIPE)
    throw CFileException(CauseOfErrno(errno));
}

}  // namespace

CFile::CFile(char const *name, unsigned int flags) {
  CFileException error;
  if (!CFile::Open(name, flags, &error)) throw error;
}

CFile::~CFile() {
  if (m_pStream != nullptr) std::fclose(m_pStream);
}

bool CFile::OpenStream(char const *name, unsigned int flags, bool text, CFileException *error) {
  try {
    if (m_pStream != nullptr) Close();
  } catch (CFileException const &reason) {
    if (error != nullptr) error->m_cause = reason.m_cause;
    return false;
  }
  m_nLast = Last::neither;
  m_pStream = OpenFileStream(SystemPath(name).c_str(), ModeOfFlags(flags), text);
  if (m_pStream == nullptr && error != nullptr) error->m_cause = CauseOfErrno(errno);
  return m_pStream != nullptr;
}

bool CFile::Open(char const *name, unsigned int flags, CFileException *error) {
  if (!OpenStream(name, flags, false, error)) return false;
  std::setvbuf(m_pStream, nullptr, _IONBF, 0);
  return true;
}

std::size_t CFile::Read(void *buffer, std::size_t count) {
  if (m_pStream == nullptr || count == 0) return 0;
  if (std::exchange(m_nLast, Last::read) == Last::write) TurnAround(m_pStream);
  std::size_t const got = std::fread(buffer, 1, count, m_pStream);
  if (got < count && std::ferror(m_pStream) != 0) throw CFileException(CauseOfErrno(errno));
  return got;
}

void CFile::Write(void const *buffer, std::size_t count) {
  if (m_pStream == nullptr) throw CFileException(CFileException::invalidFile);
  if (std::exchange(m_nLast, Last::write) == Last::read) TurnAround(m_pStream);
  if (count != 0 && std::fwrite(buffer, 1, count, m_pStream) != count)
    throw CFileException(CauseOfErrno(errno));
}

long long CFile::Seek(long long offset, unsigned int from) {
  int const whence = from == end ? SEEK_END : from == current ? SEEK_CUR : SEEK_SET;
  if (m_pStream == nullptr || SeekStream(m_pStream, offset, whence) != 0)
    throw CFileException(CFileException::badSeek);
  return TellStream(m_pStream);
}

long long CFile::GetLength() {
  long long const position = Seek(0, current);
  long long const length = Seek(0, end);
  Seek(position, begin);
  return length;
}

void CFile::Flush() {
  if (m_pStream != nullptr && std::fflush(m_pStream) != 0)
    throw CFileException(CauseOfErrno(errno));
}

void CFile::Close() {
  std::FILE *stream = m_pStream;
  m_pStream = nullptr;
  if (stream != nullptr && std::fclose(stream) != 0) throw CFileException(CauseOfErrno(errno));
}

CStdioFile::CStdioFile(char const *name, unsigned int flags) {
  CFileException error;
  if (!CStdioFile::Open(name, flags, &error)) throw error;
}

CStdioFile::~CStdioFile() = default;

bool CStdioFile::Open(char const *name, unsigned int flags, CFileException *error) {
  return OpenStream(name, flags, (flags & typeBinary) == 0, error);
}
