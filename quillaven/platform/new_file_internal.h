// A file that is made anew, or replaces one, and written in pieces.
//
//   NewFile file(SystemPath(name).c_str());
//   bool written = file.IsOpen() && file.Write(header, 14) && file.Write(pixels, size) && file.Close();
//   if (!written) throw FormatError(name, LastSystemError());
//
// After a failure the last error of the system is the reason, and what was written stays.

#pragma once

#include <cstddef>
#include <cstdint>

class NewFile {
 public:
  /// What a file is opened for: a place that may be written alone refuses the second.
  enum class Access { kWrite, kReadAndWrite };

  /// Opens the file; IsOpen tells whether that succeeded.
  explicit NewFile(char const *path, Access access = Access::kWrite);
  /// Closes the file if Close was not called; the last error stays.
  ~NewFile();
  NewFile(NewFile const &) = delete;
  NewFile &operator=(NewFile const &) = delete;

  bool IsOpen() const { return m_handle != -1; }
  bool Write(void const *bytes, std::size_t count);
  bool Close();

 private:
  std::intptr_t m_handle;  // as the system gives it; -1 when there is none
};
