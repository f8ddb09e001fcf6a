#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>

#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

TEST(NetworkDistances, OfTwoPointsIsEuclidean) {
  EXPECT_EQ(dPointToPoint({0, 0}, {3, 4}), 5.0);
  EXPECT_EQ(dPointToPoint({-1, -1}, {-1, -1}), 0.0);
  EXPECT_EQ(dPointToPoint({0, 0}, {1, 1}), std::sqrt(2.0));
}

TEST(NetworkDistances, ToALineIsThatToItsNearestPointBeyondTheEndsToo) {
  EXPECT_EQ(dPointToLine({5, 3}, {0, 0}, {10, 0}), 3.0);
  EXPECT_EQ(dPointToLine({500, -3}, {0, 0}, {10, 0}), 3.0);
  EXPECT_EQ(dPointToLine({7, 9}, {2, 0}, {2, 10}), 5.0);
  EXPECT_NEAR(dPointToLine({0, 2}, {0, 0}, {5, 5}), std::sqrt(2.0), 1e-12);
}

TEST(NetworkDistances, ToALineThroughOnePointIsNoNumber) {
  EXPECT_TRUE(std::isnan(dPointToLine({1, 1}, {2, 2}, {2, 2})));
}

TEST(NetworkDistances, ToASegmentIsThatToTheLineBetweenItsEndsAndToAnEndElsewhere) {
  CPoint const a{0, 0};
  CPoint const b{10, 0};
  EXPECT_EQ(dPointToLineSegment({5, 3}, a, b), 3.0);
  EXPECT_EQ(dPointToLineSegment({13, 4}, a, b), 5.0);
  EXPECT_EQ(dPointToLineSegment({-3, 4}, a, b), 5.0);
  EXPECT_EQ(dPointToLineSegment({10, 7}, a, b), 7.0);  // straight above an end
  EXPECT_EQ(dPointToLineSegment({4, 0}, a, b), 0.0);
}

TEST(NetworkDistances, ToASegmentOfOnePointIsThatToThePoint) {
  EXPECT_EQ(dPointToLineSegment({3, 4}, {0, 0}, {0, 0}), 5.0);
}

TEST(NetworkDistances, WrapAroundInTheExtremesOf32Bits) {
  EXPECT_EQ(dPointToPoint({INT_MAX, 0}, {INT_MIN, 0}), 1.0);
  EXPECT_EQ(dPointToLineSegment({INT_MAX, 3}, {INT_MIN, 0}, {INT_MIN, 0}), std::sqrt(10.0));
  EXPECT_GE(dPointToLine({INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}), 0.0);
}

TEST(NetworkDistances, ToASegmentAgreeWithAWalkAlongIt) {
  for (unsigned int seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto const draw = [&] { return static_cast<std::int32_t>(random() % 101U) - 50; };
    CPoint const p{draw(), draw()};
    CPoint const a{draw(), draw()};
    CPoint const b{draw(), draw()};
    double nearest = std::numeric_limits<double>::infinity();
    constexpr int kSteps = 20000;
    for (int i = 0; i <= kSteps; ++i) {
      double const t = static_cast<double>(i) / kSteps;
      nearest =
          std::min(nearest, std::hypot(a.x + t * (b.x - a.x) - p.x, a.y + t * (b.y - a.y) - p.y));
    }
    EXPECT_NEAR(dPointToLineSegment(p, a, b), nearest, 1e-2);
  }
}

TEST(NetworkQueries, FindNothingInANewNetwork) {
  CNetwork network;
  EXPECT_EQ(network.FindClosestNode(0, 0), nullptr);
  EXPECT_EQ(network.FindClosestLink(0, 0, 0), nullptr);
}

TEST(NetworkQueries, NodeWithoutLinksIsNeverTheClosest) {
  CNetwork network;
  network.CreateNode();
  EXPECT_EQ(network.FindClosestNode(0, 0), nullptr);
  unsigned long const far = NodeOf(network, 100, 100);
  AddLink(network, far, far);
  EXPECT_EQ(network.FindClosestNode(0, 0), network.GetNode(far));
  EXPECT_NE(network.FindNode(0, 0), nullptr);  // which finds it all the same
}

