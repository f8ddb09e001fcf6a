#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network_access_internal.h>
#include <quillaven/network/network_counterparts_internal.h>

#include "tests/support/damaged_network.h"
#include "tests/support/small_network.h"

namespace {

using Access = CNetworkAccess;

std::vector<bool> Found(CNetwork &network) {
  return LinksWithCounterpart(Access::Nodes(network), Access::Links(network),
                              Access::Cells(network));
}

// One walk for each link.
std::vector<bool> Walked(CNetwork &network) {
  std::vector<bool> found(network.LinkCount());
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const &link = *network.GetLink(i);
    if (CNetwork::IsUnused(&link)) continue;
    found[i] = network.FindLink(link.to, link.from) != nullptr;
  }
  return found;
}

TEST(LinksWithCounterpart, AreThoseWithALinkInTheOtherDirection) {
  CNetwork network = MakeSmallNetwork();
  EXPECT_EQ(Found(network), (std::vector<bool>{false, true, false, false, true}));
}

TEST(LinksWithCounterpart, AreNoneWithoutARecord) {
  CNetwork network;
  EXPECT_EQ(Found(network), std::vector<bool>(1));
  Access::Nodes(network).clear();
  Access::Links(network).clear();
  Access::Cells(network).clear();
  EXPECT_TRUE(Found(network).empty());
}

TEST(LinksWithCounterpart, AreFoundBeyondThePoolOfNodesAsTheWalkFindsThem) {
  CNetwork network = MakeSmallNetwork();
  network.GetLink(1)->from = 0xFFFFFFF0;  // asks node 2 for a link to there
  EXPECT_FALSE(Found(network)[1]);
  network.GetLink(2)->to = 0xFFFFFFF0;  // which is one
  EXPECT_TRUE(Found(network)[1]);
  EXPECT_EQ(Found(network), Walked(network));
}

TEST(LinksWithCounterpart, AreThoseOfTheWalkInAnyNetwork) {
  for (unsigned int seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CNetwork network = MakeHubs(random, 2 + random() % 9, random() % 120);
    ASSERT_EQ(Found(network), Walked(network));
    Damage(network, random, static_cast<int>(1 + random() % 60));
    ASSERT_EQ(Found(network), Walked(network));
  }
}

// All lists of the nodes run into one circle, and each link asks for one that is not there: walks
// would take the square of 200,000 steps.
TEST(LinksWithCounterpart, AreFoundInOnePassWhereWalksWouldNotEnd) {
  CNetwork network;
  constexpr std::uint32_t kLinks = 100000;
  for (std::uint32_t i = 1; i <= kLinks; ++i) {
    CNetwork::CNode *const node = network.CreateNode();
    CNetwork::CLink *const link = network.CreateLink();
    link->from = i;
    link->to = i % 1000 + 1;
    network.AddOutLink(node, link);
  }
  auto &cells = Access::Cells(network);
  for (std::uint32_t i = 1; i < cells.size(); ++i) cells[i].next = i + 1;
  cells.back().next = 50000;
  std::vector<bool> const found = Found(network);
  for (std::uint32_t i = 1; i <= kLinks; ++i) ASSERT_EQ(found[i], i <= 1000) << i;
}

}  // namespace
