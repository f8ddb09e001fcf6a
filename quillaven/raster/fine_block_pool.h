// The storage of the fine blocks of one raster.
//
//   int slot = pool.AcquireSlot();     // names a free slot
//   pool.MarkInUse(slot);
//   pool.Cells(slot)[i * W + j] = 1.5F;
//   pool.ReleaseSlot(slot);
//
// A slot is room for W x W cells. Slots are numbered from 0 and allocated 256 at a time, so that a
// fine block costs an allocation once in 256. The last slot that became free is the next to be
// used; of a fresh pool block that is the one with the highest number. Memory is given back only by
// Reset.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <quillaven/raster/smart_io_matrix.h>

template <class T>
class CFineBlockPool {
 public:
  static constexpr int kSlotsPerBlock = 256;

  /// Throws everything away and starts anew for blocks of `width` x `width` cells.
  void Reset(int width);

  /// Names a free slot; a pool without one grows by 256. The caller marks it as in use.
  int AcquireSlot();
  void MarkInUse(int slot);
  /// Gives a slot back. A slot that is free, or none of this pool, is left as it is.
  void ReleaseSlot(int slot);

  int SlotCount() const { return static_cast<int>(m_SlotFree.size()); }

  /// The W x W cells of a slot, row after row. Slots lie from the highest down, as they are dealt:
  /// a raster whose blocks were refined in row order is walked in the order of its memory.
  T *Cells(int slot) const {
    auto const k = static_cast<std::size_t>(slot);
    std::size_t const place = k % kSlotsPerBlock ^ (kSlotsPerBlock - 1);
    return m_Blocks[k / kSlotsPerBlock].m_ppRows[0] + place * m_nBlockCells;
  }

  /// Provides zeroed storage behind every slot below a number, without making them slots: an index
  /// entry may name a slot that an earlier shape of the raster had.
  void ProvideStorageBelow(int slots);

  std::size_t BytesOwned() const;

  std::vector<CSmartIOMatrix<T>> m_Blocks;  ///< each 256 slots, side by side in one run
  std::int32_t m_nBlockWidth = 0;           ///< W at the last Reset
  std::vector<unsigned char> m_SlotFree;    ///< per slot: 1 if free, 0 if in use
  std::vector<std::int32_t> m_FreePos;      ///< per slot: its place in m_FreeList, -1 if in use
  std::vector<std::int32_t> m_FreeList;     ///< stack of free slots; -1 is a hole, never at the end

 private:
  void Grow();
  void AddBlock();

  std::size_t m_nBlockCells = 0;  // W x W
};

QUILLAVEN_API_INSTANCE(CFineBlockPool<float>);
QUILLAVEN_API_INSTANCE(CFineBlockPool<short>);
QUILLAVEN_API_INSTANCE(CFineBlockPool<unsigned char>);
