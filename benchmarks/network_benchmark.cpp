// A network against what one would write by hand: streams and a std::map for vector text, one fread
// or fwrite of the same bytes, a plain loop over the same records, and a Boost graph.
//
// Each benchmark runs an operation and its peer turn by turn; "ratio" is the time of the operation
// divided by that of the peer. "ns" and "peer_ns" are nanoseconds for each point, byte, record or
// change.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef QUILLAVEN_HAS_BOOST_GRAPH
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/graph/adj_list_serialize.hpp>
#include <boost/graph/adjacency_list.hpp>
#endif

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>

#include "benchmarks/compare.h"

namespace {

using Access = CNetworkAccess;

// A file of its own, removed at the end of the program.
std::string const &Folder() {
  struct Made {
    Made()
        : path((std::filesystem::temp_directory_path() /
                ("quillaven-benchmark-" + std::to_string(std::random_device()())))
                   .string()) {
      std::filesystem::create_directories(path);
    }
    ~Made() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
    std::string path;
  };
  static Made const made;
  return made.path;
}

// Roads of 20 points as a country's file has them: each begins where an earlier one has a point, and
// stands there twice, the second time with its points in the opposite order.
std::string const &VectorText(int points) {
  static std::map<int, std::string> files;
  std::string &file = files[points];
  if (!file.empty()) return file;
  file = Folder() + "/" + std::to_string(points) + ".txt";
  std::FILE *const out = std::fopen(file.c_str(), "w");
  std::mt19937 random(1);
  std::uniform_real_distribution<double> step(-50.0, 50.0);
  std::vector<std::pair<double, double>> junctions = {{546100.0, 5229300.0}};
  constexpr int kRoad = 20;
  int id = 0;
  for (int written = 0; written < points; written += 2 * kRoad) {
    auto [x, y] = junctions[random() % junctions.size()];
    std::vector<std::pair<double, double>> road;
    for (int i = 0; i < kRoad; ++i) {
      road.emplace_back(x, y);
      x += step(random);
      y += step(random);
    }
    junctions.push_back(road[kRoad / 2]);
    for (int direction = 0; direction < 2; ++direction) {
      std::fprintf(out, "%10d\n", ++id);
      for (auto const &point : road)
        std::fprintf(out, " %17.6f %17.6f\n", point.first, point.second);
      std::fputs("END\n", out);
      std::reverse(road.begin(), road.end());
    }
  }
  std::fputs("END\n", out);
  std::fclose(out);
  return file;
}

CNetwork const &Network(int points) {
  static std::map<int, CNetwork> networks;
  CNetwork &network = networks[points];
  if (!network.HasData()) network.ReadAsciiFile(VectorText(points).c_str(), 2);
  return network;
}

int const kPoints = Sized(200000);

// What one would write first: a stream for each line, and a map of the points.
std::size_t ReadByStreams(std::string const &file) {
  struct Link {
    std::size_t from, to;
    unsigned long id;
  };
  std::ifstream stream(file);
  std::map<std::pair<double, double>, std::size_t> nodes;
  std::map<std::pair<std::size_t, std::size_t>, Link> links;
  std::string line;
  while (std::getline(stream, line) && line.substr(0, 3) != "END") {
    unsigned long id = 0;
    std::istringstream(line) >> id;
    std::size_t previous = 0;
    while (std::getline(stream, line) && line.substr(0, 3) != "END") {
      double x = 0;
      double y = 0;
      std::istringstream(line) >> x >> y;
      std::size_t const node = nodes.try_emplace({x, y}, nodes.size() + 1).first->second;
      if (previous != 0) links[{previous, node}] = {previous, node, id};
      previous = node;
    }
  }
  return links.size();
}

void ReadText(int points) {
  CNetwork network;
  network.ReadAsciiFile(VectorText(points).c_str(), 2);
  benchmark::DoNotOptimize(network.LinkCount());
}

void BM_VectorTextVersusStreams(benchmark::State &state) {
  std::string const &file = VectorText(kPoints);
  Compare(
      state, kPoints, kPoints, [] { ReadText(kPoints); },
      [&] { benchmark::DoNotOptimize(ReadByStreams(file)); });
}

// The ratio is ten for a reader that is linear in the points. Both read into a network that has its
// storage already, since the system's price of fresh memory differs between the two sizes.
void BM_VectorTextOfTenTimesThePoints(benchmark::State &state) {
  CNetwork many;
  CNetwork few;
  auto const read = [](CNetwork &network, int points) {
    network.Clear(true);
    benchmark::DoNotOptimize(network.ReadAsciiFile(VectorText(points).c_str(), 2));
  };
  read(many, 10 * kPoints);
  read(few, kPoints);
  Compare(
      state, 10 * kPoints, kPoints, [&] { read(many, 10 * kPoints); }, [&] { read(few, kPoints); });
}

// A star of roads: each leads from the middle to a place of its own and back.
std::string const &StarText(int points) {
  static std::map<int, std::string> files;
  std::string &file = files[points];
  if (!file.empty()) return file;
  file = Folder() + "/star" + std::to_string(points) + ".txt";
  std::FILE *const out = std::fopen(file.c_str(), "w");
  std::fputs("1\n", out);
  for (int i = 1; i <= points / 2; ++i)
    std::fprintf(out, " %17.6f %17.6f\n %17.6f %17.6f\n", 546100.0, 5229300.0, 546100.0 + i,
                 5229300.0);
  std::fputs("END\nEND\n", out);
  std::fclose(out);
  return file;
}

// The ratio is ten for operations that are linear in the links of a node: reading a star, and
// looking in its report for links without a counterpart.
void BM_StarOfTenTimesTheRays(benchmark::State &state) {
  auto const readAndReport = [](int points) {
    CNetwork network;
    network.ReadAsciiFile(StarText(points).c_str(), 2);
    benchmark::DoNotOptimize(network.Report((Folder() + "/report.txt").c_str()));
  };
  readAndReport(10 * kPoints);  // makes the files
  Compare(
      state, 10 * kPoints, kPoints, [&] { readAndReport(10 * kPoints); },
      [&] { readAndReport(kPoints); });
}

// Coordinates of 18 digits, as other programs write them. The peer reads the same points in the
// form of their own files.
void BM_LongCoordinatesVersusShort(benchmark::State &state) {
  auto const write = [](char const *format) {
    std::string const file = Folder() + "/digits.txt" + std::to_string(format[2]);
    std::FILE *const out = std::fopen(file.c_str(), "w");
    std::fputs("1\n", out);
    for (int i = 0; i < kPoints; ++i)
      std::fprintf(out, format, 546100.123456789012 + i / 977.0, 5229300.987654321010 - i / 1021.0);
    std::fputs("END\nEND\n", out);
    std::fclose(out);
    return file;
  };
  std::string const longText = write("%.12f %.12f\n");
  std::string const shortText = write("%.6f %.6f\n");
  auto const read = [](std::string const &file) {
    CNetwork network;
    benchmark::DoNotOptimize(network.ReadAsciiFile(file.c_str(), 2));
  };
  Compare(
      state, kPoints, kPoints, [&] { read(longText); }, [&] { read(shortText); });
}

void BM_LoadVersusOneRead(benchmark::State &state) {
  std::string const file = Folder() + "/load.bin";
  Network(10 * kPoints).Write(file.c_str());
  auto const size = static_cast<std::size_t>(std::filesystem::file_size(file));
  Compare(
      state, static_cast<double>(size), static_cast<double>(size),
      [&] {
        CNetwork network;
        benchmark::DoNotOptimize(network.Read(file.c_str()));
      },
      [&] {
        std::unique_ptr<char[]> const bytes(new char[size]);
        std::FILE *const in = std::fopen(file.c_str(), "rb");
        benchmark::DoNotOptimize(std::fread(bytes.get(), 1, size, in));
        std::fclose(in);
      });
}

void BM_SaveVersusOneWrite(benchmark::State &state) {
  CNetwork const &network = Network(10 * kPoints);
  std::string const file = Folder() + "/save.bin";
  network.Write(file.c_str());
  std::vector<char> bytes(static_cast<std::size_t>(std::filesystem::file_size(file)));
  std::ifstream(file, std::ios::binary)
      .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  auto const size = static_cast<double>(bytes.size());
  Compare(
      state, size, size, [&] { benchmark::DoNotOptimize(network.Write(file.c_str())); },
      [&] {
        std::FILE *const out = std::fopen(file.c_str(), "wb");
        benchmark::DoNotOptimize(std::fwrite(bytes.data(), 1, bytes.size(), out));
        std::fclose(out);
      });
}

#ifdef QUILLAVEN_HAS_BOOST_GRAPH
struct Place {
  double x = 0;
  double y = 0;
  template <class Archive>
  void serialize(Archive &archive, unsigned int /*version*/) {
    archive &x &y;
  }
};
struct Road {
  std::uint32_t id = 0;
  std::uint32_t type = 0;
  template <class Archive>
  void serialize(Archive &archive, unsigned int /*version*/) {
    archive &id &type;
  }
};
using Graph = boost::adjacency_list<boost::vecS, boost::vecS, boost::bidirectionalS, Place, Road>;

Graph MakeGraph(CNetwork network) {
  Graph graph(network.NodeCount());
  for (unsigned long i = 1; i < network.NodeCount(); ++i)
    graph[i] = {network.GetNode(i)->x, network.GetNode(i)->y};
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const &link = *network.GetLink(i);
    boost::add_edge(link.from, link.to, {link.id, link.type}, graph);
  }
  return graph;
}

