#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include <quillaven/network/network_counterparts_internal.h>
#include <quillaven/network/network_lists_internal.h>

namespace {

// The lists as a forest: a cell hangs below the one that it leads to, and the cell at the end of a
// list is a root. All that a walk from a cell comes by lies on its way down to the root. So one
// descent from each root, which keeps count of the ends of links between it and where it is, can
// answer the questions that begin at a cell when it gets there.
//
// In a sound network each tree is one list. In a damaged one lists may run into each other, and in
// circles.
class Search {
 public:
  Search(CRecordPool<CNetwork::CNode> const &nodes, CRecordPool<CNetwork::CLink> const &links,
         CellPool const &cells)
      : m_links(links),
        m_cells(cells),
        m_above(cells.size()),
        m_beside(cells.size()),
        m_question(cells.size()),
        m_nextQuestion(links.size()),
        m_isDone(cells.size()),
        m_onWay(nodes.size()),
        m_found(links.size()) {
    for (std::uint32_t i = 1; i < cells.size(); ++i) {
      if (!IsCell(cells, cells[i].next)) continue;
      m_beside[i] = m_above[cells[i].next];
      m_above[cells[i].next] = i;
    }
    for (std::uint32_t i = 1; i < links.size(); ++i) {
      std::uint32_t const start = links[i].to;
      if (CNetwork::IsUnused(&links[i]) || start >= nodes.size()) continue;
      std::uint32_t const head = nodes[start].outLinks;
      if (!IsCell(cells, head)) continue;
      m_nextQuestion[i] = m_question[head];
      m_question[head] = i;
    }
  }

  std::vector<bool> Answers() {
    for (std::uint32_t i = 1; i < m_cells.size(); ++i)
      if (!IsCell(m_cells, m_cells[i].next)) Descend(i);
    // What is left leads into circles.
    for (std::uint32_t i = 1; i < m_cells.size(); ++i)
      if (!m_isDone[i]) GoRound(CellOfCircle(i));
    return m_found;
  }

 private:
  // Goes through all that hangs below a cell and is not done yet. The way back leads along the list.
  void Descend(std::uint32_t root) {
    std::uint32_t at = root;
    Enter(at);
    for (;;) {
      std::uint32_t const next = m_above[at];
      if (next != 0) {
        m_above[at] = m_beside[next];
        if (m_isDone[next]) continue;
        at = next;
        Enter(at);
      } else {
        Count(at, -1);
        if (at == root) return;
        at = m_cells[at].next;
      }
    }
  }

  void Enter(std::uint32_t cell) {
    m_isDone[cell] = true;
    Count(cell, 1);
    for (std::uint32_t i = m_question[cell]; i != 0; i = m_nextQuestion[i])
      m_found[i] = OnWay(m_links[i].from) > 0;
  }

  // Each cell of a circle is on the way from each other one.
  void GoRound(std::uint32_t start) {
    std::vector<std::uint32_t> circle;
    for (std::uint32_t at = start; circle.empty() || at != start; at = m_cells[at].next)
      circle.push_back(at);
    for (std::uint32_t const cell : circle) {
      m_isDone[cell] = true;
      Count(cell, 1);
    }
    for (std::uint32_t const cell : circle) Descend(cell);
    for (std::uint32_t const cell : circle) Count(cell, -1);
  }

  // Follows a list that has no end until it comes by a cell again.
  std::uint32_t CellOfCircle(std::uint32_t at) {
    for (m_seen.resize(m_cells.size()); !m_seen[at]; at = m_cells[at].next) m_seen[at] = true;
    return at;
  }

  void Count(std::uint32_t cell, int change) {
    std::uint32_t const link = m_cells[cell].link;
    if (link != 0 && link < m_links.size()) OnWay(m_links[link].to) += change;
  }

  int &OnWay(std::uint32_t node) {
    return node < m_onWay.size() ? m_onWay[node] : m_onWayBeyond[node];
  }

  CRecordPool<CNetwork::CLink> const &m_links;
  CellPool const &m_cells;
  std::vector<std::uint32_t> m_above;         // of the cells that lead to a cell the first
  std::vector<std::uint32_t> m_beside;        // and the next of them
  std::vector<std::uint32_t> m_question;      // of the links that ask at a cell the first
  std::vector<std::uint32_t> m_nextQuestion;  // and the next of them
  std::vector<bool> m_isDone;
  std::vector<bool> m_seen;
  std::vector<int> m_onWay;  // how many links on the way down end at each node
  std::unordered_map<std::uint32_t, int> m_onWayBeyond;  // the same for nodes beyond the pool
  std::vector<bool> m_found;
};

}  // namespace

std::vector<bool> LinksWithCounterpart(CRecordPool<CNetwork::CNode> const &nodes,
                                       CRecordPool<CNetwork::CLink> const &links,
                                       CRecordPool<CNetwork::CIdListElem> const &cells) {
  return Search(nodes, links, cells).Answers();
}
