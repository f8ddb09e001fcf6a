#include <bit>
#include <cmath>
#include <utility>

#include <quillaven/network/network_node_index_internal.h>
#include <quillaven/platform/prefetch_internal.h>

namespace {

constexpr unsigned int kHashBits = 32;
constexpr unsigned int kFewestBits = 10;

bool IsPlace(double x, double y) {
  return !std::isnan(x) && !std::isnan(y);
}

// Adding 0.0 turns -0.0 into the 0.0 that it equals.
std::uint32_t HashOf(double x, double y) {
  auto const a = std::bit_cast<std::uint64_t>(x + 0.0);
  auto const b = std::bit_cast<std::uint64_t>(y + 0.0);
  std::uint64_t hash = (a ^ std::rotl(b, 32)) * 0x9E3779B97F4A7C15U;
  hash = (hash ^ (hash >> 29) ^ b) * 0xBF58476D1CE4E5B9U;
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

CNodeIndex::CNodeIndex(CRecordPool<CNetwork::CNode> const &nodes) : m_nodes(nodes) {
  unsigned int bits = kFewestBits;
  while (bits < kHashBits && (nodes.size() >> (bits - 1)) > 0) ++bits;
  m_shift = kHashBits - bits;
  m_slots.resize(std::size_t{1} << bits);
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    if (!IsPlace(nodes[i].x, nodes[i].y)) continue;
    std::uint32_t const hash = HashOf(nodes[i].x, nodes[i].y);
    Slot &slot = SlotOf(hash, nodes[i].x, nodes[i].y);
    if (slot.node != 0) continue;  // of nodes at one place the one of lowest index stays
    slot = {hash, static_cast<std::uint32_t>(i)};
    ++m_taken;
  }
}

// The slot of the place, or the free one where it belongs.
CNodeIndex::Slot &CNodeIndex::SlotOf(std::uint32_t hash, double x, double y) {
  std::size_t const mask = m_slots.size() - 1;
  for (std::size_t at = hash >> m_shift;; at = (at + 1) & mask) {
    Slot &slot = m_slots[at];
    if (slot.node == 0) return slot;
    if (slot.hash != hash) continue;
    CNetwork::CNode const &node = m_nodes[slot.node];
    if (node.x == x && node.y == y) return slot;
  }
}

std::uint32_t CNodeIndex::Find(double x, double y) {
  return IsPlace(x, y) ? SlotOf(HashOf(x, y), x, y).node : 0;
}

std::uint32_t CNodeIndex::FindOrAdd(double x, double y) {
  auto const next = static_cast<std::uint32_t>(m_nodes.size());
  if (!IsPlace(x, y)) return next;
  if (2 * m_taken >= m_slots.size() && m_shift > 0) Enlarge();
  std::uint32_t const hash = HashOf(x, y);
  Slot &slot = SlotOf(hash, x, y);
  if (slot.node != 0) return slot.node;
  slot = {hash, next};
  ++m_taken;
  return next;
}

void CNodeIndex::Expect(double x, double y) const {
  Prefetch(&m_slots[HashOf(x, y) >> m_shift]);
}

void CNodeIndex::Enlarge() {
  std::vector<Slot> const before = std::exchange(m_slots, std::vector<Slot>(2 * m_slots.size()));
  --m_shift;
  std::size_t const mask = m_slots.size() - 1;
  for (Slot const &slot : before) {
    if (slot.node == 0) continue;
    std::size_t at = slot.hash >> m_shift;
    while (m_slots[at].node != 0) at = (at + 1) & mask;
    m_slots[at] = slot;
  }
}