void SaveGraph(Graph const &graph, std::string const &file) {
  std::ofstream stream(file, std::ios::binary);
  boost::archive::binary_oarchive archive(stream);
  archive << graph;
}

// Both load into an object that is there.
void BM_LoadVersusBoostGraph(benchmark::State &state) {
  std::string const file = Folder() + "/load.bin";
  std::string const graphFile = Folder() + "/load.graph";
  CNetwork const &network = Network(kPoints);
  network.Write(file.c_str());
  SaveGraph(MakeGraph(network), graphFile);
  CNetwork loaded;
  Graph loadedGraph;
  Compare(
      state, kPoints, kPoints, [&] { benchmark::DoNotOptimize(loaded.Read(file.c_str())); },
      [&] {
        loadedGraph.clear();
        std::ifstream stream(graphFile, std::ios::binary);
        boost::archive::binary_iarchive archive(stream);
        archive >> loadedGraph;
        benchmark::DoNotOptimize(boost::num_edges(loadedGraph));
      });
}

void BM_SaveVersusBoostGraph(benchmark::State &state) {
  CNetwork const &network = Network(kPoints);
  Graph const graph = MakeGraph(network);
  std::string const file = Folder() + "/save.bin";
  Compare(
      state, kPoints, kPoints, [&] { benchmark::DoNotOptimize(network.Write(file.c_str())); },
      [&] { SaveGraph(graph, file); });
}
#endif

