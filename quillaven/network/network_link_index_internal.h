// Finds links and takes them out of the lists of nodes as CNetwork::FindLink, DelOutLink and
// DelInLink do, but without the walk along a list that is long.
//
//   CLinkIndex index(nodes, links, cells);
//   std::uint32_t link = index.Find(from, to);     // 0 if there is none
//   network.AddOutLink(&nodes[from], &links[added]);
//   index.Listed(from, CLinkIndex::kOut);          // to be told each time
//   index.TakeOut(from, CLinkIndex::kOut, link);
//
// Most nodes have a handful of links and are walked. A hub of thousands would make each of them cost
// a walk over the others; its list is looked through once and known from then on. The index lives
// within one operation, as callers may change lists between two.
//
// On any network the answers are those of the walk. The lists of a damaged file can lead in circles,
// beyond the pools and into each other: one that is not sound is walked, and what is known of a list
// is tested where it is used.

#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include <quillaven/network/network.h>
#include <quillaven/network/network_lists_internal.h>

class CLinkIndex {
 public:
  enum Direction : std::uint32_t { kIn, kOut };

  /// The pools must outlive the index. In the meantime links are put in lists and taken out only as
  /// above, and one that is taken out is marked as unused.
  CLinkIndex(CRecordPool<CNetwork::CNode> &nodes, CRecordPool<CNetwork::CLink> const &links,
             CellPool &cells);

  /// As CNetwork::FindLink, from a node of the pool.
  std::uint32_t Find(std::uint32_t from, std::uint32_t to);
  /// Says that a new link, its ends set, was put first in a list of the node.
  void Listed(std::uint32_t node, Direction direction);
  /// As CNetwork::DelInLink and DelOutLink.
  void TakeOut(std::uint32_t node, Direction direction, std::uint32_t link);

 private:
  // What is known of a long list.
  struct List {
    bool isSound = false;  // it ends, and names links of the pool, each once
    std::unordered_map<std::uint32_t, std::uint32_t> fronts;  // the cell in front of each link's
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> linksTo;  // each end; first last
  };

  std::uint32_t &Head(std::uint32_t node, Direction direction);
  List *KnownList(std::uint32_t node, Direction direction);
  List &LongList(std::uint32_t node, Direction direction);
  void LookThrough(std::uint32_t head, Direction direction, List &list);
  ListPlace KnownPlace(std::uint32_t head, List const &list, std::uint32_t link) const;

  CRecordPool<CNetwork::CNode> &m_nodes;
  CRecordPool<CNetwork::CLink> const &m_links;
  CellPool &m_cells;
  std::unordered_map<std::uint64_t, List> m_lists;
  std::size_t m_known = 0;  // cells of all lists that are known
};
