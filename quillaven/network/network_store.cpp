#include <algorithm>
#include <cstddef>
#include <type_traits>

#include <quillaven/foundation/numbers.h>
#include <quillaven/network/network.h>
#include <quillaven/network/network_index_internal.h>
#include <quillaven/network/network_lists_internal.h>

// The pools are written to files as they lie.
static_assert(sizeof(CNetwork::CNode) == 24 && std::is_trivially_copyable_v<CNetwork::CNode>);
static_assert(sizeof(CNetwork::CLink) == 12 && std::is_trivially_copyable_v<CNetwork::CLink>);
static_assert(sizeof(CNetwork::CIdListElem) == 8 &&
              std::is_trivially_copyable_v<CNetwork::CIdListElem>);

namespace {

// Storage for so many records is laid out at once, so that an ordinary network never moves while it
// is built.
constexpr std::size_t kNodeRoom = 40000;
constexpr std::size_t kLinkRoom = 40000;
constexpr std::size_t kLinkTypeRoom = 16;

template <class Record>
void Empty(CRecordPool<Record> &pool, std::size_t room) {
  pool.clear();
  pool.reserve(room);
}

// A full pool grows by its own size, or by what is asked for if that is more.
template <class Record>
void MakeRoom(CRecordPool<Record> &pool, std::size_t size) {
  if (size > pool.capacity()) pool.reserve(std::max(size, 2 * pool.size()));
}

template <class Record>
Record *Append(CRecordPool<Record> &pool) {
  MakeRoom(pool, pool.size() + 1);
  pool.push_back(Record{});
  return &pool.back();
}

}  // namespace

CNetwork::CNetwork() {
  Clear(true);
}
CNetwork::CNetwork(CNetwork const &network) = default;
CNetwork &CNetwork::operator=(CNetwork const &network) = default;
CNetwork::~CNetwork() = default;

void CNetwork::Clear(bool all) {
  fileName.clear();
  if (all) temporalData.clear();
  Empty(nodes, kNodeRoom);
  Empty(links, kLinkRoom);
  Empty(idListElems, 2 * links.capacity());
  if (all) {
    Empty(linkTypes, kLinkTypeRoom);
    linkTypesRead = false;
  }
  CreateLink();
  CreateNode();
  CreateIdListElem();
  loadedYearIndex = -1;
}

bool CNetwork::HasData() const {
  return links.size() > 1;
}
unsigned long CNetwork::NodeCount() const {
  return static_cast<unsigned long>(nodes.size());
}
unsigned long CNetwork::LinkCount() const {
  return static_cast<unsigned long>(links.size());
}

CNetwork::CNode *CNetwork::GetNode(unsigned long index) {
  return nodes.data() + index;
}
CNetwork::CLink *CNetwork::GetLink(unsigned long index) {
  return links.data() + index;
}
unsigned long CNetwork::IndexOf(CNode const *node) const {
  return static_cast<unsigned long>(node - nodes.data());
}
unsigned long CNetwork::IndexOf(CLink const *link) const {
  return static_cast<unsigned long>(link - links.data());
}
unsigned long CNetwork::IndexOf(CIdListElem const *cell) const {
  return static_cast<unsigned long>(cell - idListElems.data());
}

void CNetwork::SetUnused(CNode *node) {
  node->inLinks = 0;
  node->outLinks = 0;
}
void CNetwork::SetUnused(CLink *link) {
  link->from = 0;
  link->to = 0;
}
void CNetwork::SetUnused(CIdListElem *cell) {
  cell->link = 0;
  cell->next = 0;
}

CNetwork::CNode *CNetwork::CreateNode() {
  return Append(nodes);
}
CNetwork::CLink *CNetwork::CreateLink() {
  return Append(links);
}
CNetwork::CIdListElem *CNetwork::CreateIdListElem() {
  return Append(idListElems);
}

// A new link stands first, so lists run from the link added last to the oldest.
void CNetwork::InsertInList(std::uint32_t &head, unsigned long link) {
  CIdListElem *const cell = CreateIdListElem();
  cell->link = static_cast<std::uint32_t>(link);
  cell->next = head;
  head = static_cast<std::uint32_t>(IndexOf(cell));
}

void CNetwork::RemoveFromList(std::uint32_t *head, unsigned long link) {
  auto const isOfLink = [link](CIdListElem const &cell) { return cell.link == link; };
  ListPlace const place = WalkList(idListElems, {0, *head}, idListElems.size(), isOfLink);
  if (IsCell(idListElems, place.at) && isOfLink(idListElems[place.at]))
    TakeOutCell(idListElems, *head, place);
}

