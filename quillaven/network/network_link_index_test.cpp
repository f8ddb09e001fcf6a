#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <quillaven/network/network_access_internal.h>
#include <quillaven/network/network_link_index_internal.h>

#include "tests/support/damaged_network.h"
#include "tests/support/small_network.h"

namespace {

using Access = CNetworkAccess;

// One network behind an index, and the same one by walks alone.
class IndexedAndWalked {
 public:
  explicit IndexedAndWalked(CNetwork const &network)
      : m_indexed(network),
        m_walked(network),
        m_index(Access::Nodes(m_indexed), Access::Links(m_indexed), Access::Cells(m_indexed)) {}

  void Find(std::uint32_t from, std::uint32_t to) {
    CNetwork::CLink const *const link = m_walked.FindLink(from, to);
    unsigned long const expected = link == nullptr ? 0 : m_walked.IndexOf(link);
    ASSERT_EQ(m_index.Find(from, to), expected) << from << " to " << to;
  }

  // As a reader adds a segment.
  void Add(std::uint32_t from, std::uint32_t to) {
    Find(from, to);
    if (m_walked.FindLink(from, to) != nullptr) return;
    AddLink(m_walked, from, to);
    CNetwork::CLink *const link = m_indexed.CreateLink();
    link->from = from;
    link->to = to;
    m_indexed.AddOutLink(m_indexed.GetNode(from), link);
    m_index.Listed(from, CLinkIndex::kOut);
    m_indexed.AddInLink(m_indexed.GetNode(to), link);
    m_index.Listed(to, CLinkIndex::kIn);
  }

  // As a change of a year deletes a link.
  void Delete(std::uint32_t from, std::uint32_t to) {
    Find(from, to);
    CNetwork::CLink *const link = m_walked.FindLink(from, to);
    if (link == nullptr) return;
    auto const index = static_cast<std::uint32_t>(m_walked.IndexOf(link));
    m_walked.DelOutLink(m_walked.GetNode(from), link);
    m_walked.DelInLink(m_walked.GetNode(to), link);
    CNetwork::SetUnused(link);
    m_index.TakeOut(from, CLinkIndex::kOut, index);
    m_index.TakeOut(to, CLinkIndex::kIn, index);
    CNetwork::SetUnused(m_indexed.GetLink(index));
  }

  void ExpectSamePools() {
    ExpectSame(Access::Nodes(m_indexed), Access::Nodes(m_walked));
    ExpectSame(Access::Links(m_indexed), Access::Links(m_walked));
    ExpectSame(Access::Cells(m_indexed), Access::Cells(m_walked));
  }

  void RandomStep(std::mt19937 &random) {
    auto const draw = [&] {
      return static_cast<std::uint32_t>(1 + random() % (m_walked.NodeCount() - 1));
    };
    std::uint32_t const from = draw();
    std::uint32_t const to = draw();
    switch (random() % 4) {
      case 0:
        Find(from, to);
        break;
      case 1:
        Add(from, to);
        break;
      default:
        Delete(from, to);
        break;
    }
  }

 private:
  template <class Record>
  static void ExpectSame(CRecordPool<Record> const &a, CRecordPool<Record> const &b) {
    ASSERT_EQ(a.size(), b.size());
    ASSERT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(Record)), 0);
  }

  CNetwork m_indexed;
  CNetwork m_walked;
  CLinkIndex m_index;
};

TEST(NetworkLinkIndex, AnswersAndTakesOutAsTheWalkDoes) {
  for (unsigned int seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    IndexedAndWalked both(MakeHubs(random, 8, 900));
    for (int step = 0; step < 1000; ++step) {
      ASSERT_NO_FATAL_FAILURE(both.RandomStep(random));
    }
    ASSERT_NO_FATAL_FAILURE(both.ExpectSamePools());
  }
}

