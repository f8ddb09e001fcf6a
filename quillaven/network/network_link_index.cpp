#include <quillaven/network/network_link_index_internal.h>

namespace {

// As far as this a walk costs less than a look into a table.
constexpr std::size_t kShortList = 64;

std::uint64_t KeyOf(std::uint32_t node, CLinkIndex::Direction direction) {
  return std::uint64_t{node} << 1 | direction;
}

}  // namespace

CLinkIndex::CLinkIndex(CRecordPool<CNetwork::CNode> &nodes,
                       CRecordPool<CNetwork::CLink> const &links, CellPool &cells)
    : m_nodes(nodes), m_links(links), m_cells(cells) {}

std::uint32_t CLinkIndex::Find(std::uint32_t from, std::uint32_t to) {
  auto const leadsThere = [&](CNetwork::CIdListElem const &cell) {
    return LeadsTo(m_links, cell, to);
  };
  ListPlace place = WalkList(m_cells, {0, Head(from, kOut)}, kShortList, leadsThere);
  if (IsCell(m_cells, place.at) && !leadsThere(m_cells[place.at])) {
    List &list = LongList(from, kOut);
    if (list.isSound) {
      // A link that was deleted since leads there no more, and never will again.
      std::vector<std::uint32_t> &found = list.linksTo[to];
      while (!found.empty() && m_links[found.back()].to != to) found.pop_back();
      return found.empty() ? 0 : found.back();
    }
    place = WalkList(m_cells, place, m_cells.size(), leadsThere);
  }
  bool const isThere = IsCell(m_cells, place.at) && leadsThere(m_cells[place.at]);
  return isThere ? m_cells[place.at].link : 0;
}

void CLinkIndex::Listed(std::uint32_t node, Direction direction) {
  List *const list = KnownList(node, direction);
  if (list == nullptr) return;
  std::uint32_t const head = Head(node, direction);
  CNetwork::CIdListElem const &cell = m_cells[head];
  if (cell.next != 0) list->fronts[m_cells[cell.next].link] = head;
  list->fronts[cell.link] = 0;
  if (direction == kOut) list->linksTo[m_links[cell.link].to].push_back(cell.link);
}

void CLinkIndex::TakeOut(std::uint32_t node, Direction direction, std::uint32_t link) {
  auto const isOfLink = [&](CNetwork::CIdListElem const &cell) { return cell.link == link; };
  auto const isFound = [&](ListPlace place) {
    return IsCell(m_cells, place.at) && isOfLink(m_cells[place.at]);
  };
  std::uint32_t &head = Head(node, direction);
  ListPlace place = WalkList(m_cells, {0, head}, kShortList, isOfLink);
  if (IsCell(m_cells, place.at) && !isFound(place)) {
    ListPlace const known = KnownPlace(head, LongList(node, direction), link);
    place = isFound(known) ? known : WalkList(m_cells, place, m_cells.size(), isOfLink);
  }
  if (!isFound(place)) return;
  TakeOutCell(m_cells, head, place);
  List *const list = KnownList(node, direction);
  std::uint32_t const behind = m_cells[place.at].next;
  if (list != nullptr && behind != 0) list->fronts[m_cells[behind].link] = place.front;
}

std::uint32_t &CLinkIndex::Head(std::uint32_t node, Direction direction) {
  return direction == kIn ? m_nodes[node].inLinks : m_nodes[node].outLinks;
}

// Null for a list that is walked.
CLinkIndex::List *CLinkIndex::KnownList(std::uint32_t node, Direction direction) {
  if (m_lists.empty()) return nullptr;
  auto const found = m_lists.find(KeyOf(node, direction));
  return found != m_lists.end() && found->second.isSound ? &found->second : nullptr;
}

CLinkIndex::List &CLinkIndex::LongList(std::uint32_t node, Direction direction) {
  auto const [entry, isNew] = m_lists.try_emplace(KeyOf(node, direction));
  if (isNew) LookThrough(Head(node, direction), direction, entry->second);
  return entry->second;
}

// As each cell of a sound network is in one list, no more cells than there are need to be known.
// Lists that run into each other would otherwise be known once for each of their beginnings.
void CLinkIndex::LookThrough(std::uint32_t head, Direction direction, List &list) {
  std::vector<std::uint32_t> names;  // in the order of the list
  ListPlace place{0, head};
  for (; IsCell(m_cells, place.at); place = {place.at, m_cells[place.at].next}) {
    std::uint32_t const link = m_cells[place.at].link;
    bool const isSound = link != 0 && link < m_links.size() && m_known < m_cells.size() &&
                         list.fronts.emplace(link, place.front).second;
    if (!isSound) break;
    names.push_back(link);
    ++m_known;
  }
  list.isSound = place.at == 0;
  if (!list.isSound) {
    m_known -= names.size();
    list.fronts = {};
  } else if (direction == kOut) {
    for (std::size_t i = names.size(); i > 0; --i)
      list.linksTo[m_links[names[i - 1]].to].push_back(names[i - 1]);
  }
}

// Where a link's cell is, unless the list was changed through another one that runs into it: then
// the cell in front is marked, or does not lead to the link.
ListPlace CLinkIndex::KnownPlace(std::uint32_t head, List const &list, std::uint32_t link) const {
  auto const found = list.fronts.find(link);
  if (found == list.fronts.end()) return {};
  std::uint32_t const front = found->second;
  if (front == 0) return {0, head};
  if (m_cells[front].link == 0) return {};
  return {front, m_cells[front].next};
}
