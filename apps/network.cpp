// Networks from the command line: import, export, report, years and the nearest link.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include <quillaven/network/network.h>

#include "apps/console.h"
#include "apps/files.h"
#include "apps/network_options.h"

namespace {

void ReadNetwork(Console const &console, CNetwork &network, std::string const &file) {
  RequireReadable(file);
  bool const read = network.Read(file.c_str());
  console.ThrowIfBoxShown(file);
  if (!read) throw Failure("'" + file + "' ends before its last record");
}

struct Used {
  unsigned long nodes = 0;
  unsigned long links = 0;
};

Used CountUsed(CNetwork &network) {
  Used used;
  for (unsigned long i = 1; i < network.NodeCount(); ++i)
    if (!CNetwork::IsUnused(network.GetNode(i))) ++used.nodes;
  for (unsigned long i = 1; i < network.LinkCount(); ++i)
    if (!CNetwork::IsUnused(network.GetLink(i))) ++used.links;
  return used;
}

std::string TypeName(CNetwork const &network, unsigned int type) {
  std::string const name = network.GetLinkTypeName(static_cast<int>(type));
  return name.empty() ? std::to_string(type) : std::to_string(type) + " (" + name + ")";
}

// What the library writes goes through a scratch file, so that a failure to write it is noticed.
template <class Write>
void WriteChecked(Console const &console, std::string const &out, Write write) {
  ScratchFile const scratch;
  write(scratch.Path().c_str());
  console.ThrowIfBoxShown(out);
  scratch.WriteTo(out);
}

// The years that a definitions file has lines for.
std::set<int> YearsIn(std::string const &file) {
  std::ifstream stream(SystemPath(file));
  std::set<int> years;
  // The library, too, does not read a last line without a line break.
  for (std::string line; std::getline(stream, line) && !stream.eof();) {
    std::size_t const tab = line.find('\t');
    CString keyword = line.substr(0, tab);
    keyword.MakeLower();
    if (keyword != "year" || tab == std::string::npos) continue;
    int year = 0;
    if (std::sscanf(line.c_str() + tab, "%d", &year) == 1) years.insert(year);
  }
  return years;
}

}  // namespace

void ImportNetwork(NetworkOptions const &options) {
  for (std::string const &file : options.texts) RequireOtherFile(file, options.out);
  Console console(HelpDirectory(""));
  CNetwork network;
  if (!options.network.empty()) ReadNetwork(console, network, options.network);
  Progress progress(static_cast<int>(options.texts.size()));
  for (std::string const &file : options.texts) {
    RequireReadable(file);
    progress.Step("reading " + file);
    // A file without a line break behind its end shows a box and is read well.
    if (!network.ReadAsciiFile(file.c_str(), static_cast<unsigned char>(options.type)))
      console.ThrowIfBoxShown(file);
    progress.Clear();
    console.WarnIfBoxShown(file);
  }
  WriteChecked(console, options.out, [&](char const *file) { network.Write(file); });
  progress.Clear();
  Used const used = CountUsed(network);
  std::printf("%s: %lu nodes, %lu links\n", options.out.c_str(), used.nodes, used.links);
}

void ExportNetwork(NetworkOptions const &options) {
  RequireOtherFile(options.network, options.out);
  Console const console(HelpDirectory(""));
  CNetwork network;
  ReadNetwork(console, network, options.network);
  WriteChecked(console, options.out, [&](char const *file) {
    network.WriteAsciiFile(file, static_cast<unsigned char>(options.type));
  });
}

void ReportNetwork(NetworkOptions const &options) {
  if (!options.out.empty()) RequireOtherFile(options.network, options.out);
  Console const console(HelpDirectory(""));
  CNetwork network;
  ReadNetwork(console, network, options.network);
  if (!options.out.empty())
    return WriteChecked(console, options.out, [&](char const *file) { network.Report(file); });
  ScratchFile const scratch;
  network.Report(scratch.Path().c_str());
  console.ThrowIfBoxShown(options.network);
  scratch.RequireRoom();
  std::ifstream report(scratch.Path());
  for (std::string line; std::getline(report, line);) std::printf("%s\n", line.c_str());
}

void DescribeNetwork(std::string const &file) {
  Console const console(HelpDirectory(""));
  CNetwork network;
  ReadNetwork(console, network, file);
  Used const used = CountUsed(network);
  std::printf("Network\nnodes     %lu\nlinks     %lu\n", used.nodes, used.links);
}

bool DescribedAsVectorText(std::string const &file) {
  Console const console(HelpDirectory(""));  // a box for what is no vector text ends here
  CNetwork network;
  if (!network.ReadAsciiFile(file.c_str(), 0)) return false;
  Used const used = CountUsed(network);
  std::printf("Network vector text\nnodes     %lu\nlinks     %lu\n", used.nodes, used.links);
  return true;
}

bool DescribedAsYears(std::string const &file) {
  std::set<int> const years = YearsIn(file);
  if (years.empty()) return false;
  std::printf("Years of a network\nyears    ");
  for (int const year : years) std::printf(" %d", year);
  std::printf("\n");
  return true;
}

void ReplayYears(NetworkOptions const &options) {
  RequireReadable(options.definitions);
  Console const console(HelpDirectory(""));
  CNetwork network;
  std::string const base = std::filesystem::absolute(options.definitions).string();
  network.LoadTemporalDataDefinition(options.definitions.c_str(), base.c_str());
  console.ThrowIfBoxShown(options.definitions);
  std::set<int> const told = YearsIn(options.definitions);
  if (told.empty()) throw Failure("'" + options.definitions + "' tells of no years");
  if (options.year && *options.year < *told.begin())
    std::fprintf(stderr, "quillaven: warning: '%s' begins with the year %d\n",
                 options.definitions.c_str(), *told.begin());
  std::set<int> const years = options.year ? std::set<int>{*options.year} : told;
  for (int const year : years) {
    bool const loaded = network.LoadTemporalData(year);
    console.ThrowIfBoxShown(options.definitions);
    if (!loaded)
      throw Failure("a network file of the year " + std::to_string(year) + " ends early");
    Used const used = CountUsed(network);
    std::printf("%d: %lu nodes, %lu links\n", year, used.nodes, used.links);
  }
}

void FindNearest(NetworkOptions const &options) {
  Console const console(HelpDirectory(""));
  CNetwork network;
  ReadNetwork(console, network, options.network);
  auto const x = static_cast<unsigned long>(options.x);
  auto const y = static_cast<unsigned long>(options.y);
  CNetwork::CNode const *const node = network.FindClosestNode(x, y);
  CNetwork::CLink const *const link = network.FindClosestLink(x, y, 0);
  if (node == nullptr || link == nullptr) throw Failure("the network has no links");
  std::printf("node %lu at %.6f %.6f, %d in, %d out\n", network.IndexOf(node), node->x, node->y,
              network.NodeInDegree(node), network.NodeOutDegree(node));
  std::printf("link %lu from node %lu to %lu, id %u, type %s\n", network.IndexOf(link),
              static_cast<unsigned long>(link->from), static_cast<unsigned long>(link->to),
              static_cast<unsigned int>(link->id), TypeName(network, link->type).c_str());
}
