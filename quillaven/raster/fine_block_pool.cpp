#include <algorithm>
#include <limits>
#include <new>

#include <quillaven/raster/fine_block_pool.h>

namespace {
constexpr std::size_t kListCapacity = 1024;
}

template <class T>
void CFineBlockPool<T>::Reset(int width) {
  m_nBlockWidth = width;
  m_nBlockCells = static_cast<std::size_t>(width) * static_cast<std::size_t>(width);
  m_Blocks.clear();
  m_SlotFree.clear();
  m_FreePos.clear();
  m_FreeList.clear();
  m_SlotFree.reserve(kListCapacity);
  m_FreePos.reserve(kListCapacity);
  m_FreeList.reserve(kListCapacity);
}

// One run of 256 x W x W cells, zeroed, so that no stray value is ever seen.
template <class T>
void CFineBlockPool<T>::AddBlock() {
  if (m_nBlockCells > std::numeric_limits<std::int32_t>::max() / kSlotsPerBlock)
    throw std::bad_alloc();
  CSmartIOMatrix<T> &block = m_Blocks.emplace_back();
  try {
    int const cells = static_cast<int>(m_nBlockCells) * kSlotsPerBlock;
    block.Resize(1, cells);
    std::fill_n(block.m_ppRows[0], cells, T{});
  } catch (...) {
    m_Blocks.pop_back();
    throw;
  }
}

template <class T>
void CFineBlockPool<T>::Grow() {
  std::size_t const first = m_SlotFree.size();
  std::size_t const all = first + kSlotsPerBlock;
  m_FreeList.reserve(m_FreeList.size() + kSlotsPerBlock);
  m_SlotFree.reserve(all);
  m_FreePos.reserve(all);
  if (m_Blocks.size() * kSlotsPerBlock < all) AddBlock();
  // From here on nothing fails.
  for (std::size_t slot = first; slot < all; ++slot) {
    m_SlotFree.push_back(1);
    m_FreePos.push_back(static_cast<std::int32_t>(m_FreeList.size()));
    m_FreeList.push_back(static_cast<std::int32_t>(slot));
  }
}

template <class T>
int CFineBlockPool<T>::AcquireSlot() {
  if (m_FreeList.empty()) Grow();
  return m_FreeList.back();
}

template <class T>
void CFineBlockPool<T>::MarkInUse(int slot) {
  auto const k = static_cast<std::size_t>(slot);
  if (m_SlotFree[k] == 0) return;
  m_SlotFree[k] = 0;
  m_FreeList[static_cast<std::size_t>(m_FreePos[k])] = -1;
  m_FreePos[k] = -1;
  while (!m_FreeList.empty() && m_FreeList.back() == -1) m_FreeList.pop_back();
}

template <class T>
void CFineBlockPool<T>::ReleaseSlot(int slot) {
  auto const k = static_cast<std::size_t>(slot);
  if (k >= m_SlotFree.size() || m_SlotFree[k] == 1) return;
  m_FreeList.push_back(slot);  // first, as nothing has changed yet if there is no memory for it
  m_SlotFree[k] = 1;
  m_FreePos[k] = static_cast<std::int32_t>(m_FreeList.size()) - 1;
}

template <class T>
void CFineBlockPool<T>::ProvideStorageBelow(int slots) {
  while (m_Blocks.size() * kSlotsPerBlock < static_cast<std::size_t>(slots)) AddBlock();
}

template <class T>
std::size_t CFineBlockPool<T>::BytesOwned() const {
  std::size_t bytes = m_Blocks.capacity() * sizeof(CSmartIOMatrix<T>) + m_SlotFree.capacity() +
                      (m_FreePos.capacity() + m_FreeList.capacity()) * sizeof(std::int32_t);
  for (CSmartIOMatrix<T> const &block : m_Blocks) bytes += block.BytesOwned();
  return bytes;
}

template class CFineBlockPool<float>;
template class CFineBlockPool<short>;
template class CFineBlockPool<unsigned char>;
