#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <list>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>

#include "tests/support/small_network.h"

namespace {

using Access = CNetworkAccess;

TEST(Network, HasTheReservedRecordsAloneWhenItIsNew) {
  CNetwork network;
  EXPECT_EQ(network.NodeCount(), 1U);
  EXPECT_EQ(network.LinkCount(), 1U);
  EXPECT_EQ(Access::Cells(network).size(), 1U);
  EXPECT_EQ(network.GetLinkTypesCount(), 0);
  EXPECT_FALSE(network.HasData());
  EXPECT_EQ(Access::LoadedYearIndex(network), -1);
  EXPECT_FALSE(Access::LinkTypesRead(network));
  EXPECT_EQ(Access::FileName(network), "");
}

TEST(Network, ReservedRecordsAreZeroAndCountAsUnused) {
  CNetwork network;
  CNetwork::CNode const &node = *network.GetNode(0);
  CNetwork::CLink const &link = *network.GetLink(0);
  CNetwork::CIdListElem const &cell = Access::Cells(network)[0];
  EXPECT_EQ(node.x, 0.0);
  EXPECT_EQ(node.y, 0.0);
  EXPECT_EQ(link.id, 0U);
  EXPECT_EQ(link.type, 0U);
  EXPECT_EQ(cell.next, 0U);
  EXPECT_TRUE(CNetwork::IsUnused(&node));
  EXPECT_TRUE(CNetwork::IsUnused(&link));
  EXPECT_TRUE(CNetwork::IsUnused(&cell));
}

TEST(Network, DoesNotFindTheReservedNode) {
  CNetwork network;
  EXPECT_EQ(network.FindNode(0, 0), nullptr);
  network.CreateNode();
  EXPECT_EQ(network.FindNode(0, 0), network.GetNode(1));
}

TEST(Network, HasDataWithTheFirstLinkBeforeItHasEnds) {
  CNetwork network;
  network.CreateNode();
  EXPECT_FALSE(network.HasData());
  network.CreateLink();
  EXPECT_TRUE(network.HasData());
  EXPECT_EQ(network.LinkCount(), 2U);
}

TEST(Network, RecordsHaveTheWidthsOfTheFile) {
  EXPECT_EQ(sizeof(CNetwork::CNode), 24U);
  EXPECT_EQ(sizeof(CNetwork::CLink), 12U);
  EXPECT_EQ(sizeof(CNetwork::CIdListElem), 8U);
}

TEST(Network, IdAndTypeShareAWordAndLeaveEachOtherAlone) {
  CNetwork::CLink link;
  link.type = 200;
  link.id = 0xABCDEF;
  EXPECT_EQ(link.type, 200U);
  EXPECT_EQ(link.id, 0xABCDEFU);
  link.type = 3;
  EXPECT_EQ(link.id, 0xABCDEFU);
  link.id = 0xFFFFFF;
  EXPECT_EQ(link.type, 3U);
}

TEST(Network, IndexOfIsThePlaceInThePool) {
  CNetwork network = MakeSmallNetwork();
  EXPECT_EQ(network.IndexOf(network.GetNode(2)), 2U);
  EXPECT_EQ(network.IndexOf(network.GetLink(4)), 4U);
  EXPECT_EQ(network.IndexOf(&Access::Cells(network)[5]), 5U);
}

TEST(Network, CreatedRecordsAreUnusedAndLast) {
  CNetwork network;
  EXPECT_EQ(network.IndexOf(network.CreateNode()), 1U);
  EXPECT_EQ(network.IndexOf(network.CreateLink()), 1U);
  EXPECT_EQ(network.IndexOf(network.CreateIdListElem()), 1U);
  EXPECT_TRUE(CNetwork::IsUnused(network.GetNode(1)));
  EXPECT_TRUE(CNetwork::IsUnused(network.GetLink(1)));
  EXPECT_TRUE(CNetwork::IsUnused(&Access::Cells(network)[1]));
}

TEST(Network, SetUnusedClearsTheFieldsThatMarkARecord) {
  CNetwork::CNode node{1, 2, 3, 4};
  CNetwork::SetUnused(&node);
  EXPECT_TRUE(CNetwork::IsUnused(&node));
  EXPECT_EQ(node.x, 1.0);
  EXPECT_EQ(node.y, 2.0);
  CNetwork::CLink link{1, 2, 3, 4};
  CNetwork::SetUnused(&link);
  EXPECT_TRUE(CNetwork::IsUnused(&link));
  EXPECT_EQ(link.id, 3U);
  EXPECT_EQ(link.type, 4U);
  CNetwork::CIdListElem cell{1, 2};
  CNetwork::SetUnused(&cell);
  EXPECT_TRUE(CNetwork::IsUnused(&cell));
  EXPECT_EQ(cell.next, 0U);
}

TEST(Network, OneEndIsEnoughForALinkAndOneListForANode) {
  CNetwork::CLink const link{0, 2, 0, 0};
  EXPECT_FALSE(CNetwork::IsUnused(&link));
  CNetwork::CNode const node{0, 0, 0, 1};
  EXPECT_FALSE(CNetwork::IsUnused(&node));
}

TEST(Network, ListsTheLinkAddedLastFirst) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 1, 0);
  unsigned long const c = NodeOf(network, 2, 0);
  unsigned long const first = AddLink(network, a, b);
  unsigned long const second = AddLink(network, a, c);
  auto &cells = Access::Cells(network);
  CNetwork::CNode *const node = network.GetNode(a);
  EXPECT_EQ(network.NodeOutDegree(node), 2);
  EXPECT_EQ(cells[node->outLinks].link, second);
  EXPECT_EQ(cells[cells[node->outLinks].next].link, first);

  std::size_t const size = cells.size();
  network.DelOutLink(node, network.GetLink(first));
  EXPECT_EQ(network.NodeOutDegree(node), 1);
  EXPECT_EQ(cells.size(), size);
  EXPECT_EQ(cells[1].link, 0U);  // the cell of the first link is marked and keeps its place
  EXPECT_EQ(cells[node->outLinks].link, second);
}