int CNetwork::ListLength(std::uint32_t head) const {
  int length = 0;
  WalkList(idListElems, {0, head}, idListElems.size(), [&length](CIdListElem const & /*cell*/) {
    ++length;
    return false;
  });
  return length;
}

std::uint32_t CNetwork::LinkBetween(std::uint32_t from, std::uint32_t to) const {
  auto const leadsThere = [&](CIdListElem const &cell) { return LeadsTo(links, cell, to); };
  ListPlace const place =
      WalkList(idListElems, {0, NodeAt(from).outLinks}, idListElems.size(), leadsThere);
  bool const isThere = IsCell(idListElems, place.at) && leadsThere(idListElems[place.at]);
  return isThere ? idListElems[place.at].link : 0;
}

// What is beyond the pool is nothing, as the reserved node is.
CNetwork::CNode const &CNetwork::NodeAt(std::uint32_t index) const {
  static constexpr CNode kNothing;
  return index < nodes.size() ? nodes[index] : kNothing;
}

void CNetwork::AddInLink(CNode *node, CLink const *link) {
  InsertInList(node->inLinks, IndexOf(link));
}
void CNetwork::AddOutLink(CNode *node, CLink const *link) {
  InsertInList(node->outLinks, IndexOf(link));
}
// A node whose last link goes has both heads at 0, which is the mark of an unused one.
void CNetwork::DelInLink(CNode *node, CLink const *link) {
  RemoveFromList(&node->inLinks, IndexOf(link));
}
void CNetwork::DelOutLink(CNode *node, CLink const *link) {
  RemoveFromList(&node->outLinks, IndexOf(link));
}
int CNetwork::NodeInDegree(CNode const *node) const {
  return ListLength(node->inLinks);
}
int CNetwork::NodeOutDegree(CNode const *node) const {
  return ListLength(node->outLinks);
}

CNetwork::CNode *CNetwork::FindNode(double x, double y) {
  for (std::size_t i = 1; i < nodes.size(); ++i)
    if (nodes[i].x == x && nodes[i].y == y) return &nodes[i];
  return nullptr;
}

CNetwork::CLink *CNetwork::FindLink(unsigned long from, unsigned long to) {
  auto const end = static_cast<std::uint32_t>(to);
  if (from >= nodes.size() || end != to) return nullptr;
  std::uint32_t const link = LinkBetween(static_cast<std::uint32_t>(from), end);
  return link == 0 ? nullptr : &links[link];
}

// FindNode's answer through an index that lives for one operation, in which no caller steps in.
std::uint32_t CNetwork::FindOrCreateNode(double x, double y, CNetworkIndex &index) {
  std::uint32_t const found = index.nodes.FindOrAdd(x, y);
  if (found < nodes.size()) return found;
  CNode *const node = CreateNode();
  node->x = x;
  node->y = y;
  return found;
}

// There is at most one link from a node to another: one that is there takes the type and the id.
CNetwork::CLink *CNetwork::Connect(std::uint32_t from, std::uint32_t to, std::uint32_t type,
                                   std::uint32_t id, CNetworkIndex &index) {
  std::uint32_t const found = index.links.Find(from, to);
  CLink *const link = found != 0 ? &links[found] : CreateLink();
  // The id first: it is a change of the whole word, the type a byte of it. The other way round the
  // processor waits for that byte to reach memory before it reads the word.
  link->id = id & 0xFFFFFFU;
  link->type = type & 0xFFU;
  if (found != 0) return link;
  link->from = from;
  link->to = to;
  AddOutLink(&nodes[from], link);
  index.links.Listed(from, CLinkIndex::kOut);
  AddInLink(&nodes[to], link);
  index.links.Listed(to, CLinkIndex::kIn);
  return link;
}

int CNetwork::GetLinkTypesCount() const {
  return static_cast<int>(linkTypes.size());
}

std::string CNetwork::GetLinkTypeName(int index) const {
  if (index < 0 || index >= GetLinkTypesCount()) return {};
  CLinkTypeName const &name = linkTypes[static_cast<std::size_t>(index)];
  return {name.begin(), std::find(name.begin(), name.end(), '\0')};
}

void CNetwork::SetLinkTypeName(int index, std::string const &name) {
  if (index < 0) return;
  auto const at = static_cast<std::size_t>(index);
  if (at >= linkTypes.size()) {
    MakeRoom(linkTypes, at + 1);
    linkTypes.resize(at + 1, CLinkTypeName{});
  }
  strNcpy(linkTypes[at].data(), name.c_str(), sizeof(CLinkTypeName));
}
