// Looks for faults in a binary network file: indices beyond the pools, lists that do not end or hold
// what they should not, links that are not listed at both ends, cells that no list leads to, types
// without a name. The library reads such files as they are; the file's own bytes are looked at here,
// as its format page tells them.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <quillaven/platform/system_paths.h>

#include "apps/console.h"
#include "apps/files.h"
#include "apps/network_options.h"

namespace {

constexpr std::size_t kNodeWidth = 24;
constexpr std::size_t kLinkWidth = 12;
constexpr std::size_t kCellWidth = 8;
constexpr std::size_t kTypeWidth = 32;

// A pool as it lies in the file.
struct Pool {
  unsigned char const *records = nullptr;
  std::uint32_t count = 0;
  std::size_t width = 0;

  // The 32-bit field at an offset of a record.
  std::uint32_t Field(std::uint32_t record, std::size_t offset) const {
    unsigned char const *const at = records + record * width + offset;
    return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8 |
           static_cast<std::uint32_t>(at[2]) << 16 | static_cast<std::uint32_t>(at[3]) << 24;
  }
};

class Checker {
 public:
  explicit Checker(std::string const &bytes) : m_bytes(bytes) {}

  /// Prints a line for each fault; how many there are.
  int Check() {
    if (ReadPools()) {
      CheckReservedRecords();
      m_cellSeen.assign(m_cells.count, false);
      m_listed.assign(m_links.count, 0);
      for (std::uint32_t node = 1; node < m_nodes.count; ++node) {
        CheckList(node, kInLinks);
        CheckList(node, kOutLinks);
      }
      for (std::uint32_t link = 1; link < m_links.count; ++link) CheckLink(link);
      for (std::uint32_t cell = 1; cell < m_cells.count; ++cell) CheckUnlistedCell(cell);
      for (std::uint32_t type = 0; type < m_types.count; ++type) CheckTypeName(type);
      if (m_at < m_bytes.size())
        Fault(std::to_string(m_bytes.size() - m_at) + " bytes are behind the end");
    }
    return m_faults;
  }

 private:
  // One of the two lists of a node: where a node has its head, and a link the node it belongs to.
  struct List {
    char const *name;
    std::size_t headOffset;
    std::size_t endOffset;
    unsigned char mark;
  };
  static constexpr List kInLinks{"in", 16, 4, 1};
  static constexpr List kOutLinks{"out", 20, 0, 2};

  void Fault(std::string const &text) {
    ++m_faults;
    std::printf("%s\n", text.c_str());
  }

  bool ReadPools() {
    if (m_bytes.compare(0, 2, "MI") != 0) {
      Fault("the file does not begin with MI");
      return false;
    }
    int const version = std::atoi(m_bytes.substr(2, 2).c_str());  // NOLINT: the format's own rule
    return ReadPool("nodes", kNodeWidth, m_nodes) && ReadPool("links", kLinkWidth, m_links) &&
           ReadPool("list cells", kCellWidth, m_cells) &&
           (version < 3 || ReadPool("link types", kTypeWidth, m_types));
  }

  bool ReadPool(std::string const &name, std::size_t width, Pool &pool) {
    auto const *const bytes = reinterpret_cast<unsigned char const *>(m_bytes.data());
    std::size_t const left = m_bytes.size() - std::min(m_at, m_bytes.size());
    if (left < sizeof pool.count) {
      Fault("the file ends before the count of the " + name);
      return false;
    }
    pool.width = sizeof pool.count;
    pool.records = bytes + m_at;
    pool.count = pool.Field(0, 0);
    pool.records += sizeof pool.count;
    pool.width = width;
    if ((left - sizeof pool.count) / width < pool.count) {
      Fault("the file ends within its " + std::to_string(pool.count) + " " + name);
      return false;
    }
    m_at += sizeof pool.count + pool.count * width;
    return true;
  }