TEST(Network, CellTakenOutOfAListKeepsWhereItLedTo) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 1, 0);
  AddLink(network, a, b);
  unsigned long const second = AddLink(network, a, a);
  auto &cells = Access::Cells(network);
  std::uint32_t const head = network.GetNode(a)->outLinks;
  std::uint32_t const next = cells[head].next;
  ASSERT_NE(next, 0U);
  network.DelOutLink(network.GetNode(a), network.GetLink(second));
  EXPECT_EQ(network.GetNode(a)->outLinks, next);
  EXPECT_EQ(cells[head].link, 0U);
  EXPECT_EQ(cells[head].next, next);
}

TEST(Network, TakingOutALinkThatIsNotListedDoesNothing) {
  CNetwork network = MakeSmallNetwork();
  CNetwork before = network;
  network.DelOutLink(network.GetNode(1), network.GetLink(2));
  network.DelInLink(network.GetNode(3), network.GetLink(1));
  network.CreateNode();
  network.DelInLink(network.GetNode(4), network.GetLink(1));
  EXPECT_EQ(network.GetNode(1)->outLinks, before.GetNode(1)->outLinks);
  EXPECT_EQ(network.GetNode(3)->inLinks, before.GetNode(3)->inLinks);
  EXPECT_EQ(network.NodeInDegree(network.GetNode(4)), 0);
}

TEST(Network, NodeThatLosesItsOnlyLinkIsUnusedAndStillFound) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 3, 4);
  unsigned long const b = NodeOf(network, 5, 6);
  unsigned long const link = AddLink(network, a, b);
  EXPECT_FALSE(CNetwork::IsUnused(network.GetNode(a)));
  DeleteLink(network, link);
  EXPECT_TRUE(CNetwork::IsUnused(network.GetNode(a)));
  EXPECT_TRUE(CNetwork::IsUnused(network.GetNode(b)));
  EXPECT_EQ(network.FindNode(3, 4), network.GetNode(a));
  AddLink(network, a, b);
  EXPECT_FALSE(CNetwork::IsUnused(network.GetNode(a)));  // and comes back to life
}

TEST(Network, AddingToAListDoesNotTouchTheLink) {
  CNetwork network;
  CNetwork::CNode *const node = network.CreateNode();
  CNetwork::CLink *const link = network.CreateLink();
  network.AddInLink(node, link);
  network.AddOutLink(node, link);
  EXPECT_TRUE(CNetwork::IsUnused(link));
  EXPECT_EQ(network.NodeInDegree(node), 1);
  EXPECT_EQ(network.NodeOutDegree(node), 1);
}

