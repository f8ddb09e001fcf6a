#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/raster/fine_block_pool.h>

namespace {

CFineBlockPool<float> MakePool(int width) {
  CFineBlockPool<float> pool;
  pool.Reset(width);
  return pool;
}

int Take(CFineBlockPool<float> &pool) {
  int const slot = pool.AcquireSlot();
  pool.MarkInUse(slot);
  return slot;
}

TEST(FineBlockPool, StartsEmptyWithRoomFor1024Slots) {
  auto const pool = MakePool(3);
  EXPECT_EQ(pool.m_nBlockWidth, 3);
  EXPECT_TRUE(pool.m_Blocks.empty());
  EXPECT_TRUE(pool.m_SlotFree.empty());
  EXPECT_EQ(pool.m_SlotFree.capacity(), 1024U);
  EXPECT_EQ(pool.m_FreePos.capacity(), 1024U);
  EXPECT_EQ(pool.m_FreeList.capacity(), 1024U);
}

TEST(FineBlockPool, OnlyNamesASlotUntilItIsMarked) {
  auto pool = MakePool(2);
  EXPECT_EQ(pool.AcquireSlot(), 255);
  EXPECT_EQ(pool.AcquireSlot(), 255);
  pool.MarkInUse(255);
  EXPECT_EQ(pool.AcquireSlot(), 254);
}

TEST(FineBlockPool, HandsOutFromTheHighestSlotDown) {
  auto pool = MakePool(2);
  for (int slot = 255; slot >= 0; --slot) EXPECT_EQ(Take(pool), slot);
  EXPECT_EQ(Take(pool), 511);
  EXPECT_EQ(pool.m_Blocks.size(), 2U);
}

TEST(FineBlockPool, ReusesTheSlotReleasedLast) {
  auto pool = MakePool(2);
  for (int i = 0; i < 10; ++i) Take(pool);
  pool.ReleaseSlot(250);
  pool.ReleaseSlot(253);
  EXPECT_EQ(Take(pool), 253);
  EXPECT_EQ(Take(pool), 250);
  EXPECT_EQ(Take(pool), 245);
}

TEST(FineBlockPool, LeavesAHoleForASlotBelowTheTopAndTrimsHolesAtTheEnd) {
  auto pool = MakePool(2);
  pool.AcquireSlot();
  pool.MarkInUse(253);
  pool.MarkInUse(254);
  EXPECT_EQ(pool.m_FreeList.size(), 256U);
  EXPECT_EQ(pool.m_FreeList[253], -1);
  pool.MarkInUse(255);
  EXPECT_EQ(pool.m_FreeList.size(), 253U);
}

TEST(FineBlockPool, LeavesAFreeSlotAloneThatIsReleasedAgain) {
  auto pool = MakePool(2);
  Take(pool);
  pool.ReleaseSlot(255);
  pool.ReleaseSlot(255);
  EXPECT_EQ(pool.m_FreeList.size(), 256U);
}

TEST(FineBlockPool, LeavesAUsedSlotAloneThatIsMarkedAgain) {
  auto pool = MakePool(2);
  Take(pool);
  pool.MarkInUse(255);
  EXPECT_EQ(pool.m_FreeList.size(), 255U);
}

TEST(FineBlockPool, IgnoresTheReleaseOfASlotItDoesNotHave) {
  auto pool = MakePool(2);
  pool.ReleaseSlot(0);
  Take(pool);
  pool.ReleaseSlot(256);
  pool.ReleaseSlot(-1);
  EXPECT_EQ(pool.m_FreeList.size(), 255U);
}

TEST(FineBlockPool, RefusesAWidthWhosePoolBlockNoMatrixHolds) {
  auto pool = MakePool(2147483647);
  EXPECT_THROW(pool.AcquireSlot(), std::bad_alloc);
  EXPECT_EQ(pool.SlotCount(), 0);
}

TEST(FineBlockPool, GrowsBy256SlotsAtATime) {
  auto pool = MakePool(3);
  EXPECT_EQ(pool.AcquireSlot(), 255);
  ASSERT_EQ(pool.m_Blocks.size(), 1U);
  EXPECT_EQ(pool.m_SlotFree.size(), 256U);
  ASSERT_EQ(pool.m_FreeList.size(), 256U);
  for (int slot = 0; slot < 256; ++slot) {
    EXPECT_EQ(pool.m_FreeList[static_cast<std::size_t>(slot)], slot);
    EXPECT_EQ(pool.m_FreePos[static_cast<std::size_t>(slot)], slot);
  }
}

TEST(FineBlockPool, KeepsCellsInPlaceWhenItGrows) {
  auto pool = MakePool(2);
  float *const first = pool.Cells(Take(pool));
  *first = 5.0F;
  for (int i = 0; i < 5000; ++i) Take(pool);
  EXPECT_EQ(pool.Cells(255), first);
  EXPECT_EQ(*first, 5.0F);
}

TEST(FineBlockPool, GivesEachSlotCellsOfItsOwn) {
  auto pool = MakePool(2);
  for (int i = 0; i < 300; ++i) std::fill_n(pool.Cells(Take(pool)), 4, static_cast<float>(i));
  for (int i = 0; i < 300; ++i) {
    int const slot = i < 256 ? 255 - i : 767 - i;
    EXPECT_EQ(std::count(pool.Cells(slot), pool.Cells(slot) + 4, static_cast<float>(i)), 4) << i;
  }
}

TEST(FineBlockPool, TakesOverCellsThatWereProvidedBehindASlot) {
  auto pool = MakePool(2);
  pool.ProvideStorageBelow(600);
  EXPECT_EQ(pool.SlotCount(), 0);
  ASSERT_EQ(pool.m_Blocks.size(), 3U);
  float *const kept = pool.Cells(600);
  EXPECT_EQ(*kept, 0.0F);
  for (int i = 0; i < 513; ++i) Take(pool);
  EXPECT_EQ(pool.SlotCount(), 768);
  EXPECT_EQ(pool.m_Blocks.size(), 3U);
  EXPECT_EQ(pool.Cells(600), kept);
}

// The rules of the free list, written down plainly.
struct PlainFreeList {
  std::vector<int> list;
  int slots = 0;

