// A file in memory, which can be cut short and can run full.
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
    std::size_t const got = std::min(count, content.size() - position);
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
    std::size_t const base = from == begin ? 0 : from == end ? content.size() : position;
    position = base + static_cast<std::size_t>(offset);
    return static_cast<long long>(position);
  }
  long long GetLength() override { return static_cast<long long>(content.size()); }
  void Flush() override {}

  std::string content;
  std::size_t room = static_cast<std::size_t>(-1);
  std::size_t position = 0;
};

/// Bytes from numbers, for tables of expected content.
template <class... Values>
std::string Bytes(Values... values) {
  return {static_cast<char>(values)...};
}