TEST(NetworkQueries, LowestIndexWinsAmongNodesAtTheSameDistance) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 10, 0);
  unsigned long const b = NodeOf(network, -10, 0);
  AddLink(network, b, a);
  EXPECT_EQ(network.FindClosestNode(0, 0), network.GetNode(a));
  EXPECT_EQ(network.FindClosestNode(static_cast<unsigned long>(-1), 0), network.GetNode(b));
}

TEST(NetworkQueries, CutCoordinatesTowardZero) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 10.9, 20.9);
  unsigned long const b = NodeOf(network, 11.0, 20.0);
  AddLink(network, b, a);
  EXPECT_EQ(network.FindClosestNode(10, 20), network.GetNode(a));
  network.GetNode(a)->x = -10.9;
  network.GetNode(b)->x = -11.0;
  EXPECT_EQ(network.FindClosestNode(static_cast<unsigned long>(-10), 20), network.GetNode(a));
  network.GetNode(b)->x = -9.99;  // -9, where rounding would make it -10
  network.GetNode(a)->x = -11.0;
  EXPECT_EQ(network.FindClosestNode(static_cast<unsigned long>(-9), 20), network.GetNode(b));
}

TEST(NetworkQueries, TakePositionsAsSigned32BitNumbers) {
  CNetwork network;
  unsigned long const a = NodeOf(network, -500, -500);
  unsigned long const b = NodeOf(network, 500, 500);
  AddLink(network, a, b);
  EXPECT_EQ(network.FindClosestNode(4294966796UL, 4294966796UL), network.GetNode(a));
  EXPECT_EQ(
      network.FindClosestNode(static_cast<unsigned long>(-400), static_cast<unsigned long>(-400)),
      network.GetNode(a));
}

TEST(NetworkQueries, StepThroughLinksThatLieOnTopOfEachOther) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 10, 0);
  unsigned long const there = AddLink(network, a, b);
  unsigned long const back = AddLink(network, b, a);
  EXPECT_EQ(network.FindClosestLink(5, 3, 0), network.GetLink(there));
  EXPECT_EQ(network.FindClosestLink(5, 3, there), network.GetLink(back));
  EXPECT_EQ(network.FindClosestLink(5, 3, back), network.GetLink(there));
}

TEST(NetworkQueries, BeginAtTheFirstLinkBehindTheLastOne) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 10, 0);
  for (int i = 0; i < 3; ++i) AddLink(network, a, b);
  EXPECT_EQ(network.FindClosestLink(5, 3, 2), network.GetLink(3));
  EXPECT_EQ(network.FindClosestLink(5, 3, 3), network.GetLink(1));
  EXPECT_EQ(network.FindClosestLink(5, 3, 4), network.GetLink(1));
  EXPECT_EQ(network.FindClosestLink(5, 3, 1000000), network.GetLink(1));
  EXPECT_EQ(network.FindClosestLink(5, 3, ULONG_MAX), network.GetLink(1));
}

TEST(NetworkQueries, SeeTheLinkThatTheyStartAfterLast) {
  CNetwork network;
  unsigned long const a = NodeOf(network, 0, 0);
  unsigned long const b = NodeOf(network, 10, 0);
  unsigned long const only = AddLink(network, a, b);
  EXPECT_EQ(network.FindClosestLink(0, 0, only), network.GetLink(only));
}

TEST(NetworkQueries, DeletedLinkIsNeverTheClosest) {
  CNetwork network;
  unsigned long const near = AddLinkBetween(network, {0, 0}, {10, 0});
  unsigned long const far = AddLinkBetween(network, {0, 90}, {10, 90});
  DeleteLink(network, near);
  EXPECT_EQ(network.FindClosestLink(5, 0, 0), network.GetLink(far));
  DeleteLink(network, far);
  EXPECT_EQ(network.FindClosestLink(5, 0, 0), nullptr);
}