TEST(Network, FindsTheNodeOfLowestIndexAtExactlyThePlace) {
  CNetwork network;
  for (double x : {1.0, 2.0, 2.0}) {
    CNetwork::CNode *const node = network.CreateNode();
    node->x = x;
    node->y = 0.1 + 0.2;
  }
  EXPECT_EQ(network.FindNode(2, 0.1 + 0.2), network.GetNode(2));
  EXPECT_EQ(network.FindNode(2, 0.3), nullptr);  // another float
  EXPECT_EQ(network.FindNode(1, 2), nullptr);
}

TEST(Network, MinusZeroIsZeroAndNoNumberIsNowhere) {
  CNetwork network;
  CNetwork::CNode *node = network.CreateNode();
  node->x = -0.0;
  EXPECT_EQ(network.FindNode(0.0, -0.0), network.GetNode(1));
  node->x = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(network.FindNode(node->x, 0.0), nullptr);
}

TEST(Network, FindsTheLinkAddedLastOfTwoBetweenTheSameNodes) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 1, 0);
  AddLink(network, a, b);
  unsigned long const later = AddLink(network, a, b);
  EXPECT_EQ(network.FindLink(a, b), network.GetLink(later));
  EXPECT_EQ(network.FindLink(b, a), nullptr);  // links have a direction
  EXPECT_EQ(network.FindLink(a, a), nullptr);
}

TEST(Network, NothingLeavesAnIndexBeyondThePool) {
  CNetwork network = MakeSmallNetwork();
  EXPECT_EQ(network.FindLink(4, 1), nullptr);
  EXPECT_EQ(network.FindLink(std::numeric_limits<unsigned long>::max(), 1), nullptr);
}

TEST(Network, NothingLeadsToAnIndexBeyondThePoolEvenIfItsLow32BitsAreOne) {
  CNetwork network = MakeSmallNetwork();
  ASSERT_NE(network.FindLink(1, 2), nullptr);
  EXPECT_EQ(network.FindLink(1, 77), nullptr);
  if constexpr (sizeof(unsigned long) > sizeof(std::uint32_t)) {
    unsigned long const beyond = std::numeric_limits<std::uint32_t>::max() + 1UL;
    EXPECT_EQ(network.FindLink(1, beyond + 2), nullptr);
    EXPECT_EQ(network.FindLink(beyond + 1, 2), nullptr);
  }
}

TEST(Network, CellWithoutALinkHidesNoneBehindIt) {
  CNetwork network = MakeSmallNetwork();
  network.GetLink(0)->to = 2;  // as in a damaged file, whose reserved link leads somewhere
  CNetwork::CIdListElem *const cell = network.CreateIdListElem();
  cell->next = network.GetNode(1)->outLinks;
  network.GetNode(1)->outLinks = static_cast<std::uint32_t>(network.IndexOf(cell));
  EXPECT_EQ(network.FindLink(1, 2), network.GetLink(1));
}

TEST(Network, CutsNamesOfLinkTypesAfter31Characters) {
  CNetwork network;
  network.SetLinkTypeName(0, std::string(40, 'x'));
  EXPECT_EQ(network.GetLinkTypeName(0), std::string(31, 'x'));
  network.SetLinkTypeName(0, "short");
  EXPECT_EQ(network.GetLinkTypeName(0), "short");
  EXPECT_EQ(Access::LinkTypes(network)[0][31], '\0');
  EXPECT_EQ(Access::LinkTypes(network)[0][10], '\0');  // nothing of the longer name is left
}

TEST(Network, NamingALinkTypeBeyondTheTableEnlargesItWithEmptyNames) {
  CNetwork network;
  NameStandardLinkTypes(network);
  EXPECT_EQ(network.GetLinkTypesCount(), 4);
  network.SetLinkTypeName(5, "Ferries");
  EXPECT_EQ(network.GetLinkTypesCount(), 6);
  EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
  EXPECT_EQ(network.GetLinkTypeName(4), "");
  EXPECT_EQ(network.GetLinkTypeName(5), "Ferries");
}

TEST(Network, NamesBeyondTheTableAreEmptyAndNegativeIndicesNothing) {
  CNetwork network;
  EXPECT_EQ(network.GetLinkTypeName(0), "");
  EXPECT_EQ(network.GetLinkTypeName(-1), "");
  network.SetLinkTypeName(-1, "x");
  EXPECT_EQ(network.GetLinkTypesCount(), 0);
}

TEST(Network, NameThatFillsItsRecordWithoutAnEndStopsThere) {
  CNetwork network;
  network.SetLinkTypeName(0, "");
  network.SetLinkTypeName(1, "next");
  Access::LinkTypes(network)[0].fill('y');
  EXPECT_EQ(network.GetLinkTypeName(0), std::string(32, 'y'));
}