// A star with as many rays as links are looked for; it grows and is taken apart from any side.
TEST(NetworkLinkIndex, FollowsAHubThatGrowsAndShrinks) {
  for (unsigned int seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CNetwork star;
    constexpr std::uint32_t kNodes = 400;
    for (std::uint32_t i = 1; i <= kNodes; ++i) NodeOf(star, i, 0);
    IndexedAndWalked both(star);
    for (int step = 0; step < 3000; ++step) {
      auto const ray = static_cast<std::uint32_t>(1 + random() % kNodes);
      bool const isOut = random() % 2 == 0;
      std::uint32_t const from = isOut ? 1 : ray;
      std::uint32_t const to = isOut ? ray : 1;
      bool const grows = step / 1000 % 2 == 0;
      if ((random() % 3 == 0) == grows) {
        ASSERT_NO_FATAL_FAILURE(both.Delete(from, to));
      } else {
        ASSERT_NO_FATAL_FAILURE(both.Add(from, to));
      }
    }
    ASSERT_NO_FATAL_FAILURE(both.ExpectSamePools());
  }
}

TEST(NetworkLinkIndex, IsTheWalkOnADamagedNetworkToo) {
  for (unsigned int seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CNetwork network = MakeHubs(random, 4 + random() % 5, 300 + random() % 600);
    Damage(network, random, static_cast<int>(1 + random() % 30));
    IndexedAndWalked both(network);
    for (int step = 0; step < 400; ++step) {
      ASSERT_NO_FATAL_FAILURE(both.RandomStep(random));
    }
    ASSERT_NO_FATAL_FAILURE(both.ExpectSamePools());
  }
}

// Two hubs whose lists join at their ends: what is taken out through one is missing in the other.
TEST(NetworkLinkIndex, SeesWhatWasTakenOutThroughAListThatRunsIntoAnother) {
  for (unsigned int seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CNetwork network;
    constexpr std::uint32_t kNodes = 300;
    for (std::uint32_t i = 1; i <= kNodes; ++i) NodeOf(network, i, 0);
    for (std::uint32_t i = 3; i <= kNodes; ++i) AddLink(network, 1 + i % 2, i);
    auto &cells = Access::Cells(network);
    std::uint32_t end = network.GetNode(1)->outLinks;
    while (cells[end].next != 0) end = cells[end].next;
    std::uint32_t middle = network.GetNode(2)->outLinks;
    for (auto steps = random() % 100; steps > 0; --steps) middle = cells[middle].next;
    cells[end].next = middle;
    IndexedAndWalked both(network);
    for (int step = 0; step < 600; ++step) {
      auto const hub = static_cast<std::uint32_t>(1 + random() % 2);
      auto const ray = static_cast<std::uint32_t>(1 + random() % kNodes);
      if (random() % 3 == 0) {
        ASSERT_NO_FATAL_FAILURE(both.Add(hub, ray));
      } else {
        ASSERT_NO_FATAL_FAILURE(both.Delete(hub, ray));
      }
    }
    ASSERT_NO_FATAL_FAILURE(both.ExpectSamePools());
  }
}

TEST(NetworkLinkIndex, ForgetsALinkToANodeOnceItIsDeletedAndFindsTheOneBehindIt) {
  CNetwork network;
  for (std::uint32_t i = 1; i <= 200; ++i) NodeOf(network, i, 0);
  unsigned long const older = AddLink(network, 1, 2);
  unsigned long const newer = AddLink(network, 1, 2);
  for (std::uint32_t i = 3; i <= 200; ++i) AddLink(network, 1, i);
  CLinkIndex index(Access::Nodes(network), Access::Links(network), Access::Cells(network));
  for (unsigned long const link : {newer, older}) {
    ASSERT_EQ(index.Find(1, 2), link);
    index.TakeOut(1, CLinkIndex::kOut, static_cast<std::uint32_t>(link));
    index.TakeOut(2, CLinkIndex::kIn, static_cast<std::uint32_t>(link));
    CNetwork::SetUnused(network.GetLink(link));
  }
  EXPECT_EQ(index.Find(1, 2), 0U);
}

}  // namespace
