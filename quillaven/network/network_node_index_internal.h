// Finds nodes by exact coordinates as CNetwork::FindNode does, but without the walk.
//
//   CNodeIndex index(nodes);
//   std::uint32_t node = index.Find(x, y);   // the lowest index at that place, 0 if there is none
//   index.Add(CreateAt(x, y));               // each node that is appended meanwhile
//
// It lives within one operation, as callers may write coordinates through the records between two.
// As in the walk -0.0 equals 0.0, and a place that is not a number equals nothing.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <quillaven/network/network.h>

class CNetwork::CNodeIndex {
 public:
  /// Takes in the nodes from 1 on. The pool must outlive the index; it may grow.
  explicit CNodeIndex(CRecordPool<CNode> const &nodes);

  std::uint32_t Find(double x, double y) const;
  /// Takes in a node; if one of lower index has the same place, nothing changes.
  void Add(std::uint32_t node);

 private:
  // A slot holds the upper half of the hash, which spares most looks at a node, and the index.
  struct Slot {
    std::uint32_t tag = 0;
    std::uint32_t node = 0;  // 0: the slot is free
  };

  std::size_t SlotOf(std::uint64_t hash, double x, double y) const;
  void Enlarge(std::size_t slots);

  CRecordPool<CNode> const &m_nodes;
  std::vector<Slot> m_slots;  // a power of two, at most half of them taken
  std::size_t m_taken = 0;
};
