// A file that is there, read in pieces from its start.
//
//   ExistingFile file(SystemPath(name).c_str());
//   if (!file.IsOpen()) NoSuchFile(name);
//   std::size_t arrived = file.Read(records, size);   // fewer at the end of the file
//
// While it is open no one else may open it, where the system knows such a thing. After a failure to
// open the last error of the system is the reason.

#pragma once

#include <cstddef>
#include <cstdint>

class ExistingFile {
 public:
  /// Opens a file, not a directory; IsOpen tells whether that succeeded.
  explicit ExistingFile(char const *path);
  ~ExistingFile();
  ExistingFile(ExistingFile const &) = delete;
  ExistingFile &operator=(ExistingFile const &) = delete;

  bool IsOpen() const { return m_handle != -1; }
  /// Bytes that are not read yet; 0 if that is not known.
  std::uint64_t Left() const;
  /// Reads until `count` bytes arrived or no more come; how many arrived.
  std::size_t Read(void *bytes, std::size_t count);

 private:
  std::intptr_t m_handle;  // as the system gives it; -1 when there is none
  std::uint64_t m_read = 0;
};
