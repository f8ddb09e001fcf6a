// A file in memory, which can be cut short, can run full and can fail while it is read.
//
//   MemoryFile file;
//   CArchive archive(&file, CArchive::store);

#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include <quillaven/platform/files.h>

class MemoryFile : public CFile {
 public:
  explicit MemoryFile(std::string bytes = {}) : content(std::move(bytes)) {}

  std::size_t Read(void *buffer, std::size_t count) override {
    std::size_t const sound = failsAt - std::min(failsAt, position);
    std::size_t const got = std::min({count, most, sound, content.size() - position});
    if (got == 0 && count != 0 && sound == 0) throw CFileException(CFileException::hardIO);
    std::memcpy(buffer, content.data() + position, got);
    position += got;
    return got;
  }
  /// Only files that are written from the begin to the end are told apart from others.
  void Write(void const *buffer, std::size_t count) override {
    std::size_t const fits = std::min(count, room - std::min(room, content.size()));
    content.append(static_cast<char const *>(buffer), fits);
    position = content.size();
    if (fits < count) throw CFileException(CFileException::diskFull);
  }
  long long Seek(long long offset, unsigned int from) override {
    if (onlyReads) throw CFileException(CFileException::badSeek);
    std::size_t const base = from == begin ? 0 : from == end ? content.size() : position;
    position = base + static_cast<std::size_t>(offset);
    return static_cast<long long>(position);
  }
  long long GetLength() override {
    if (onlyReads) throw CFileException(CFileException::badSeek);
    return static_cast<long long>(content.size());
  }
  void Flush() override {}

  std::string content;
  std::size_t room = static_cast<std::size_t>(-1);
  std::size_t most = static_cast<std::size_t>(-1);     // bytes that one read gives
  std::size_t failsAt = static_cast<std::size_t>(-1);  // the device cannot read from here on
  bool onlyReads = false;                              // as a pipe: it has no places and no length
  std::size_t position = 0;
};

/// Bytes from numbers, for tables of expected content.
template <class... Values>
std::string Bytes(Values... values) {
  return {static_cast<char>(values)...};
}
