// Which links of a network have one in the other direction.
//
//   std::vector<bool> const found = LinksWithCounterpart(nodes, links, cells);
//   if (!found[i]) unidirectional.push_back(links[i]);
//
// For each link in use this is whether CNetwork::FindLink(link.to, link.from) finds one, on any
// network, but at the cost of one pass over the pools for all of them together: walk after walk
// along the list of a hub would take its square.

#pragma once

#include <vector>

#include <quillaven/network/network.h>

std::vector<bool> LinksWithCounterpart(CRecordPool<CNetwork::CNode> const &nodes,
                                       CRecordPool<CNetwork::CLink> const &links,
                                       CRecordPool<CNetwork::CIdListElem> const &cells);
