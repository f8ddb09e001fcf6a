// A growing array of plain records, such as the pools of a network.
//
//   CRecordPool<CNetwork::CNode> nodes;
//   nodes.reserve(40000);
//   nodes.resize(count);                                     // records as the storage lies
//   file.Read(nodes.data(), count * sizeof(CNetwork::CNode));  // one block fills them
//
// It is a std::vector but for one thing: resize leaves new records as their storage lies, since a
// block of a file is about to fill them; zeroing them first would touch all of it twice.

#pragma once

#include <memory>
#include <new>
#include <utility>
#include <vector>

template <class Record>
struct CRecordAllocator : std::allocator<Record> {
  template <class Other>
  struct rebind {
    using other = CRecordAllocator<Other>;
  };
  CRecordAllocator() = default;
  template <class Other>
  CRecordAllocator(CRecordAllocator<Other> const & /*other*/) noexcept {}

  /// What resize does to each new record: nothing.
  template <class Other>
  void construct(Other * /*place*/) noexcept {}
  /// What all other operations do: a copy of a record.
  template <class Other, class... Arguments>
  void construct(Other *place, Arguments &&...arguments) {
    ::new (static_cast<void *>(place)) Other(std::forward<Arguments>(arguments)...);
  }
};

template <class Record>
using CRecordPool = std::vector<Record, CRecordAllocator<Record>>;
