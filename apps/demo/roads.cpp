// The second chapter: the roads and railways of Liechtenstein as one network that is saved, reported,
// changed over three years and asked for its nearest links.

#include <array>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include <quillaven/network/network.h>

#include "apps/demo/story.h"

namespace {

constexpr std::size_t kTypes = 4;
constexpr std::array<char const *, kTypes> kTypeNames{"Planned transport links", "Toll-ways",
                                                      "Other roads", "Railways"};
constexpr unsigned int kPlanned = 0;
constexpr unsigned int kRoad = 2;
constexpr unsigned int kRailway = 3;

using Counts = std::array<unsigned long, kTypes>;

CNetwork ReadCountry(std::string const &data) {
  CNetwork network;
  for (unsigned char type = 0; type < kTypes; ++type) {
    std::string const file = data + "/liechtenstein/net" + std::to_string(type) + ".txt";
    if (!network.ReadAsciiFile(file.c_str(), type)) throw Failure("cannot read '" + file + "'");
    network.SetLinkTypeName(type, kTypeNames.at(type));
  }
  return network;
}

Counts LinksInUse(CNetwork &network) {
  Counts counts{};
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const *const link = network.GetLink(i);
    if (!CNetwork::IsUnused(link) && link->type < kTypes) ++counts.at(link->type);
  }
  return counts;
}

void PrintTypes(CNetwork &network) {
  std::array<std::set<unsigned int>, kTypes> ids;
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const *const link = network.GetLink(i);
    if (link->type < kTypes) ids.at(link->type).insert(link->id);
  }
  Counts const links = LinksInUse(network);
  std::printf("  %lu nodes, %lu links\n", network.NodeCount() - 1, network.LinkCount() - 1);
  for (std::size_t type = 0; type < kTypes; ++type)
    std::printf("  %zu  %-24s %5lu links of %4zu polylines\n", type,
                network.GetLinkTypeName(static_cast<int>(type)).c_str(), links.at(type),
                ids.at(type).size());
}

// One-way links are those without a counterpart, as the report names them.
void PrintOneWay(CNetwork &network) {
  unsigned long links = 0;
  std::set<unsigned int> ids;
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const *const link = network.GetLink(i);
    if (CNetwork::IsUnused(link) || network.FindLink(link->to, link->from) != nullptr) continue;
    ++links;
    ids.insert(link->id);
  }
  std::printf("  %lu links are one-way, of %zu polylines\n", links, ids.size());
}

// Years of an example: 1990 is the map; in 1995 what was planned is a road; in 2000 the railways are
// gone.
void PlanYears(CNetwork &network, std::string const &file) {
  network.SetDataDefYear(1990, file.c_str());
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink link = *network.GetLink(i);
    if (link.type == kRailway) network.DeltaDeleteLink(2000, &link);
    if (link.type != kPlanned) continue;
    link.type = kRoad;
    network.DeltaAddLink(1995, &link);
  }
}

void Replay(std::string const &definitions) {
  CNetwork network;
  network.LoadTemporalDataDefinition(definitions.c_str(), definitions.c_str());
  for (int const year : {1990, 1995, 2000, 1995, 1990}) {
    if (!network.LoadTemporalData(year)) throw Failure("a file of the network's years ends early");
    Counts const links = LinksInUse(network);
    std::printf("  %d  planned %2lu, roads %5lu, railways %3lu\n", year, links[kPlanned],
                links[kRoad], links[kRailway]);
  }
}

void PrintNearest(CNetwork &network, int x, int y) {
  auto const ux = static_cast<unsigned long>(x);
  auto const uy = static_cast<unsigned long>(y);
  CNetwork::CLink const *const link = network.FindClosestLink(ux, uy, 0);
  if (link == nullptr) throw Failure("the network has no links");
  auto const place = [&network](unsigned long node) {
    CNetwork::CNode const *const at = network.GetNode(node);
    return CPoint{static_cast<int>(at->x), static_cast<int>(at->y)};
  };
  CPoint const a = place(link->from);
  CPoint const b = place(link->to);
  std::printf("  nearest to (%d, %d): %s from (%d, %d) to (%d, %d), %.1f m away\n", x, y,
              network.GetLinkTypeName(static_cast<int>(link->type)).c_str(), a.x, a.y, b.x, b.y,
              dPointToLineSegment({x, y}, a, b));
}

}  // namespace

std::string TellRoads(std::string const &data, Output &output, Progress &progress) {
  progress.Step("joining roads and railways");
  CNetwork network = ReadCountry(data);
  progress.Clear();
  std::printf("\nRoads and railways\n");
  PrintTypes(network);

  std::string const file = output.Add("network.bin");
  if (!network.Write(file.c_str())) throw Failure("cannot write '" + file + "'");
  CNetwork loaded;
  if (!loaded.Read(file.c_str())) throw Failure("cannot read all of '" + file + "'");
  PrintOneWay(loaded);
  std::string const report = output.Add("network-report.txt");
  if (!loaded.Report(report.c_str())) throw Failure("cannot write '" + report + "'");

  progress.Step("planning years of the network");
  PlanYears(network, file);
  // Absolute, as the names of the years' files are made relative to it.
  std::string definitions =
      std::filesystem::absolute(output.Add("network-years.txt")).lexically_normal().string();
  if (!network.SaveTemporalDataDefinition(definitions.c_str(), definitions.c_str()))
    throw Failure("cannot write '" + definitions + "'");
  output.Add("network-years_1990.bin");  // the save's copy of the year's network
  progress.Clear();
  std::printf("\nThree years, forward and back (the changes are invented)\n");
  Replay(definitions);

  std::printf("\nNearest links\n");
  PrintNearest(loaded, 540000, 5222000);
  PrintNearest(loaded, 538000, 5214000);
  PrintNearest(loaded, 542500, 5231000);
  return definitions;
}
