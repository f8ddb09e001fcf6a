// What an operation of a network knows of its nodes and links beyond the pools.
//
//   CNetworkIndex index(nodes, links, cells);
//   std::uint32_t node = index.nodes.FindOrAdd(x, y);
//   std::uint32_t link = index.links.Find(node, other);

#pragma once

#include <quillaven/network/network.h>
#include <quillaven/network/network_link_index_internal.h>
#include <quillaven/network/network_node_index_internal.h>

struct CNetworkIndex {
  CNetworkIndex(CRecordPool<CNetwork::CNode> &nodePool, CRecordPool<CNetwork::CLink> &linkPool,
                CellPool &cellPool)
      : nodes(nodePool), links(nodePool, linkPool, cellPool) {}

  CNodeIndex nodes;
  CLinkIndex links;
};
