// The roads and railways of a real country: read, counted, reported, saved and written back.

#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>

#include "tests/support/format_page.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kFolder = QUILLAVEN_SOURCE_DIR "/data/liechtenstein/";
constexpr unsigned char kTypes = 4;

std::string FileOfType(int type) {
  return kFolder + "net" + std::to_string(type) + ".txt";
}

// What the maker of the files counted.
std::map<std::string, unsigned long> Counts() {
  std::ifstream stream(kFolder + "counts.txt");
  std::map<std::string, unsigned long> counts;
  std::string key;
  unsigned long number = 0;
  while (stream >> key >> number) counts[key] = number;
  return counts;
}

class CountryNetwork : public testing::Test {
 protected:
  CountryNetwork() {
    for (unsigned char type = 0; type < kTypes; ++type)
      EXPECT_TRUE(network.ReadAsciiFile(FileOfType(type).c_str(), type));
  }
  ~CountryNetwork() override { EXPECT_TRUE(application.boxes.empty()); }

  RecordingApplication application;
  TemporaryDirectory directory;
  CNetwork network;
};

TEST_F(CountryNetwork, HasAsManyLinksOfEachTypeAsItsPolylinesHaveSegments) {
  auto counts = Counts();
  std::array<unsigned long, kTypes> links{};
  std::array<std::set<unsigned int>, kTypes> ids;
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const &link = *network.GetLink(i);
    ++links.at(link.type);
    ids.at(link.type).insert(link.id);
  }
  unsigned long polylines = 0;
  for (unsigned char type = 0; type < kTypes; ++type) {
    std::string const net = "net" + std::to_string(type);
    ASSERT_EQ(counts.count(net + ".points"), 1U);
    EXPECT_EQ(links.at(type), counts[net + ".points"] - counts[net + ".polylines"]);
    EXPECT_EQ(ids.at(type).size(), counts[net + ".polylines"]);
    polylines += counts[net + ".polylines"];
  }
  EXPECT_EQ(polylines, 4527U);
}

TEST_F(CountryNetwork, ReportsTheOneWayRoadsAndNoOthers) {
  std::string const report = directory.Path("report.txt");
  ASSERT_TRUE(network.Report(report.c_str()));
  std::ifstream stream(report);
  std::map<unsigned int, std::set<unsigned int>> idsOfType;
  unsigned long lines = 0;
  for (std::string line; std::getline(stream, line);) {
    std::istringstream words(line);
    std::string word;
    std::string arrow;
    unsigned long from = 0;
    unsigned long to = 0;
    if (!(words >> word >> from >> arrow >> to) || arrow != "-->") continue;
    CNetwork::CLink const *const link = network.FindLink(from, to);
    ASSERT_NE(link, nullptr);
    idsOfType[link->type].insert(link->id);
    ++lines;
  }
  auto counts = Counts();
  EXPECT_EQ(counts["net2.oneway_links"], 81U);
  for (unsigned char type = 0; type < kTypes; ++type)
    EXPECT_EQ(idsOfType[type].size(), counts["net" + std::to_string(type) + ".oneway_links"]);
  std::string const text = directory.ReadText("report.txt");
  EXPECT_NE(text.find("\n" + std::to_string(lines) + " links unidirectional\n"), std::string::npos);
}

TEST_F(CountryNetwork, IsWrittenBackByteForByte) {
  for (unsigned char type = 0; type < kTypes; ++type) {
    ASSERT_TRUE(network.WriteAsciiFile(directory.Path("out.txt").c_str(), type));
    EXPECT_EQ(directory.ReadText("out.txt"), BytesOfFile(FileOfType(type)));
  }
}

TEST_F(CountryNetwork, IsTheSameAfterASaveAndALoad) {
  ASSERT_TRUE(network.Write(directory.Path("country.bin").c_str()));
  CNetwork loaded;
  ASSERT_TRUE(loaded.Read(directory.Path("country.bin").c_str()));
  EXPECT_EQ(loaded.NodeCount(), network.NodeCount());
  EXPECT_EQ(loaded.LinkCount(), network.LinkCount());
  ASSERT_TRUE(loaded.Write(directory.Path("again.bin").c_str()));
  EXPECT_EQ(directory.Read("again.bin"), directory.Read("country.bin"));
}

TEST_F(CountryNetwork, FindsTheTwoDirectionsOfARoadOneBehindTheOther) {
  int roads = 0;
  for (unsigned long i = 1; i < network.LinkCount(); i += 97) {
    CNetwork::CLink const &link = *network.GetLink(i);
    CNetwork::CNode const &a = *network.GetNode(link.from);
    CNetwork::CNode const &b = *network.GetNode(link.to);
    if (network.FindLink(link.to, link.from) == nullptr) continue;
    if (std::hypot(a.x - b.x, a.y - b.y) < 100) continue;  // the middle is near no other road
    auto const x = static_cast<unsigned long>((a.x + b.x) / 2);
    auto const y = static_cast<unsigned long>((a.y + b.y) / 2);
    CNetwork::CLink *const first = network.FindClosestLink(x, y, 0);
    CNetwork::CLink *const second = network.FindClosestLink(x, y, network.IndexOf(first));
    EXPECT_TRUE(first == &link || second == &link);
    EXPECT_EQ(second, network.FindLink(first->to, first->from));
    EXPECT_EQ(network.FindClosestLink(x, y, network.IndexOf(second)), first);
    ++roads;
  }
  EXPECT_GT(roads, 3);
}

}  // namespace
