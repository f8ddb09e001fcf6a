#include <cstddef>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>

#include "tests/support/format_page.h"
#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

class NetworkReport : public testing::Test {
 protected:
  std::string Report() {
    EXPECT_TRUE(network.Report(directory.Path("report.txt").c_str()));
    return directory.ReadText("report.txt");
  }
  TemporaryDirectory directory;
  RecordingApplication application;
  CNetwork network;
};

TEST_F(NetworkReport, OfANewNetworkCountsTheReservedRecordsAsWasted) {
  EXPECT_EQ(Report(),
            "Reporting general charcteristics\n"
            "Allocated 1 nodes, used 0 nodes: 0 bytes used 24 bytes wasted\n"
            "Allocated 1 links, used 0 links: 0 bytes used 12 bytes wasted\n"
            "Allocated 1 idListElems, used 0 idListElems: 0 bytes used 8 bytes wasted\n"
            "Total used 0, total wasted 44\n"
            "Reporting general charcteristics done\n"
            "\n"
            "Reporting unidirectional links\n"
            "0 links unidirectional\n"
            "Reporting unidirectional links done\n");
}

TEST_F(NetworkReport, NamesALinkWithoutACounterpart) {
  AddLinkBetween(network, {1, 2}, {3, 4});
  EXPECT_EQ(Report(),
            "Reporting general charcteristics\n"
            "Allocated 3 nodes, used 2 nodes: 48 bytes used 24 bytes wasted\n"
            "Allocated 2 links, used 1 links: 12 bytes used 12 bytes wasted\n"
            "Allocated 3 idListElems, used 2 idListElems: 16 bytes used 8 bytes wasted\n"
            "Total used 76, total wasted 44\n"
            "Reporting general charcteristics done\n"
            "\n"
            "Reporting unidirectional links\n"
            "link 1 --> 2 unidirectional\n"
            "1 links unidirectional\n"
            "Reporting unidirectional links done\n");
}

TEST_F(NetworkReport, NamesNoLinkOnceTheReverseIsThere) {
  AddLinkBetween(network, {1, 2}, {3, 4});
  AddLink(network, 2, 1);
  std::string const report = Report();
  EXPECT_EQ(report.find("-->"), std::string::npos);
  EXPECT_NE(report.find("\n0 links unidirectional\n"), std::string::npos);
}

TEST_F(NetworkReport, CountsADeletedLinkItsCellsAndItsNodesAsWasted) {
  unsigned long const link = AddLinkBetween(network, {1, 2}, {3, 4});
  DeleteLink(network, link);
  std::string const report = Report();
  EXPECT_NE(report.find("Allocated 3 nodes, used 0 nodes: 0 bytes used 72 bytes wasted\n"),
            std::string::npos);
  EXPECT_NE(report.find("Allocated 2 links, used 0 links: 0 bytes used 24 bytes wasted\n"),
            std::string::npos);
  EXPECT_NE(
      report.find("Allocated 3 idListElems, used 0 idListElems: 0 bytes used 24 bytes wasted\n"),
      std::string::npos);
  EXPECT_NE(report.find("Total used 0, total wasted 120\n"), std::string::npos);
}

TEST_F(NetworkReport, TakesALinkFromANodeToItselfForItsOwnCounterpart) {
  unsigned long const a = NodeOf(network, 1, 2);
  AddLink(network, a, a);
  EXPECT_NE(Report().find("\n0 links unidirectional\n"), std::string::npos);
}

TEST_F(NetworkReport, WritesNumbersWithoutGrouping) {
  for (int i = 0; i < 2000; ++i) network.CreateNode();
  EXPECT_NE(Report().find("Allocated 2001 nodes, used 0 nodes: 0 bytes used 48024 bytes wasted\n"),
            std::string::npos);
}

TEST_F(NetworkReport, ThatCannotBeCreatedIsTold) {
  EXPECT_FALSE(network.Report(directory.Path("missing/report.txt").c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot create file");
}

TEST_F(NetworkReport, ReplacesTheFile) {
  directory.Write("report.txt", std::string(9999, 'x'));
  EXPECT_EQ(Report().find('x'), std::string::npos);
}

TEST_F(NetworkReport, NamesWhatANaiveSetOfPairsNames) {
  for (unsigned int seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    network.Clear(true);
    for (int i = 0; i < 12; ++i) network.CreateNode()->x = i;
    std::set<std::pair<unsigned long, unsigned long>> pairs;
    for (int i = 0; i < 60; ++i) {
      unsigned long const a = 1 + random() % 12;
      unsigned long const b = 1 + random() % 12;
      if (pairs.emplace(a, b).second) {
        AddLink(network, a, b);
      } else {
        DeleteLink(network, network.IndexOf(network.FindLink(a, b)));
        pairs.erase({a, b});
      }
    }
    std::ostringstream expected;
    std::size_t count = 0;
    for (unsigned long i = 1; i < network.LinkCount(); ++i) {
      CNetwork::CLink const &link = *network.GetLink(i);
      if (link.from == 0 || pairs.count({link.to, link.from}) != 0) continue;
      expected << "link " << link.from << " --> " << link.to << " unidirectional\n";
      ++count;
    }
    std::string const report = Report();
    std::string const title = "Reporting unidirectional links\n";
    std::size_t const begin = report.find(title) + title.size();
    EXPECT_EQ(report.substr(begin), expected.str() + std::to_string(count) +
                                        " links unidirectional\n"
                                        "Reporting unidirectional links done\n");
  }
}

TEST_F(NetworkReport, OfAHubTakesNoLongerThanOfAnyOther) {
  unsigned long const hub = NodeOf(network, 0, 0);
  for (int i = 1; i <= 150000; ++i) {
    CNetwork::CNode *const ray = network.CreateNode();
    ray->x = i;
    unsigned long const index = network.IndexOf(ray);
    AddLink(network, hub, index);
    if (i % 50000 != 0) AddLink(network, index, hub);
  }
  EXPECT_NE(Report().find("\nlink 1 --> 50001 unidirectional\n"
                          "link 1 --> 100001 unidirectional\n"
                          "link 1 --> 150001 unidirectional\n"
                          "3 links unidirectional\n"),
            std::string::npos);
}

TEST_F(NetworkReport, ExampleOfTheFormatPageIsOfTheExampleNetwork) {
  EXPECT_TRUE(StandsInPage("network-report.md", "network-report.txt"));
  ASSERT_TRUE(network.Read(ExampleFile("network.bin").c_str()));
  EXPECT_EQ(Report(), BytesOfFile(ExampleFile("network-report.txt")));
}

}  // namespace