TEST(NetworkQueries, AreSafeOnPlacesThatNoIntegerHolds) {
  CNetwork network;
  double const infinity = std::numeric_limits<double>::infinity();
  unsigned long const a = NodeOf(network, 1e300, -infinity);
  unsigned long const b = NodeOf(network, 0, 0);
  network.GetNode(b)->x = std::numeric_limits<double>::quiet_NaN();
  AddLink(network, a, b);
  EXPECT_NE(network.FindClosestNode(0, 0), nullptr);
  EXPECT_NE(network.FindClosestLink(0, 0, 0), nullptr);
}

// A link's ends beyond the pool, as a damaged file may have them, count as nothing.
TEST(NetworkQueries, AreSafeOnLinksThatLeadOutOfThePool) {
  CNetwork network;
  CNetwork::CLink *const link = network.CreateLink();
  link->from = 0xFFFFFFFF;
  link->to = 77;
  EXPECT_EQ(network.FindClosestLink(0, 0, 0), link);
  network.DeltaAddLink(1990, link);
  TemporaryDirectory directory;
  RecordingApplication application;
  EXPECT_TRUE(network.Report(directory.Path("report.txt").c_str()));
  link->id = 1;
  EXPECT_TRUE(network.WriteAsciiFile(directory.Path("out.txt").c_str(), 0));
}

// Both searches against the rule as it reads, over random networks.
TEST(NetworkQueries, AgreeWithANaiveSearch) {
  for (unsigned int seed = 1; seed <= 15; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto const draw = [&] { return static_cast<double>(random() % 4001U) / 100 - 20; };
    CNetwork network;
    for (int i = 0; i < 40; ++i) {
      CNetwork::CNode *const node = network.CreateNode();
      node->x = draw();
      node->y = draw();
    }
    for (int i = 0; i < 60; ++i) {
      unsigned long const link = AddLink(network, 1 + random() % 30, 1 + random() % 30);
      if (random() % 4 == 0) DeleteLink(network, link);
    }
    auto const cut = [](CNetwork::CNode const *node) {
      return CPoint{static_cast<std::int32_t>(node->x), static_cast<std::int32_t>(node->y)};
    };
    for (int i = 0; i < 200; ++i) {
      CPoint const p{static_cast<std::int32_t>(random() % 41U) - 20,
                     static_cast<std::int32_t>(random() % 41U) - 20};
      auto const x = static_cast<unsigned long>(p.x);
      auto const y = static_cast<unsigned long>(p.y);
      CNetwork::CNode const *closest = nullptr;
      for (unsigned long n = 1; n < network.NodeCount(); ++n) {
        CNetwork::CNode const *const node = network.GetNode(n);
        if (CNetwork::IsUnused(node)) continue;
        if (closest == nullptr || dPointToPoint(p, cut(node)) < dPointToPoint(p, cut(closest)))
          closest = node;
      }
      ASSERT_EQ(network.FindClosestNode(x, y), closest);

      unsigned long const count = network.LinkCount();
      unsigned long const after = random() % (count + 3);
      CNetwork::CLink const *best = nullptr;
      double bestDistance = 0;
      unsigned long at = after + 1 >= count ? 1 : after + 1;
      for (unsigned long seen = 1; seen < count; ++seen, at = at + 1 == count ? 1 : at + 1) {
        CNetwork::CLink const *const link = network.GetLink(at);
        if (CNetwork::IsUnused(link)) continue;
        double const distance = dPointToLineSegment(p, cut(network.GetNode(link->from)),
                                                    cut(network.GetNode(link->to)));
        if (best != nullptr && distance >= bestDistance) continue;
        best = link;
        bestDistance = distance;
      }
      ASSERT_EQ(network.FindClosestLink(x, y, after), best);
    }
  }
}

}  // namespace
