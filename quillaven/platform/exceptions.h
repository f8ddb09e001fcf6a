// The exceptions of the application framework that pass through the library.
//
//   try {
//     map.Serialize(archive);
//   } catch (CArchiveException const &e) {
//     if (e.m_cause == CArchiveException::endOfFile) ...
//   }
//
// They are thrown by value and caught by reference. The library's own failures are plain
// std::string objects whose text is the whole message.

#pragma once

#include <quillaven/platform/api.h>

/// Base of the framework's exceptions.
class QUILLAVEN_API CException {
 public:
  CException() = default;
  CException(CException const &) = default;
  CException &operator=(CException const &) = default;
  virtual ~CException();
};

/// The user has been told already: whoever catches it shows nothing.
class QUILLAVEN_API CUserException : public CException {
 public:
  ~CUserException() override;
};

/// A fault in the content of an archive.
class QUILLAVEN_API CArchiveException : public CException {
 public:
  enum Cause {
    none = 0,
    genericException = 1,
    readOnly = 2,
    endOfFile = 3,
    writeOnly = 4,
    badIndex = 5,
    badClass = 6,
    badSchema = 7
  };
  explicit CArchiveException(int cause = none) : m_cause(cause) {}
  ~CArchiveException() override;

  int m_cause;
};

/// A fault of a file itself.
class QUILLAVEN_API CFileException : public CException {
 public:
  enum Cause {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14
  };
  explicit CFileException(int cause = none) : m_cause(cause) {}
  ~CFileException() override;

  int m_cause;
};

/// A fault on the way to another machine: the server, the connection or a transfer.
class QUILLAVEN_API CInternetException : public CException {
 public:
  /// The numbers that Windows gives to these faults, on every machine.
  enum Error {
    timeout = 12002,
    extendedError = 12003,  ///< the server answered something that is no success
    internalError = 12004,
    nameNotResolved = 12007,
    loginFailure = 12015,
    cannotConnect = 12029,
    connectionAborted = 12030
  };
  explicit CInternetException(unsigned int error = internalError) : m_dwError(error) {}
  ~CInternetException() override;

  unsigned int m_dwError;
};
