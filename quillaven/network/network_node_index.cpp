#include <algorithm>
#include <bit>
#include <cmath>

#include <quillaven/network/network_node_index_internal.h>

namespace {

constexpr std::size_t kFewestSlots = 1024;

bool IsPlace(double x, double y) {
  return !std::isnan(x) && !std::isnan(y);
}

// Adding 0.0 turns -0.0 into the 0.0 that it equals.
std::uint64_t HashOf(double x, double y) {
  auto const a = std::bit_cast<std::uint64_t>(x + 0.0);
  auto const b = std::bit_cast<std::uint64_t>(y + 0.0);
  std::uint64_t hash = (a ^ std::rotl(b, 32)) * 0x9E3779B97F4A7C15U;
  hash = (hash ^ (hash >> 29) ^ b) * 0xBF58476D1CE4E5B9U;
  return hash ^ (hash >> 32);
}

unsigned char TagOf(std::uint64_t hash) {
  return static_cast<unsigned char>(hash >> 56 | 0x80U);
}

}  // namespace

CNetwork::CNodeIndex::CNodeIndex(CRecordPool<CNode> const &nodes) : m_nodes(nodes) {
  Rebuild(std::max(kFewestSlots, std::bit_ceil(2 * nodes.size())));
}

// The slot of the place, or the free one where it belongs.
std::size_t CNetwork::CNodeIndex::SlotOf(std::uint64_t hash, double x, double y) const {
  std::size_t const mask = m_tags.size() - 1;
  unsigned char const tag = TagOf(hash);
  std::size_t at = static_cast<std::size_t>(hash) & mask;
  for (; m_tags[at] != 0; at = (at + 1) & mask) {
    if (m_tags[at] != tag) continue;
    CNode const &node = m_nodes[m_indices[at]];
    if (node.x == x && node.y == y) break;
  }
  return at;
}

std::uint32_t CNetwork::CNodeIndex::Find(double x, double y) const {
  if (!IsPlace(x, y)) return 0;
  std::size_t const at = SlotOf(HashOf(x, y), x, y);
  return m_tags[at] == 0 ? 0 : m_indices[at];
}

std::uint32_t CNetwork::CNodeIndex::FindOrAdd(double x, double y) {
  auto const next = static_cast<std::uint32_t>(m_nodes.size());
  if (!IsPlace(x, y)) return next;
  if (2 * (m_taken + 1) > m_tags.size()) Rebuild(2 * m_tags.size());
  std::uint64_t const hash = HashOf(x, y);
  std::size_t const at = SlotOf(hash, x, y);
  if (m_tags[at] != 0) return m_indices[at];
  m_tags[at] = TagOf(hash);
  m_indices[at] = next;
  ++m_taken;
  return next;
}

// Of nodes at one place the first, which has the lowest index, stays.
void CNetwork::CNodeIndex::Take(std::uint32_t node) {
  double const x = m_nodes[node].x;
  double const y = m_nodes[node].y;
  if (!IsPlace(x, y)) return;
  std::uint64_t const hash = HashOf(x, y);
  std::size_t const at = SlotOf(hash, x, y);
  if (m_tags[at] != 0) return;
  m_tags[at] = TagOf(hash);
  m_indices[at] = node;
  ++m_taken;
}

void CNetwork::CNodeIndex::Rebuild(std::size_t slots) {
  m_taken = 0;
  m_tags.assign(slots, 0);
  m_indices.assign(slots, 0);
  for (std::size_t i = 1; i < m_nodes.size(); ++i) Take(static_cast<std::uint32_t>(i));
}
