// A file that is there, read in pieces from its start.
//
//   ExistingFile file(SystemPath(name).c_str());
//   if (!file.IsOpen()) NoSuchFile(name);
//   std::size_t arrived = file.Read(records, size);   // fewer at the end of the file
//   if (file.Failed()) FileError(name, "Copy failed");
//
// While it is open no one else may open it, where the system knows such a thing. After a failure the
// last error of the system is the reason.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

class ExistingFile {
 public:
  /// Opens a file, not a directory; IsOpen tells whether that succeeded.
  explicit ExistingFile(char const *path);
  ~ExistingFile();
  ExistingFile(ExistingFile const &) = delete;
  ExistingFile &operator=(ExistingFile const &) = delete;

  bool IsOpen() const { return m_handle != -1; }
  /// Bytes that are not read yet; nothing where that is not known, as of a pipe.
  std::optional<std::uint64_t> Left() const;
  /// Reads until `count` bytes arrived or no more come; how many arrived.
  std::size_t Read(void *bytes, std::size_t count);
  /// Whether a Read ended because the system could not read on, and not at the end of the file.
  bool Failed() const { return m_failed; }

 private:
  std::intptr_t m_handle;  // as the system gives it; -1 when there is none
  std::uint64_t m_read = 0;
  bool m_failed = false;
};
