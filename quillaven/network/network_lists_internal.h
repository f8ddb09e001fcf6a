// Walks along the lists of links that the nodes of a network have.
//
//   ListPlace const place = WalkList(cells, {0, node.outLinks}, cells.size(), [&](auto const &cell) {
//     return LeadsTo(links, cell, to);
//   });
//   std::uint32_t link = IsCell(cells, place.at) ? cells[place.at].link : 0;
//
// The lists of a damaged file may lead anywhere, and in circles: a walk ends at an index beyond the
// pool, and is given as many steps as there are cells.

#pragma once

#include <cstddef>
#include <cstdint>

#include <quillaven/network/network.h>

using CellPool = CRecordPool<CNetwork::CIdListElem>;

/// A cell of a list, and the one in front of it; 0 in front of the first.
struct ListPlace {
  std::uint32_t front = 0;
  std::uint32_t at = 0;
};

inline bool IsCell(CellPool const &cells, std::uint32_t index) {
  return index != 0 && index < cells.size();
}

/// Goes on from a place until a cell is wanted, over at most `steps` cells. Where it stopped: the
/// cell that was wanted, the first that was not looked at, or the end of the list.
template <class Wanted>
ListPlace WalkList(CellPool const &cells, ListPlace place, std::size_t steps, Wanted wanted) {
  for (; steps > 0 && IsCell(cells, place.at) && !wanted(cells[place.at]); --steps)
    place = {place.at, cells[place.at].next};
  return place;
}

/// Whether a cell's link ends at a node. A link beyond the pool, or none, ends nowhere.
inline bool LeadsTo(CRecordPool<CNetwork::CLink> const &links, CNetwork::CIdListElem const &cell,
                    std::uint32_t node) {
  return cell.link != 0 && cell.link < links.size() && links[cell.link].to == node;
}

/// Takes a cell out of the list that begins at `head`. It is marked; where it led to stays in it.
inline void TakeOutCell(CellPool &cells, std::uint32_t &head, ListPlace place) {
  CNetwork::CIdListElem &cell = cells[place.at];
  (place.front == 0 ? head : cells[place.front].next) = cell.next;
  cell.link = 0;
}