TEST(Network, ClearingKeepsYearsAndLinkTypesUnlessAllGoes) {
  CNetwork network = MakeSmallNetwork();
  NameStandardLinkTypes(network);
  network.SetDataDefYear(1990, "a.bin");
  Access::LoadedYearIndex(network) = 0;
  Access::LinkTypesRead(network) = true;
  Access::FileName(network) = "a.bin";

  network.Clear(false);
  EXPECT_EQ(network.NodeCount(), 1U);
  EXPECT_EQ(network.LinkCount(), 1U);
  EXPECT_EQ(Access::Cells(network).size(), 1U);
  EXPECT_EQ(Access::LoadedYearIndex(network), -1);
  EXPECT_EQ(network.GetLinkTypesCount(), 4);
  EXPECT_EQ(Access::Years(network).size(), 1U);
  EXPECT_TRUE(Access::LinkTypesRead(network));
  EXPECT_EQ(Access::FileName(network), "");

  network.Clear(true);
  EXPECT_EQ(network.GetLinkTypesCount(), 0);
  EXPECT_TRUE(Access::Years(network).empty());
  EXPECT_FALSE(Access::LinkTypesRead(network));
}

TEST(Network, LaysOutRoomForAnOrdinaryNetworkAndNeverGivesItBack) {
  CNetwork network;
  EXPECT_EQ(Access::Nodes(network).capacity(), 40000U);
  EXPECT_EQ(Access::Links(network).capacity(), 40000U);
  EXPECT_EQ(Access::Cells(network).capacity(), 80000U);
  EXPECT_GE(Access::LinkTypes(network).capacity(), 16U);

  for (int i = 0; i < 40000; ++i) network.CreateLink();
  EXPECT_EQ(Access::Links(network).capacity(), 80000U);  // a full pool doubles
  network.Clear(false);
  EXPECT_EQ(Access::Links(network).capacity(), 80000U);
  EXPECT_EQ(Access::Cells(network).capacity(), 160000U);  // two cells for each link
}

TEST(Network, RecordsStayWhereTheyAreUpToTheRoomLaidOut) {
  CNetwork network;
  CNetwork::CNode const *const first = network.CreateNode();
  while (network.NodeCount() < 40000) network.CreateNode();
  EXPECT_EQ(network.GetNode(1), first);
}

TEST(Network, CopyIsDeepAndWithoutSpareRoom) {
  CNetwork network = MakeSmallNetwork();
  NameStandardLinkTypes(network);
  network.SetDataDefYear(1990, "a.bin");
  network.DeltaAddLink(1990, network.GetLink(1));
  Access::LoadedYearIndex(network) = 0;
  Access::LinkTypesRead(network) = true;
  Access::FileName(network) = "a.bin";

  CNetwork copy = network;
  EXPECT_EQ(Access::Nodes(copy).capacity(), copy.NodeCount());
  EXPECT_EQ(Access::Links(copy).capacity(), copy.LinkCount());
  EXPECT_EQ(Access::Cells(copy).capacity(), Access::Cells(network).size());
  EXPECT_EQ(Access::FileName(copy), "a.bin");
  EXPECT_EQ(Access::LoadedYearIndex(copy), 0);
  EXPECT_TRUE(Access::LinkTypesRead(copy));
  EXPECT_EQ(copy.GetLinkTypeName(3), "Railways");
  ASSERT_EQ(Access::Years(copy).size(), 1U);
  EXPECT_EQ(Access::Years(copy)[0].deltas.size(), 1U);

  copy.GetNode(1)->x = 99;
  copy.SetLinkTypeName(3, "Trams");
  Access::Years(copy)[0].deltas.clear();
  EXPECT_EQ(network.GetNode(1)->x, 1.0);
  EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
  EXPECT_EQ(Access::Years(network)[0].deltas.size(), 1U);
}

TEST(Network, AssigningToItselfChangesNothing) {
  CNetwork network = MakeSmallNetwork();
  CNetwork &same = network;
  network = same;
  EXPECT_EQ(network.LinkCount(), 5U);
  EXPECT_EQ(network.GetNode(3)->y, 6.0);
  CNetwork other;
  other = network;
  EXPECT_EQ(other.LinkCount(), 5U);
}

