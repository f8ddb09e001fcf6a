#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <quillaven/network/network.h>

namespace {

// In 32 bits, where the extremes wrap around.
double Difference(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

double SquareOf(CPoint a, CPoint b) {
  double const dx = Difference(a.x, b.x);
  double const dy = Difference(a.y, b.y);
  return dx * dx + dy * dy;
}

// A position is given in unsigned numbers and meant in signed ones.
CPoint Position(unsigned long x, unsigned long y) {
  return {static_cast<std::int32_t>(static_cast<std::uint32_t>(x)),
          static_cast<std::int32_t>(static_cast<std::uint32_t>(y))};
}

// Cut to a whole number, toward zero; what no integer holds goes to the nearest end, and what is no
// number anywhere. The order of the comparisons lets a compiler do without branches.
std::int32_t Cut(double value) {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  double const bounded = value < kHighest ? value : kHighest;
  return static_cast<std::int32_t>(bounded > kLowest ? bounded : kLowest);
}

CPoint WholePlace(CNetwork::CNode const &node) {
  return {Cut(node.x), Cut(node.y)};
}

}  // namespace

double dPointToPoint(CPoint a, CPoint b) {
  return std::sqrt(SquareOf(a, b));
}

double dPointToLine(CPoint p, CPoint a, CPoint b) {
  double const dy = Difference(b.y, a.y);
  double const dx = Difference(a.x, b.x);
  double const d = std::sqrt(dx * dx + dy * dy);
  return std::fabs(dx / d * p.y + dy / d * p.x - (a.y * dx + a.x * dy) / d);
}

double dPointToLineSegment(CPoint p, CPoint a, CPoint b) {
  double const dx = Difference(a.x, b.x);
  double const dy = Difference(a.y, b.y);
  if (dx == 0 && dy == 0) return dPointToPoint(p, a);
  // Places along the direction of the segment; p lies between the ends if the signs differ.
  double const s = p.y * dy + p.x * dx;
  double const q = (b.y * dy + b.x * dx - s) * (a.y * dy + a.x * dx - s);
  if (q <= 0) return dPointToLine(p, a, b);
  return std::sqrt(std::min(SquareOf(p, a), SquareOf(p, b)));  // the smaller of both distances
}

CNetwork::CNode *CNetwork::FindClosestNode(unsigned long x, unsigned long y) {
  CPoint const position = Position(x, y);
  CNode *best = nullptr;
  // Distances are compared; a square that is not less spares the root, as it cannot give a lesser.
  double bestSquare = std::numeric_limits<double>::infinity();
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    if (IsUnused(&nodes[i])) continue;
    double const square = SquareOf(position, WholePlace(nodes[i]));
    if (square >= bestSquare || std::sqrt(square) >= std::sqrt(bestSquare)) continue;
    best = &nodes[i];
    bestSquare = square;
  }
  return best;
}

CNetwork::CLink *CNetwork::FindClosestLink(unsigned long x, unsigned long y, unsigned long after) {
  std::size_t const count = links.size();
  if (count < 2) return nullptr;
  CPoint const position = Position(x, y);
  CNode const *const pool = nodes.data();
  std::size_t const nodeCount = nodes.size();
  auto const place = [pool, nodeCount](std::uint32_t node) {
    return node < nodeCount ? WholePlace(pool[node]) : CPoint{};  // nothing lies at the origin
  };
  CLink *best = nullptr;
  double bestDistance = 0.0;
  auto const look = [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      if (IsUnused(&links[i])) continue;
      double const distance =
          dPointToLineSegment(position, place(links[i].from), place(links[i].to));
      if (best != nullptr && !(distance < bestDistance)) continue;
      best = &links[i];
      bestDistance = distance;
    }
  };
  // A ring: from the link behind `after` to the end, and on from the first one.
  std::size_t const first = after < count - 1 ? after + 1 : 1;
  look(first, count);
  look(1, first);
  return best;
}
