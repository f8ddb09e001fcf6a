#include <bit>
#include <cmath>
#include <utility>

#include <quillaven/network/network_node_index_internal.h>

namespace {

constexpr std::size_t kFewestSlots = 1024;

// Adding 0.0 turns -0.0, which equals it, into it.
std::uint64_t HashOf(double x, double y) {
  auto const a = std::bit_cast<std::uint64_t>(x + 0.0);
  auto const b = std::bit_cast<std::uint64_t>(y + 0.0);
  std::uint64_t hash = (a ^ std::rotl(b, 32)) * 0x9E3779B97F4A7C15U;
  hash = (hash ^ (hash >> 29) ^ b) * 0xBF58476D1CE4E5B9U;
  return hash ^ (hash >> 32);
}

std::uint32_t TagOf(std::uint64_t hash) {
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

CNetwork::CNodeIndex::CNodeIndex(CRecordPool<CNode> const &nodes) : m_nodes(nodes) {
  Enlarge(std::max(kFewestSlots, std::bit_ceil(2 * nodes.size())));
  for (std::size_t i = 1; i < nodes.size(); ++i) Add(static_cast<std::uint32_t>(i));
}

// The slot of the place, or the free one where it belongs. The low bits of the hash choose where
// the search begins and the high ones, up to 32, are the tag; tables of more slots than that do not
// arise from 32-bit indices.
std::size_t CNetwork::CNodeIndex::SlotOf(std::uint64_t hash, double x, double y) const {
  std::size_t const mask = m_slots.size() - 1;
  std::size_t at = static_cast<std::size_t>(hash) & mask;
  for (;; at = (at + 1) & mask) {
    Slot const &slot = m_slots[at];
    if (slot.node == 0) return at;
    if (slot.tag != TagOf(hash)) continue;
    CNode const &node = m_nodes[slot.node];
    if (node.x == x && node.y == y) return at;
  }
}

std::uint32_t CNetwork::CNodeIndex::Find(double x, double y) const {
  if (std::isnan(x) || std::isnan(y)) return 0;
  return m_slots[SlotOf(HashOf(x, y), x, y)].node;
}

void CNetwork::CNodeIndex::Add(std::uint32_t node) {
  double const x = m_nodes[node].x;
  double const y = m_nodes[node].y;
  if (std::isnan(x) || std::isnan(y)) return;
  if (2 * (m_taken + 1) > m_slots.size()) Enlarge(2 * m_slots.size());
  std::uint64_t const hash = HashOf(x, y);
  Slot &slot = m_slots[SlotOf(hash, x, y)];
  if (slot.node != 0) return;
  slot = {TagOf(hash), node};
  ++m_taken;
}

void CNetwork::CNodeIndex::Enlarge(std::size_t slots) {
  std::vector<Slot> const before = std::exchange(m_slots, std::vector<Slot>(slots));
  std::size_t const mask = slots - 1;
  for (Slot const &slot : before) {
    if (slot.node == 0) continue;
    CNode const &node = m_nodes[slot.node];
    std::size_t at = static_cast<std::size_t>(HashOf(node.x, node.y)) & mask;
    while (m_slots[at].node != 0) at = (at + 1) & mask;
    m_slots[at] = slot;
  }
}