TEST(Network, ListsThatLeadInCirclesOrAwayEnd) {
  CNetwork network = MakeSmallNetwork();
  auto &cells = Access::Cells(network);
  CNetwork::CNode *const node = network.GetNode(2);
  cells[node->outLinks].next = node->outLinks;  // a circle
  EXPECT_EQ(network.NodeOutDegree(node), static_cast<int>(cells.size()));
  EXPECT_EQ(network.FindLink(2, 77), nullptr);
  network.DelOutLink(node, network.GetLink(1));
  cells[node->outLinks].next = 0xFFFFFFFF;  // out of the pool
  cells[node->outLinks].link = 0xFFFFFFFF;
  EXPECT_EQ(network.NodeOutDegree(node), 1);
  EXPECT_EQ(network.FindLink(2, 77), nullptr);
  network.DelOutLink(node, network.GetLink(1));
  node->inLinks = 0xFFFFFFFF;
  EXPECT_EQ(network.NodeInDegree(node), 0);
}

// The index over coordinates against the walk that it stands in for.
TEST(NetworkNodeIndex, AnswersAsTheWalkDoes) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> const places = {0.0, -0.0, 1, -1, 1e300, 5e-324, nan, 0.1, 0.3, 7};
  for (unsigned int seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto const draw = [&] { return places[random() % places.size()]; };
    CNetwork network;
    auto const create = [&](double x, double y) {
      CNetwork::CNode *const node = network.CreateNode();
      node->x = x;
      node->y = y;
    };
    auto const drawY = [&] { return draw() + static_cast<double>(random() % 60); };
    for (int i = 0; i < 30; ++i) create(draw(), drawY());
    CNodeIndex index(Access::Nodes(network));
    for (int i = 0; i < 2000; ++i) {
      double const x = draw();
      double const y = drawY();
      CNetwork::CNode *const walked = network.FindNode(x, y);
      unsigned long const expected = walked == nullptr ? 0 : network.IndexOf(walked);
      ASSERT_EQ(index.Find(x, y), expected);
      if (i % 2 == 0) continue;
      ASSERT_EQ(index.FindOrAdd(x, y), walked == nullptr ? network.NodeCount() : expected);
      if (walked == nullptr) create(x, y);
    }
  }
}

// Adjacency against lists of the standard library, over random histories.
TEST(Network, KeepsItsListsAsANaiveNetworkDoes) {
  struct NaiveNode {
    std::list<unsigned long> in, out;
  };
  for (unsigned int seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    // An index of a pool of that size, of which the first means nothing.
    auto const anyOf = [&](std::size_t size) {
      return static_cast<unsigned long>(1 + random() % (size - 1));
    };
    CNetwork network;
    std::vector<NaiveNode> naive(1);
    std::vector<std::pair<unsigned long, unsigned long>> ends(1);
    for (int step = 0; step < 1500; ++step) {
      auto const what = random() % 10;
      if (what == 0 || naive.size() < 3) {
        network.CreateNode()->x = step;
        naive.emplace_back();
      } else if (what < 7) {
        unsigned long const from = anyOf(naive.size());
        unsigned long const to = anyOf(naive.size());
        unsigned long const link = AddLink(network, from, to);
        ASSERT_EQ(link, ends.size());
        ends.emplace_back(from, to);
        naive[from].out.push_front(link);
        naive[to].in.push_front(link);
      } else if (ends.size() > 1) {
        unsigned long const link = anyOf(ends.size());
        if (ends[link].first == 0) continue;
        DeleteLink(network, link);
        naive[ends[link].first].out.remove(link);
        naive[ends[link].second].in.remove(link);
        ends[link] = {0, 0};
      }
    }
    auto const listed = [&](std::uint32_t head) {
      std::list<unsigned long> result;
      for (; head != 0; head = Access::Cells(network)[head].next)
        result.push_back(Access::Cells(network)[head].link);
      return result;
    };
    ASSERT_EQ(network.NodeCount(), naive.size());
    for (unsigned long i = 1; i < naive.size(); ++i) {
      CNetwork::CNode const *const node = network.GetNode(i);
      ASSERT_EQ(listed(node->inLinks), naive[i].in);
      ASSERT_EQ(listed(node->outLinks), naive[i].out);
      ASSERT_EQ(network.NodeInDegree(node), static_cast<int>(naive[i].in.size()));
      ASSERT_EQ(CNetwork::IsUnused(node), naive[i].in.empty() && naive[i].out.empty());
    }
  }
}

}  // namespace