  int Acquire() {
    if (list.empty())
      for (int i = 0; i < 256; ++i) list.push_back(slots++);
    return list.back();
  }
  bool IsFree(int slot) const { return std::find(list.begin(), list.end(), slot) != list.end(); }
  void Mark(int slot) {
    if (!IsFree(slot)) return;
    *std::find(list.begin(), list.end(), slot) = -1;
    while (!list.empty() && list.back() == -1) list.pop_back();
  }
  void Release(int slot) {
    if (!IsFree(slot)) list.push_back(slot);
  }
};

TEST(FineBlockPool, FollowsThePlainRulesInAnyOrderOfCalls) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto pool = MakePool(2);
    PlainFreeList judge;
    for (int step = 0; step < 2000; ++step) {
      auto const choice = random() % 10;
      if (choice < 5 || judge.slots == 0) {
        int const slot = pool.AcquireSlot();
        ASSERT_EQ(slot, judge.Acquire());
        pool.MarkInUse(slot);
        judge.Mark(slot);
        continue;
      }
      int const slot = static_cast<int>(random() % static_cast<unsigned long>(judge.slots));
      if (choice < 6) {
        pool.MarkInUse(slot);
        judge.Mark(slot);
      } else {
        pool.ReleaseSlot(slot);
        judge.Release(slot);
      }
      ASSERT_EQ(pool.m_FreeList, judge.list);
      ASSERT_EQ(pool.m_SlotFree[static_cast<std::size_t>(slot)], judge.IsFree(slot) ? 1 : 0);
    }
  }
}

}  // namespace
