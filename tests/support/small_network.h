// Small networks, put together as a caller does.
//
//   CNetwork network;
//   AddLinkBetween(network, {1, 2}, {3, 4});

#pragma once

#include <cstdint>
#include <utility>

#include <quillaven/network/network.h>

/// A node at that place, new or not; its index.
inline unsigned long NodeOf(CNetwork &network, double x, double y) {
  CNetwork::CNode *node = network.FindNode(x, y);
  if (node == nullptr) {
    node = network.CreateNode();
    node->x = x;
    node->y = y;
  }
  return network.IndexOf(node);
}

/// Adds a link between two nodes as a caller does; its index.
inline unsigned long AddLink(CNetwork &network, unsigned long from, unsigned long to,
                             unsigned int type = 0, unsigned int id = 0) {
  CNetwork::CLink *const link = network.CreateLink();
  link->from = static_cast<std::uint32_t>(from);
  link->to = static_cast<std::uint32_t>(to);
  link->type = type & 0xFFU;
  link->id = id & 0xFFFFFFU;
  network.AddOutLink(network.GetNode(from), link);
  network.AddInLink(network.GetNode(to), link);
  return network.IndexOf(link);
}

/// The same between two places, whose nodes are made in this order where they are not there.
inline unsigned long AddLinkBetween(CNetwork &network, std::pair<double, double> from,
                                    std::pair<double, double> to, unsigned int type = 0,
                                    unsigned int id = 0) {
  unsigned long const start = NodeOf(network, from.first, from.second);
  unsigned long const end = NodeOf(network, to.first, to.second);
  return AddLink(network, start, end, type, id);
}

/// Deletes a link as a caller does.
inline void DeleteLink(CNetwork &network, unsigned long index) {
  CNetwork::CLink *const link = network.GetLink(index);
  network.DelOutLink(network.GetNode(link->from), link);
  network.DelInLink(network.GetNode(link->to), link);
  CNetwork::SetUnused(link);
}

/// Gives the network the four names of link types that old files mean.
inline void NameStandardLinkTypes(CNetwork &network) {
  char const *const names[] = {"Planned transport links", "Toll-ways", "Other roads", "Railways"};
  for (int i = 0; i < 4; ++i) network.SetLinkTypeName(i, names[i]);
}

/// A road from (1, 2) over (3, 4) to (5, 6) and back from (3, 4) to (1, 2); link 3 is deleted.
inline CNetwork MakeSmallNetwork() {
  CNetwork network;
  unsigned long const a = NodeOf(network, 1, 2);
  unsigned long const b = NodeOf(network, 3, 4);
  unsigned long const c = NodeOf(network, 5, 6);
  AddLink(network, a, b, 2, 7);
  AddLink(network, b, c, 2, 7);
  AddLink(network, c, b, 3, 8);
  AddLink(network, b, a, 2, 9);
  DeleteLink(network, 3);
  return network;
}