// Whole numbers of a position; in a variable, so that no search is made for a constant.
struct Position {
  unsigned long x = 546300;
  unsigned long y = 5229100;
};

CNetwork::CNode const *ClosestByHand(CRecordPool<CNetwork::CNode> const &nodes, Position at) {
  CNetwork::CNode const *best = nullptr;
  double bestDistance = 0;
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    CNetwork::CNode const &node = nodes[i];
    if (node.inLinks == 0 && node.outLinks == 0) continue;
    double const dx = static_cast<int>(at.x) - static_cast<int>(node.x);
    double const dy = static_cast<int>(at.y) - static_cast<int>(node.y);
    double const distance = std::sqrt(dx * dx + dy * dy);
    if (best != nullptr && distance >= bestDistance) continue;
    best = &node;
    bestDistance = distance;
  }
  return best;
}

double ToSegmentByHand(int px, int py, int ax, int ay, int bx, int by) {
  double const dx = ax - bx;
  double const dy = ay - by;
  if (dx == 0 && dy == 0) return std::hypot(px - ax, py - ay);
  double const s = py * dy + px * dx;
  if ((by * dy + bx * dx - s) * (ay * dy + ax * dx - s) <= 0) {
    double const d = std::sqrt(dx * dx + dy * dy);
    return std::fabs(dx / d * py - dy / d * px - (ay * dx - ax * dy) / d);
  }
  double const toA = std::sqrt(double(px - ax) * (px - ax) + double(py - ay) * (py - ay));
  double const toB = std::sqrt(double(px - bx) * (px - bx) + double(py - by) * (py - by));
  return std::min(toA, toB);
}

