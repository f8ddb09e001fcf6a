#include <string>

#include <quillaven/platform/file_stream_internal.h>

// The runtime's own text mode turns CR LF into LF on reading and back on writing. N keeps the
// handle from child processes. Directories cannot be opened here at all.
std::FILE *OpenFileStream(char const *path, char const *mode, bool text) {
  std::string flags(mode);
  if (text) flags.back() = 't';
  return std::fopen(path, (flags + "N").c_str());
}

int SeekStream(std::FILE *stream, long long offset, int whence) {
  return ::_fseeki64(stream, offset, whence);
}

long long TellStream(std::FILE *stream) {
  return ::_ftelli64(stream);
}
