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

class CNetwork::CNodeIndex {
 public:
  /// Takes in the nodes from 1 on. The pool must outlive the index, and grow through FindOrAdd
  /// alone.
  explicit CNodeIndex(CRecordPool<CNode> const &nodes);

  std::uint32_t Find(double x, double y) const;
  std::uint32_t FindOrAdd(double x, double y);

 private:
  std::size_t SlotOf(std::uint64_t hash, double x, double y) const;
  void Take(std::uint32_t node);
  void Rebuild(std::size_t slots);

  // A table with open addressing, a power of two in size and at most half full. The tags, a byte of
  // the hash each, stand by themselves: they answer for most places that are new, and stay in the
  // caches where the indices do not.
  CRecordPool<CNode> const &m_nodes;
  std::vector<unsigned char> m_tags;  // 0: the slot is free
  std::vector<std::uint32_t> m_indices;
  std::size_t m_taken = 0;
};
