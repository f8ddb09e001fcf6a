#include <cstddef>
#include <cstdint>
#include <fstream>
#include <locale>
#include <ostream>
#include <vector>

#include <quillaven/foundation/errors.h>
#include <quillaven/network/network.h>
#include <quillaven/network/network_counterparts_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

struct Bytes {
  std::uint64_t used = 0;
  std::uint64_t wasted = 0;
};

// One line about a pool. The reserved record is marked as any unused one and counts as wasted, but
// the search may begin behind it.
template <class Record>
Bytes ReportPool(std::ostream &stream, char const *what, CRecordPool<Record> const &pool,
                 std::size_t first) {
  std::uint64_t used = 0;
  for (std::size_t i = first; i < pool.size(); ++i)
    if (!CNetwork::IsUnused(&pool[i])) ++used;
  Bytes const bytes{used * sizeof(Record), (pool.size() - used) * sizeof(Record)};
  stream << "Allocated " << pool.size() << " " << what << ", used " << used << " " << what << ": "
         << bytes.used << " bytes used " << bytes.wasted << " bytes wasted" << std::endl;
  return bytes;
}

}  // namespace

// Each line is flushed, so that a look at the file while it is written shows whole lines. The
// misspelt word belongs to the text.
bool CNetwork::Report(char const *file) const {
  std::ofstream stream(SystemPath(file));
  if (!stream) {
    CannotCreateFile(file);
    return false;
  }
  stream.imbue(std::locale::classic());
  stream << "Reporting general charcteristics" << std::endl;
  Bytes const ofNodes = ReportPool(stream, "nodes", nodes, 0);
  Bytes const ofLinks = ReportPool(stream, "links", links, 1);
  Bytes const ofCells = ReportPool(stream, "idListElems", idListElems, 0);
  stream << "Total used " << ofNodes.used + ofLinks.used + ofCells.used << ", total wasted "
         << ofNodes.wasted + ofLinks.wasted + ofCells.wasted << std::endl;
  stream << "Reporting general charcteristics done" << std::endl;
  stream << std::endl;

  stream << "Reporting unidirectional links" << std::endl;
  std::vector<bool> const hasCounterpart = LinksWithCounterpart(nodes, links, idListElems);
  std::size_t count = 0;
  for (std::size_t i = 1; i < links.size(); ++i) {
    CLink const &link = links[i];
    if (IsUnused(&link) || hasCounterpart[i]) continue;
    ++count;
    stream << "link " << link.from << " --> " << link.to << " unidirectional" << std::endl;
  }
  stream << count << " links unidirectional" << std::endl;
  stream << "Reporting unidirectional links done" << std::endl;
  return true;
}