CNetwork::CLink const *ClosestByHand(CRecordPool<CNetwork::CNode> const &nodes,
                                     CRecordPool<CNetwork::CLink> const &links, Position at) {
  CNetwork::CLink const *best = nullptr;
  double bestDistance = 0;
  for (std::size_t i = 1; i < links.size(); ++i) {
    CNetwork::CLink const &link = links[i];
    if (link.from == 0 && link.to == 0) continue;
    CNetwork::CNode const &a = nodes[link.from];
    CNetwork::CNode const &b = nodes[link.to];
    double const distance =
        ToSegmentByHand(static_cast<int>(at.x), static_cast<int>(at.y), static_cast<int>(a.x),
                        static_cast<int>(a.y), static_cast<int>(b.x), static_cast<int>(b.y));
    if (best != nullptr && distance >= bestDistance) continue;
    best = &link;
    bestDistance = distance;
  }
  return best;
}

void BM_ClosestNodeVersusByHand(benchmark::State &state) {
  CNetwork network = Network(kPoints);
  auto const &nodes = Access::Nodes(network);
  Position at;
  benchmark::DoNotOptimize(at);
  if (network.FindClosestNode(at.x, at.y) != ClosestByHand(nodes, at))
    state.SkipWithError("the answers differ");
  auto const count = static_cast<double>(nodes.size());
  Compare(
      state, count, count, [&] { benchmark::DoNotOptimize(network.FindClosestNode(at.x, at.y)); },
      [&] { benchmark::DoNotOptimize(ClosestByHand(nodes, at)); });
}

void BM_ClosestLinkVersusByHand(benchmark::State &state) {
  CNetwork network = Network(kPoints);
  auto const &nodes = Access::Nodes(network);
  auto const &links = Access::Links(network);
  Position at;
  benchmark::DoNotOptimize(at);
  if (network.FindClosestLink(at.x, at.y, 0) != ClosestByHand(nodes, links, at))
    state.SkipWithError("the answers differ");
  auto const count = static_cast<double>(links.size());
  Compare(
      state, count, count,
      [&] { benchmark::DoNotOptimize(network.FindClosestLink(at.x, at.y, 0)); },
      [&] { benchmark::DoNotOptimize(ClosestByHand(nodes, links, at)); });
}

// The peer adds up one coordinate of each node: one pass over the same bytes.
void BM_FindNodeVersusOnePass(benchmark::State &state) {
  CNetwork network = Network(kPoints);
  auto const &nodes = Access::Nodes(network);
  auto const count = static_cast<double>(nodes.size());
  double nowhere = -1;
  benchmark::DoNotOptimize(nowhere);
  Compare(
      state, count, count, [&] { benchmark::DoNotOptimize(network.FindNode(nowhere, nowhere)); },
      [&] {
        double sum = 0;
        for (CNetwork::CNode const &node : nodes) sum += node.x;
        benchmark::DoNotOptimize(sum);
      });
}

