// Finds nodes by exact coordinates as CNetwork::FindNode does, but without the walk.
//
//   CNodeIndex index(nodes);
//   std::uint32_t node = index.Find(x, y);   // the lowest index at that place, 0 if there is none
//   node = index.FindOrAdd(x, y);            // likewise, but the index of the next node if none is
//   if (node == nodes.size()) Append(x, y);  // which must then be made
//
// It lives within one operation, as callers may write coordinates through the records between two.
// As in the walk -0.0 equals 0.0, and a place that is not a number equals nothing.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <quillaven/network/network.h>

class CNodeIndex {
 public:
  /// Takes in the nodes from 1 on. The pool must outlive the index, and grow through FindOrAdd
  /// alone.
  explicit CNodeIndex(CRecordPool<CNetwork::CNode> const &nodes);

  std::uint32_t Find(double x, double y);
  std::uint32_t FindOrAdd(double x, double y);
  /// Says that this place is looked up soon, so that its slot is on its way from memory.
  void Expect(double x, double y) const;

 private:
  // The upper half of a place's hash and its node, in one line of the cache: a place that is new
  // costs one look into memory.
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t node = 0;  // 0: the slot is free
  };

  Slot &SlotOf(std::uint32_t hash, double x, double y);
  void Enlarge();

  // A table with open addressing, a power of two in size and at most half full. The high bits of a
  // hash choose the slot, so that a table twice as large is filled in order.
  CRecordPool<CNetwork::CNode> const &m_nodes;
  std::vector<Slot> m_slots;
  unsigned int m_shift = 0;  // what is left of a hash when it is shifted so is its slot
  std::size_t m_taken = 0;
};
