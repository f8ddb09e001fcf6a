#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/network/network.h>
#include <quillaven/network/network_bytes_internal.h>
#include <quillaven/platform/existing_file_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/new_file_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr char kMagic[] = "MI03";
constexpr std::size_t kMagicLength = 4;
constexpr int kFirstVersionWithLinkTypes = 3;

// The first so many creations after a read do not move a pool.
constexpr std::size_t kSpareRecords = 1000;

constexpr char const *kStandardLinkTypes[] = {"Planned transport links", "Toll-ways", "Other roads",
                                              "Railways"};

// A binary stream with the operations of ExistingFile and NewFile.
class StreamSource {
 public:
  explicit StreamSource(char const *path) : m_stream(path, std::ios::binary) {}
  bool IsOpen() const { return m_stream.is_open(); }
  std::optional<std::uint64_t> Left() {
    std::streamoff const at = m_stream.tellg();
    if (at < 0) return std::nullopt;  // a pipe has no positions
    m_stream.seekg(0, std::ios::end);
    std::streamoff const end = m_stream.tellg();
    m_stream.seekg(at);
    if (end < at) return std::nullopt;
    return static_cast<std::uint64_t>(end - at);
  }
  std::size_t Read(void *bytes, std::size_t count) {
    m_stream.read(static_cast<char *>(bytes), static_cast<std::streamsize>(count));
    return static_cast<std::size_t>(m_stream.gcount());
  }

 private:
  std::ifstream m_stream;
};

class StreamTarget {
 public:
  explicit StreamTarget(char const *path) : m_stream(path, std::ios::binary) {}
  bool IsOpen() const { return m_stream.is_open(); }
  bool Write(void const *bytes, std::size_t count) {
    m_stream.write(static_cast<char const *>(bytes), static_cast<std::streamsize>(count));
    return static_cast<bool>(m_stream);
  }

 private:
  std::ofstream m_stream;
};

template <class Source>
bool ReadCount(Source &source, std::uint32_t &count) {
  unsigned char bytes[sizeof count];
  if (source.Read(bytes, sizeof bytes) < sizeof bytes) return false;
  TakeNumber(bytes, count);
  return true;
}

// Makes a pool larger, with room to spare, and reads the records that are new as one block. False
// if not all arrive; the others are zero.
template <class Source, class Record>
bool ReadRecords(Source &source, CRecordPool<Record> &pool, std::size_t count) {
  std::size_t const first = pool.size();
  pool.reserve(count + kSpareRecords);
  pool.resize(count);
  std::size_t const size = (count - first) * sizeof(Record);
  auto *const bytes = reinterpret_cast<unsigned char *>(pool.data() + first);
  std::size_t const arrived = source.Read(bytes, size);
  std::fill(bytes + arrived, bytes + size, static_cast<unsigned char>(0));
  if constexpr (std::endian::native != std::endian::little) {
    std::vector<unsigned char> const file(bytes, bytes + size);
    for (std::size_t i = first; i < count; ++i)
      Decode(&file[(i - first) * sizeof(Record)], pool[i]);
  }
  return arrived == size;
}

// Reads a count and so many records. False, and the pool as it was, if the count itself is cut off;
// records that are cut off show at the next count.
//
// A count is believed as far as the file has records for it, and a thousand records further: a
// damaged one must not take all memory. What comes through a pipe does not tell how much there is:
// it is read in pieces, each as large as all before it, for as long as they arrive whole.
template <class Source, class Record>
bool ReadPool(Source &source, CRecordPool<Record> &pool) {
  std::uint32_t count = 0;
  if (!ReadCount(source, count)) return false;
  std::optional<std::uint64_t> const left = source.Left();
  std::uint64_t const there = left.value_or(0) / sizeof(Record) + kSpareRecords;
  pool.clear();
  bool isWhole =
      ReadRecords(source, pool, static_cast<std::size_t>(std::min<std::uint64_t>(count, there)));
  while (!left && isWhole && pool.size() < count)
    isWhole = ReadRecords(source, pool, std::min<std::size_t>(count, 2 * pool.size()));
  return true;
}

template <class Target, class Record>
void WritePool(Target &target, CRecordPool<Record> const &pool) {
  unsigned char count[sizeof(std::uint32_t)];
  PutNumber(static_cast<std::uint32_t>(pool.size()), count);
  target.Write(count, sizeof count);
  if constexpr (std::endian::native == std::endian::little) {
    target.Write(pool.data(), pool.size() * sizeof(Record));
  } else {
    std::vector<unsigned char> bytes(pool.size() * sizeof(Record));
    for (std::size_t i = 0; i < pool.size(); ++i) Encode(pool[i], &bytes[i * sizeof(Record)]);
    target.Write(bytes.data(), bytes.size());
  }
}

}  // namespace

bool CNetwork::Read(char const *file) {
  if (!ReadSDK(file)) return false;
  fileName = file;
  return true;
}

bool CNetwork::Write(char const *file) const {
  return WriteIOS(file);
}

// Through the system's file calls.
bool CNetwork::ReadSDK(char const *file) {
  ExistingFile source(SystemPath(file).c_str());
  if (source.IsOpen()) return ReadPools(source);
  NoSuchFile(file);
  return false;
}

// The same through a stream.
bool CNetwork::ReadIOS(char const *file) {
  StreamSource source(SystemPath(file).c_str());
  if (source.IsOpen()) return ReadPools(source);
  NoSuchFile(file);
  return false;
}

bool CNetwork::WriteSDK(char const *file) const {
  NewFile target(SystemPath(file).c_str());
  if (!target.IsOpen()) {
    CannotCreateFile(file);
    return false;
  }
  WritePools(target);
  return true;
}

bool CNetwork::WriteIOS(char const *file) const {
  StreamTarget target(SystemPath(file).c_str());
  if (!target.IsOpen()) {
    CannotCreateFile(file);
    return false;
  }
  WritePools(target);
  return true;
}

template <class Source>
bool CNetwork::ReadPools(Source &source) {
  char header[kMagicLength + 1] = "";
  source.Read(header, kMagicLength);
  // Only the letters are tested; what is no digit behind them counts as an old version.
  if (std::memcmp(header, kMagic, 2) != 0) {
    ShowMessageBox("Incorrect header of the binary network file", "Read network");
    return false;
  }
  int const version = LeadingInteger(header + 2);

  bool complete =
      ReadPool(source, nodes) && ReadPool(source, links) && ReadPool(source, idListElems);
  if (complete && version >= kFirstVersionWithLinkTypes && !linkTypesRead) {
    linkTypesRead = true;  // in a run of files the first one sets the names, even if it is cut off
    complete = ReadPool(source, linkTypes);
  }
  // An old file means the standard names, whatever names there are and however its reading ended.
  if (version < kFirstVersionWithLinkTypes) SetStandardLinkTypes();
  return complete;
}

// Failures of the disk are not looked at.
template <class Target>
void CNetwork::WritePools(Target &target) const {
  target.Write(kMagic, kMagicLength);
  WritePool(target, nodes);
  WritePool(target, links);
  WritePool(target, idListElems);
  WritePool(target, linkTypes);
}

void CNetwork::SetStandardLinkTypes() {
  linkTypes.clear();
  int index = 0;
  for (char const *const name : kStandardLinkTypes) SetLinkTypeName(index++, name);
}