  void CheckReservedRecords() {
    if (m_nodes.count == 0 || m_nodes.Field(0, 16) != 0 || m_nodes.Field(0, 20) != 0)
      Fault("node 0 is not reserved");
    if (m_links.count == 0 || m_links.Field(0, 0) != 0 || m_links.Field(0, 4) != 0)
      Fault("link 0 is not reserved");
    if (m_cells.count == 0 || m_cells.Field(0, 0) != 0 || m_cells.Field(0, 4) != 0)
      Fault("list cell 0 is not reserved");
  }

  // A cell that was seen belongs to another list, or the list leads back into itself.
  void CheckList(std::uint32_t node, List const &list) {
    std::string const where =
        "node " + std::to_string(node) + ": list of " + list.name + "-links: ";
    for (std::uint32_t cell = m_nodes.Field(node, list.headOffset); cell != 0;
         cell = m_cells.Field(cell, 4)) {
      std::string const which = "cell " + std::to_string(cell);
      if (cell >= m_cells.count) return Fault(where + which + " is beyond the pool");
      if (m_cellSeen[cell]) return Fault(where + which + " is in a list already");
      m_cellSeen[cell] = true;
      CheckCell(where + which, m_cells.Field(cell, 0), node, list);
    }
  }

  void CheckCell(std::string const &where, std::uint32_t link, std::uint32_t node,
                 List const &list) {
    std::string const which = where + " names link " + std::to_string(link);
    if (link == 0) return Fault(where + " is marked as unused");
    if (link >= m_links.count) return Fault(which + ", which is beyond the pool");
    if (m_links.Field(link, list.endOffset) != node)
      return Fault(which + ", which has another node there");
    if ((m_listed[link] & list.mark) != 0) return Fault(which + " a second time");
    m_listed[link] |= list.mark;
  }

  void CheckLink(std::uint32_t link) {
    if (m_links.Field(link, 0) == 0 && m_links.Field(link, 4) == 0) return;  // not in use
    std::uint32_t const type = m_links.Field(link, 8) >> 24;
    if (m_types.count > 0 && type >= m_types.count)
      Fault("link " + std::to_string(link) + ": type " + std::to_string(type) + " has no name");
    for (List const &list : {kOutLinks, kInLinks}) {
      std::uint32_t const node = m_links.Field(link, list.endOffset);
      std::string const where = "link " + std::to_string(link) + ": node " + std::to_string(node);
      if (node == 0 || node >= m_nodes.count) {
        Fault(where + (node == 0 ? " is the reserved one" : " is beyond the pool"));
      } else if ((m_listed[link] & list.mark) == 0) {
        Fault(where + " does not list it among its " + list.name + "-links");
      }
    }
  }

  // A cell that was taken out of its list is marked, and keeps where it led to.
  void CheckUnlistedCell(std::uint32_t cell) {
    if (m_cellSeen[cell]) return;
    std::string const which = "list cell " + std::to_string(cell);
    std::uint32_t const link = m_cells.Field(cell, 0);
    if (link != 0) Fault(which + " is in use but in no list");
    if (link >= m_links.count)
      Fault(which + " names link " + std::to_string(link) + ", which is beyond the pool");
    if (m_cells.Field(cell, 4) >= m_cells.count) Fault(which + " leads beyond the pool");
  }

  void CheckTypeName(std::uint32_t type) {
    unsigned char const *const name = m_types.records + type * kTypeWidth;
    if (std::find(name, name + kTypeWidth, 0) == name + kTypeWidth)
      Fault("link type " + std::to_string(type) + ": the name has no end");
  }

  std::string const &m_bytes;
  std::size_t m_at = 4;  // behind the letters and the version
  Pool m_nodes;
  Pool m_links;
  Pool m_cells;
  Pool m_types;
  std::vector<bool> m_cellSeen;
  std::vector<unsigned char> m_listed;  // for each link the marks of the lists that it is in
  int m_faults = 0;
};

}  // namespace

void CheckNetwork(NetworkOptions const &options) {
  RequireReadable(options.network);
  std::ifstream stream(SystemPath(options.network), std::ios::binary);
  std::string const bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  int const faults = Checker(bytes).Check();
  if (faults > 0)
    throw Failure("'" + options.network + "' has " + std::to_string(faults) +
                  (faults == 1 ? " fault" : " faults"));
  std::printf("%s: no faults\n", options.network.c_str());
}
