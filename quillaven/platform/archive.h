// A byte stream over a file, in one direction, through a buffer: what documents are stored in.
//
//   CFile file("map.qmp", CFile::modeWrite | CFile::modeCreate);
//   CArchive archive(&file, CArchive::store);
//   archive << 3 << 2.5F << CString("name");
//   archive.Close();                            // throws what the last write failed with
//
// Numbers are little-endian of fixed width on every machine: int, long and unsigned long have 4
// bytes, short 2, float 4, double 8. A count has 2 bytes, or FF FF and 4 bytes from 65535 on. A
// string is its length and its bytes: the length has 1 byte, FF and 2 bytes from 255 on, FF FF FF
// and 4 bytes from 65534 on.
//
// A load that meets the end of the file throws a CArchiveException of cause endOfFile, a call in
// the wrong direction one of cause writeOnly or readOnly; the file's own CFileException passes.

#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <quillaven/platform/api.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/strings.h>

class QUILLAVEN_API CArchive {
 public:
  enum Mode : unsigned int { store = 0, load = 1 };

  /// The file is not owned and stays open. It is read ahead of the archive by up to the buffer.
  CArchive(CFile *file, unsigned int mode, std::size_t bufferSize = 65536);
  /// Writes what is buffered if Close was not called; a failure of that is lost, so call Close.
  ~CArchive();
  CArchive(CArchive const &) = delete;
  CArchive &operator=(CArchive const &) = delete;

  bool IsLoading() const { return m_nMode == load; }
  bool IsStoring() const { return m_nMode == store; }
  CFile *GetFile() const { return m_pFile; }

  /// Reads up to `count` bytes and returns how many; fewer only at the end of the file.
  std::size_t Read(void *bytes, std::size_t count);
  void Write(void const *bytes, std::size_t count);

  /// A count in count form.
  unsigned long ReadCount();
  void WriteCount(unsigned long count);

  CArchive &operator<<(int value) { return Put(static_cast<std::int32_t>(value)); }
  CArchive &operator<<(unsigned int value) { return Put(static_cast<std::uint32_t>(value)); }
  CArchive &operator<<(long value) { return Put(static_cast<std::int32_t>(value)); }
  CArchive &operator<<(unsigned long value) { return Put(static_cast<std::uint32_t>(value)); }
  CArchive &operator<<(short value) { return Put(value); }
  CArchive &operator<<(unsigned short value) { return Put(value); }
  CArchive &operator<<(unsigned char value) { return Put(value); }
  CArchive &operator<<(float value) { return Put(value); }
  CArchive &operator<<(double value) { return Put(value); }
  CArchive &operator<<(CString const &text);

  CArchive &operator>>(int &value) { return Get<std::int32_t>(value); }
  CArchive &operator>>(unsigned int &value) { return Get<std::uint32_t>(value); }
  CArchive &operator>>(long &value) { return Get<std::int32_t>(value); }
  CArchive &operator>>(unsigned long &value) { return Get<std::uint32_t>(value); }
  CArchive &operator>>(short &value) { return Get<short>(value); }
  CArchive &operator>>(unsigned short &value) { return Get<unsigned short>(value); }
  CArchive &operator>>(unsigned char &value) { return Get<unsigned char>(value); }
  CArchive &operator>>(float &value) { return Get<float>(value); }
  CArchive &operator>>(double &value) { return Get<double>(value); }
  CArchive &operator>>(CString &text);

  /// Bytes that can still be read, as far as the length of the file tells.
  std::uint64_t BytesLeft();
  /// Hands what is buffered to the file. A loading archive gives back what it has read ahead.
  void Flush();
  /// Flushes and ends the archive; the file stays open.
  void Close();

 private:
  // The bytes of a number from the lowest to the highest, or back.
  template <class T>
  static std::array<unsigned char, sizeof(T)> Ordered(std::array<unsigned char, sizeof(T)> bytes) {
    if constexpr (std::endian::native == std::endian::big)
      for (std::size_t i = 0; i < sizeof(T) / 2; ++i) std::swap(bytes[i], bytes[sizeof(T) - 1 - i]);
    return bytes;
  }
  template <class T>
  CArchive &Put(T value) {
    auto const bytes = Ordered<T>(std::bit_cast<std::array<unsigned char, sizeof(T)>>(value));
    Write(bytes.data(), sizeof(T));
    return *this;
  }
  template <class T, class Value>
  CArchive &Get(Value &value) {
    std::array<unsigned char, sizeof(T)> bytes;
    ReadAll(bytes.data(), sizeof(T));
    value = std::bit_cast<T>(Ordered<T>(bytes));
    return *this;
  }
  void ReadAll(void *bytes, std::size_t count);
  void RequireMode(unsigned int mode) const;
  unsigned long ReadLength();

  CFile *m_pFile;
  unsigned int m_nMode;
  std::vector<unsigned char> m_Buffer;
  std::size_t m_nFirst = 0;  // load: what is unread lies from here ...
  std::size_t m_nEnd = 0;    // ... to here; store: what is unwritten lies before here
};