// 50 years, the first with a file of 100,000 links; each deletes links and brings them back.
CNetwork MakeYears(int changes) {
  std::string const file = Folder() + "/years.bin";
  CNetwork const &network = Network(kPoints / 2);
  network.Write(file.c_str());
  CNetwork result = network;
  for (int year = 1; year <= 50; ++year) {
    for (int i = 0; i < changes; ++i) {
      unsigned long const at =
          1 + static_cast<unsigned long>(year * 7919 + i * 97) % (result.LinkCount() - 1);
      if (i % 2 == 0) {
        result.DeltaDeleteLink(year, result.GetLink(at));
      } else {
        result.DeltaAddLink(year, result.GetLink(at));
      }
    }
  }
  auto &years = Access::Years(result);
  years.front().fileName = file;
  return result;
}

// The peer has a quarter of the changes; "ns" are for a change, the reading of the file and the
// pass over its nodes included.
void BM_ReplayOf50Years(benchmark::State &state) {
  CNetwork many = MakeYears(1000);
  CNetwork few = MakeYears(250);
  auto const replay = [](CNetwork &network) {
    Access::LoadedYearIndex(network) = -1;
    benchmark::DoNotOptimize(network.LoadTemporalData(50));
  };
  Compare(
      state, 50 * 1000, 50 * 250, [&] { replay(many); }, [&] { replay(few); });
}

// The same where all changes are at one node: links are added, and deleted in the next year.
void BM_ReplayAtAHub(benchmark::State &state) {
  int const kChanges = Sized(50000);
  auto const makeYears = [](int changes) {
    CNetwork network;
    Access::Years(network).resize(2);
    CNetwork::CDelta delta;
    for (int i = 1; i <= changes; ++i) {
      delta.end.x = i;
      delta.add = true;
      Access::Years(network)[0].deltas.push_back(delta);
      delta.add = false;
      Access::Years(network)[1].deltas.push_back(delta);
    }
    for (int year : {0, 1}) {
      Access::Years(network)[static_cast<std::size_t>(year)].year = year;
      Access::Years(network)[static_cast<std::size_t>(year)].fileName = "<none>";
    }
    return network;
  };
  CNetwork many = makeYears(4 * kChanges);
  CNetwork few = makeYears(kChanges);
  auto const replay = [](CNetwork &network) {
    network.Clear(false);
    benchmark::DoNotOptimize(network.LoadTemporalData(1));
  };
  Compare(
      state, 8 * kChanges, 2 * kChanges, [&] { replay(many); }, [&] { replay(few); });
}

// Those that take a second at a time.
void FewTurns(benchmark::internal::Benchmark *pair) {
  TakeTurns(pair, 3);
}

BENCHMARK(BM_VectorTextVersusStreams)->Apply(Turns);
BENCHMARK(BM_VectorTextOfTenTimesThePoints)->Apply(FewTurns);
BENCHMARK(BM_StarOfTenTimesTheRays)->Apply(FewTurns);
BENCHMARK(BM_LongCoordinatesVersusShort)->Apply(Turns);
BENCHMARK(BM_LoadVersusOneRead)->Apply(Turns);
BENCHMARK(BM_SaveVersusOneWrite)->Apply(Turns);
#ifdef QUILLAVEN_HAS_BOOST_GRAPH
BENCHMARK(BM_LoadVersusBoostGraph)->Apply(Turns);
BENCHMARK(BM_SaveVersusBoostGraph)->Apply(Turns);
#endif
BENCHMARK(BM_ClosestNodeVersusByHand)->Apply(Turns);
BENCHMARK(BM_ClosestLinkVersusByHand)->Apply(Turns);
BENCHMARK(BM_FindNodeVersusOnePass)->Apply(Turns);
BENCHMARK(BM_ReplayOf50Years)->Apply(Turns);
BENCHMARK(BM_ReplayAtAHub)->Apply(Turns);

}  // namespace
