#include <algorithm>

#include <quillaven/platform/archive.h>

namespace {

constexpr unsigned long kLongCount = 0xFFFF;
constexpr unsigned long kLongText = 0xFFFE;
constexpr unsigned long kMediumText = 0xFF;

}  // namespace

CArchive::CArchive(CFile *file, unsigned int mode, std::size_t bufferSize)
    : m_pFile(file),
      m_nMode(mode == load ? load : store),
      m_Buffer(std::max<std::size_t>(bufferSize, 16)) {}

CArchive::~CArchive() {
  try {
    Close();
  } catch (...) {  // a destructor may run while another failure is on its way
  }
}

void CArchive::RequireMode(unsigned int mode) const {
  if (m_nMode != mode)
    throw CArchiveException(m_nMode == load ? CArchiveException::readOnly
                                            : CArchiveException::writeOnly);
  if (m_pFile == nullptr) throw CFileException(CFileException::invalidFile);
}

std::size_t CArchive::Read(void *bytes, std::size_t count) {
  RequireMode(load);
  auto *to = static_cast<unsigned char *>(bytes);
  std::size_t done = 0;
  while (done < count) {
    if (m_nFirst == m_nEnd) {
      // What fills the buffer anyway goes straight to its place. Only a read of nothing is the end:
      // a file on its way from elsewhere may give less than was asked for, or fail the next time.
      if (count - done >= m_Buffer.size()) {
        std::size_t const got = m_pFile->Read(to + done, count - done);
        if (got == 0) break;
        done += got;
        continue;
      }
      m_nFirst = 0;
      m_nEnd = 0;
      m_nEnd = m_pFile->Read(m_Buffer.data(), m_Buffer.size());
      if (m_nEnd == 0) break;
    }
    std::size_t const piece = std::min(count - done, m_nEnd - m_nFirst);
    std::memcpy(to + done, m_Buffer.data() + m_nFirst, piece);
    m_nFirst += piece;
    done += piece;
  }
  return done;
}

void CArchive::ReadAll(void *bytes, std::size_t count) {
  if (Read(bytes, count) != count) throw CArchiveException(CArchiveException::endOfFile);
}

void CArchive::Write(void const *bytes, std::size_t count) {
  RequireMode(store);
  if (count > m_Buffer.size() - m_nEnd) {
    Flush();
    if (count >= m_Buffer.size()) {
      m_pFile->Write(bytes, count);
      return;
    }
  }
  if (count != 0) std::memcpy(m_Buffer.data() + m_nEnd, bytes, count);
  m_nEnd += count;
}

unsigned long CArchive::ReadCount() {
  unsigned short small = 0;
  *this >> small;
  if (small != kLongCount) return small;
  unsigned long count = 0;
  *this >> count;
  return count;
}

void CArchive::WriteCount(unsigned long count) {
  if (count < kLongCount) {
    *this << static_cast<unsigned short>(count);
  } else {
    *this << static_cast<unsigned short>(kLongCount) << count;
  }
}

CArchive &CArchive::operator<<(CString const &text) {
  auto const length = static_cast<unsigned long>(text.size());
  if (length < kMediumText) {
    *this << static_cast<unsigned char>(length);
  } else if (length < kLongText) {
    *this << static_cast<unsigned char>(0xFF) << static_cast<unsigned short>(length);
  } else {
    *this << static_cast<unsigned char>(0xFF) << static_cast<unsigned short>(0xFFFF) << length;
  }
  Write(text.data(), text.size());
  return *this;
}

unsigned long CArchive::ReadLength() {
  unsigned char small = 0;
  *this >> small;
  if (small != 0xFF) return small;
  unsigned short medium = 0;
  *this >> medium;
  if (medium != 0xFFFF) return medium;
  unsigned long length = 0;
  *this >> length;
  return length;
}

// The text grows as it is read: a length that the file does not hold costs no more than the file.
CArchive &CArchive::operator>>(CString &text) {
  constexpr std::size_t kPiece = 65536;
  std::size_t left = ReadLength();
  text.clear();
  while (left > 0) {
    std::size_t const piece = std::min(left, kPiece);
    std::size_t const at = text.size();
    text.resize(at + piece);
    ReadAll(text.data() + at, piece);
    left -= piece;
  }
  return *this;
}

std::uint64_t CArchive::BytesLeft() {
  RequireMode(load);
  long long const inFile = m_pFile->GetLength() - m_pFile->Seek(0, CFile::current);
  return static_cast<std::uint64_t>(std::max(inFile, 0LL)) + (m_nEnd - m_nFirst);
}

void CArchive::Flush() {
  if (m_pFile == nullptr) return;
  std::size_t const first = m_nFirst;
  std::size_t const end = m_nEnd;
  m_nFirst = 0;
  m_nEnd = 0;
  if (IsLoading()) {
    if (first != end) m_pFile->Seek(-static_cast<long long>(end - first), CFile::current);
  } else if (end != 0) {
    m_pFile->Write(m_Buffer.data(), end);
  }
}

void CArchive::Close() {
  CFile *file = m_pFile;
  Flush();
  m_pFile = nullptr;
  if (file != nullptr && IsStoring()) file->Flush();
}

// ---- the containers of documents ----

void CStringArray::Serialize(CArchive &archive) {
  if (archive.IsStoring()) {
    archive.WriteCount(static_cast<unsigned long>(GetSize()));
    for (int i = 0; i < GetSize(); ++i) archive << GetAt(i);
    return;
  }
  RemoveAll();
  for (unsigned long left = archive.ReadCount(); left > 0; --left) {
    CString text;
    archive >> text;
    Add(text);
  }
}

void CDWordArray::Serialize(CArchive &archive) {
  if (archive.IsStoring()) {
    archive.WriteCount(static_cast<unsigned long>(GetSize()));
    for (int i = 0; i < GetSize(); ++i) archive << GetAt(i);
    return;
  }
  RemoveAll();
  for (unsigned long left = archive.ReadCount(); left > 0; --left) {
    std::uint32_t number = 0;
    archive >> number;
    Add(number);
  }
}
