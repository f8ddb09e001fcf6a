// C streams over files, as the system opens them.
//
//   std::FILE *stream = OpenFileStream(SystemPath(name).c_str(), "rb", false);
//   if (stream == nullptr) return errno;

#pragma once

#include <cstdio>

/// Opens a file with a mode of fopen; not inherited by child processes. With `text`, a mode for
/// reading delivers CR LF as LF. Null on failure, with errno set; a directory is EACCES.
std::FILE *OpenFileStream(char const *path, char const *mode, bool text);

/// fseek and ftell over the whole length of a file.
int SeekStream(std::FILE *stream, long long offset, int whence);
long long TellStream(std::FILE *stream);
