// Open files: raw bytes (CFile), and bytes under a C stream, as text or binary (CStdioFile).
//
//   CStdioFile file;
//   CFileException reason;
//   if (!file.Open("table.txt", CFile::modeRead | CFile::typeText, &reason)) return reason.m_cause;
//   char text[80];
//   unsigned int const count = file.Read(text, sizeof text);   // CR LF in the file is one LF here
//
// Names go through SystemPath, so stored names with backslashes open on every system. A call on a
// file that is not open reads nothing; a write to it throws. One thread at a time.

#pragma once

#include <cstddef>
#include <cstdio>

#include <quillaven/platform/api.h>
#include <quillaven/platform/exceptions.h>

/// A file of bytes, without a buffer of its own: each Read and Write goes to the system.
class QUILLAVEN_API CFile {
 public:
  /// How a file is opened; the flags are joined by `|`.
  enum OpenFlags : unsigned int {
    modeRead = 0x0,       ///< the file must exist
    modeWrite = 0x1,      ///< kept as it is unless modeCreate stands with it
    modeReadWrite = 0x2,  ///< the same, for both
    modeCreate = 0x1000,  ///< made anew; earlier content goes
    typeText = 0x4000,    ///< CStdioFile only: CR LF is one LF to the reader
    typeBinary = 0x8000   ///< CStdioFile only: bytes as they are
  };
  enum SeekPosition : unsigned int { begin = 0, current = 1, end = 2 };

  CFile() = default;
  /// Opens a file, or throws a CFileException with the cause.
  CFile(char const *name, unsigned int flags);
  virtual ~CFile();
  CFile(CFile const &) = delete;
  CFile &operator=(CFile const &) = delete;

  /// Opens a file, and closes one that was open, whose failure to close is one to open. False on
  /// failure, with the cause in `error` where that is given: fileNotFound, accessDenied (a directory
  /// too), tooManyOpenFiles, diskFull, hardIO, and genericException for the rest.
  virtual bool Open(char const *name, unsigned int flags, CFileException *error = nullptr);

  /// Reads up to `count` bytes and returns how many; fewer only at the end of the file. Throws a
  /// CFileException if the device fails.
  virtual std::size_t Read(void *buffer, std::size_t count);
  /// Writes all bytes, or throws a CFileException: diskFull if there is no room, or what it was.
  virtual void Write(void const *buffer, std::size_t count);
  /// Goes to a place counted from the begin, the current position or the end, and returns it from
  /// the begin. Throws a CFileException of cause badSeek for a place that is none.
  virtual long long Seek(long long offset, unsigned int from);
  /// Length in bytes; the position stays. In text mode: of the text as it is read.
  virtual long long GetLength();
  /// Hands what is buffered to the system. Throws as Write does.
  virtual void Flush();
  /// Closes; what was buffered is written first, and a failure of that throws as Write does. The
  /// file counts as closed all the same.
  virtual void Close();

 protected:
  bool OpenStream(char const *name, unsigned int flags, bool text, CFileException *error);

  std::FILE *m_pStream = nullptr;

 private:
  // A C stream takes a read behind a write, and the other way round, only with a seek between.
  enum class Last : unsigned char { neither, read, write };
  Last m_nLast = Last::neither;
};

/// A file under a buffered C stream. `m_pStream` may be handed to fscanf and its like: they share
/// one position with Read and Write. Text is the default type.
class QUILLAVEN_API CStdioFile : public CFile {
 public:
  CStdioFile() = default;
  CStdioFile(char const *name, unsigned int flags);
  ~CStdioFile() override;

  bool Open(char const *name, unsigned int flags, CFileException *error = nullptr) override;

  using CFile::m_pStream;
};
