// Networks as a hostile file may hold them: hubs, links that are there twice, and lists that lead in
// circles, into each other and beyond the pools.
//
//   std::mt19937 random(seed);
//   CNetwork network = MakeHubs(random, 5, 600);
//   Damage(network, random, 20);

#pragma once

#include <cstdint>
#include <random>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>

#include "tests/support/small_network.h"

/// A few nodes at (1, 0), (2, 0) and so on, and many links between them, some of which are deleted.
inline CNetwork MakeHubs(std::mt19937 &random, unsigned long nodes, unsigned long links) {
  CNetwork network;
  for (unsigned long i = 1; i <= nodes; ++i) NodeOf(network, static_cast<double>(i), 0);
  for (unsigned long i = 1; i <= links; ++i) {
    // Most begin and end at the first two.
    auto const draw = [&] { return 1 + random() % (random() % 4 == 0 ? nodes : 2); };
    unsigned long const from = draw();
    unsigned long const link = AddLink(network, from, draw(), 1, static_cast<unsigned int>(i));
    if (random() % 8 == 0) DeleteLink(network, link);
  }
  return network;
}

/// Overwrites so many fields of the records with indices near and far.
inline void Damage(CNetwork &network, std::mt19937 &random, int fields) {
  auto &nodes = CNetworkAccess::Nodes(network);
  auto &links = CNetworkAccess::Links(network);
  auto &cells = CNetworkAccess::Cells(network);
  auto const index = [&](auto const &pool) {
    std::uint32_t const size = static_cast<std::uint32_t>(pool.size());
    std::uint32_t const odd[] = {0, size - 1, size, size + 1, 0xFFFFFFFF};
    return random() % 4 == 0 ? odd[random() % 5] : static_cast<std::uint32_t>(random() % size);
  };
  for (; fields > 0; --fields) {
    switch (random() % 6) {
      case 0:
        nodes[random() % nodes.size()].inLinks = index(cells);
        break;
      case 1:
        nodes[random() % nodes.size()].outLinks = index(cells);
        break;
      case 2:
        links[random() % links.size()].from = index(nodes);
        break;
      case 3:
        links[random() % links.size()].to = index(nodes);
        break;
      case 4:
        cells[random() % cells.size()].link = index(links);
        break;
      default:
        cells[random() % cells.size()].next = index(cells);
        break;
    }
  }
}
