#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>
#include <quillaven/platform/number_locale_internal.h>

#include "tests/support/format_page.h"
#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

using Access = CNetworkAccess;

std::string const kRoad =
    "        12\n"
    "          1.000000          2.000000\n"
    "          3.000000          4.000000\n"
    "          5.000000          6.000000\n"
    "END\n"
    "END\n";

class NetworkVectorText : public testing::Test {
 protected:
  bool Read(std::string const &text, unsigned char type = 2) {
    application.boxes.clear();
    return network.ReadAsciiFile(directory.Write("in.txt", text).c_str(), type);
  }
  std::string Written(unsigned char type = 2) {
    EXPECT_TRUE(network.WriteAsciiFile(directory.Path("out.txt").c_str(), type));
    return directory.ReadText("out.txt");
  }
  // The texts of the boxes, which must all have the one title.
  std::vector<std::string> Told() const {
    std::vector<std::string> texts;
    for (RecordedBox const &box : application.boxes) {
      EXPECT_EQ(box.title, "ArcInfo vector file");
      texts.push_back(box.text);
    }
    return texts;
  }
  using Texts = std::vector<std::string>;

  TemporaryDirectory directory;
  RecordingApplication application;
  CNetwork network;
};

TEST_F(NetworkVectorText, MakesALinkOfEachSegmentInReadingDirection) {
  ASSERT_TRUE(Read(kRoad));
  EXPECT_TRUE(application.boxes.empty());
  ASSERT_EQ(network.NodeCount(), 4U);
  ASSERT_EQ(network.LinkCount(), 3U);
  EXPECT_EQ(network.GetNode(2)->x, 3.0);
  EXPECT_EQ(network.GetNode(2)->y, 4.0);
  for (unsigned long i : {1UL, 2UL}) {
    CNetwork::CLink const *const link = network.GetLink(i);
    EXPECT_EQ(link->from, i);
    EXPECT_EQ(link->to, i + 1);
    EXPECT_EQ(link->id, 12U);
    EXPECT_EQ(link->type, 2U);
    EXPECT_EQ(network.FindLink(i, i + 1), link);
    EXPECT_EQ(network.FindLink(i + 1, i), nullptr);
  }
  EXPECT_EQ(network.NodeInDegree(network.GetNode(2)), 1);
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(2)), 1);
}

TEST_F(NetworkVectorText, IsWrittenBackByteForByte) {
  ASSERT_TRUE(Read(kRoad));
  EXPECT_EQ(Written(), kRoad);
}

TEST_F(NetworkVectorText, OfAnEmptyNetworkIsTheClosingLine) {
  EXPECT_EQ(Written(), "END\n");
}

TEST_F(NetworkVectorText, OfTheClosingLineAloneChangesNothing) {
  EXPECT_TRUE(Read("END\n"));
  EXPECT_EQ(network.NodeCount(), 1U);
  EXPECT_FALSE(network.HasData());
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkVectorText, WithoutALineHasNoIdAtItsEnd) {
  EXPECT_FALSE(Read(""));
  EXPECT_EQ(Told(), (Texts{"Unexpected end of file", "Id of vector expected"}));
}

TEST_F(NetworkVectorText, WithoutALineBreakBehindItsEndIsToldAndReadWell) {
  EXPECT_TRUE(Read(kRoad.substr(0, kRoad.size() - 1)));
  EXPECT_EQ(Told(), Texts{"Unexpected end of file"});
  EXPECT_EQ(network.LinkCount(), 3U);
}

TEST_F(NetworkVectorText, WithoutTheClosingLineKeepsAllItsLinks) {
  EXPECT_FALSE(Read(kRoad.substr(0, kRoad.size() - 4)));
  EXPECT_EQ(Told(), (Texts{"Unexpected end of file", "Id of vector expected"}));
  EXPECT_EQ(network.LinkCount(), 3U);
}

TEST_F(NetworkVectorText, ThatEndsWithinAVectorIsToldAtEachFurtherRead) {
  EXPECT_FALSE(Read("1\n1 2\n3 4"));  // the last point is acted on, and the line behind it is none
  EXPECT_EQ(Told(), (Texts{"Unexpected end of file", "Unexpected end of file",
                           "Subsequent coordinate of vector expected"}));
  EXPECT_EQ(network.LinkCount(), 2U);
  EXPECT_FALSE(Read("1"));
  EXPECT_EQ(Told(), (Texts{"Unexpected end of file", "Unexpected end of file",
                           "First coordinate of vector expected"}));
}

TEST_F(NetworkVectorText, ClosesAtAnyLineThatBeginsWithTheThreeCharacters) {
  EXPECT_TRUE(Read("1\n1 2\n3 4\nENDING\nEND of all\n"));
  EXPECT_EQ(network.LinkCount(), 2U);
}

TEST_F(NetworkVectorText, DoesNotCloseAtOtherCaseOrBehindABlank) {
  for (char const *line : {"end", " END", "EN", "End"}) {
    EXPECT_FALSE(Read(line + std::string("\n")));
    EXPECT_EQ(Told(), Texts{"Id of vector expected"});
    EXPECT_FALSE(Read("1\n1 2\n" + std::string(line) + "\n"));
    EXPECT_EQ(Told(), Texts{"Subsequent coordinate of vector expected"});
  }
}

TEST_F(NetworkVectorText, DoesNotCloseRightBehindAnId) {
  EXPECT_FALSE(Read("1\nEND\nEND\n"));
  EXPECT_EQ(Told(), Texts{"First coordinate of vector expected"});
  EXPECT_EQ(network.NodeCount(), 1U);
}

TEST_F(NetworkVectorText, KeepsTheLow24BitsOfAnId) {
  struct {
    char const *line;
    unsigned int id;
  } const cases[] = {{"16777217", 1},
                     {"16777215", 0xFFFFFF},
                     {"4294967295", 0xFFFFFF},
                     {"0", 0},
                     {"\t +5", 5},
                     {"7 lanes", 7},
                     {"7lanes", 7},
                     {"8.9", 8},
                     {"-1", 0xFFFFFF},
                     {"99999999999999999999999999999999", 0xFFFFFF}};
  for (auto const &[line, id] : cases) {
    SCOPED_TRACE(line);
    network.Clear(true);
    ASSERT_TRUE(Read(line + std::string("\n1 2\n3 4\nEND\nEND\n")));
    EXPECT_EQ(network.GetLink(1)->id, id);
  }
}

TEST_F(NetworkVectorText, RefusesALineWithoutANumberForAnId) {
  for (char const *line : {"", "   ", "road", "+", "-", ".5", "\x01"}) {
    SCOPED_TRACE(line);
    EXPECT_FALSE(Read(line + std::string("\n1 2\n3 4\nEND\nEND\n")));
    EXPECT_EQ(Told(), Texts{"Id of vector expected"});
  }
}

TEST_F(NetworkVectorText, TakesCoordinatesAsScanfDoes) {
  struct {
    char const *line;
    double x;
    double y;
  } const cases[] = {
      {"1 2", 1, 2},
      {"\t1.5\v-2.25 \r", 1.5, -2.25},
      {"1e3 -2E-1", 1000, -0.2},
      {"+7 .5", 7, 0.5},
      {"7. -.5", 7, -0.5},
      {"1-2", 1, -2},  // a number ends where another character begins
      {"1 2and more", 1, 2},
      {"1 2 3", 1, 2},
      {"0x10 2", 16, 2},
      {"546100.123456789012 +5229300.987654321010", 546100.123456789012, 5229300.987654321010},
      {"1e+05 +.5e1", 100000, 5},
      {"1e400 -1e400", std::numeric_limits<double>::infinity(),
       -std::numeric_limits<double>::infinity()},
      {"1e-400 4.9406564584124654e-324", 0, 4.9406564584124654e-324},
      {"inf -Infinity", std::numeric_limits<double>::infinity(),
       -std::numeric_limits<double>::infinity()},
      {"1.5e3.5 1x2", 1500, 0.5},
      {"0x1.8p1 0X10", 3, 16},
      {"1-2-3", 1, -2},
      {"0.1234567890123456789 123456789012345678", 0.1234567890123456789, 123456789012345678.0},
      {"546100.123456 5229300.654321", 546100.123456, 5229300.654321},
      {"-0 000000000000000000001", 0, 1}};
  for (auto const &[line, x, y] : cases) {
    SCOPED_TRACE(line);
    network.Clear(true);
    ASSERT_TRUE(Read("1\n" + std::string(line) + "\nEND\nEND\n"));
    ASSERT_EQ(network.NodeCount(), 2U);
    EXPECT_EQ(network.GetNode(1)->x, x);
    EXPECT_EQ(network.GetNode(1)->y, y);
  }
}

TEST_F(NetworkVectorText, TakesAnyLineForThePointThatScanfTakesItFor) {
  constexpr char kLetters[] = "0123456789012345678901234567890.......---++eeEExXpinfa  \t";
  std::mt19937 random(1);
  CNetwork expected;
  std::string text;
  int refused = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string line;
    for (auto n = random() % 28; n > 0; --n) line += kLetters[random() % (sizeof kLetters - 1)];
    if (random() % 3 == 0) line.insert(random() % (line.size() + 1), 1, '\0');
    double x = 0;
    double y = 0;
    bool isPoint = false;
    {
      PointLocale const numbers;
      isPoint = std::sscanf(line.c_str(), " %lf %lf", &x, &y) == 2;
    }
    if (isPoint) {
      text += "1\n" + line + "\nEND\n";
      NodeOf(expected, x, y);
    } else if (++refused <= 200) {
      SCOPED_TRACE(line);
      ASSERT_FALSE(Read("1\n" + line + "\nEND\nEND\n"));
    }
  }
  ASSERT_TRUE(Read(text + "END\n"));
  ASSERT_EQ(network.NodeCount(), expected.NodeCount());
  EXPECT_GT(network.NodeCount(), 2000U);
  auto const isSame = [](double a, double b) {
    return (a == b && std::signbit(a) == std::signbit(b)) || (std::isnan(a) && std::isnan(b));
  };
  for (unsigned long i = 1; i < network.NodeCount(); ++i) {
    ASSERT_PRED2(isSame, network.GetNode(i)->x, expected.GetNode(i)->x);
    ASSERT_PRED2(isSame, network.GetNode(i)->y, expected.GetNode(i)->y);
  }
}

// A place that is not a number is no node's place, so each such point is a node of its own.
TEST_F(NetworkVectorText, MakesANodeOfEachPointThatIsNoNumber) {
  ASSERT_TRUE(Read("1\nnan 1\nnan 1\ninf 1\ninf 1\nEND\nEND\n"));
  EXPECT_EQ(network.NodeCount(), 4U);
  EXPECT_EQ(network.LinkCount(), 4U);
}

TEST_F(NetworkVectorText, EndsALineOfANumberAtItsNul) {
  EXPECT_TRUE(Read(std::string("1\0x\n1 2\0 3\nEND\0\nEND\n", 20)));
  EXPECT_NE(network.FindNode(1, 2), nullptr);
  EXPECT_FALSE(Read(std::string("1\n1\0 2\nEND\nEND\n", 15)));
  EXPECT_EQ(Told(), Texts{"First coordinate of vector expected"});
}

TEST_F(NetworkVectorText, RefusesALineWithoutTwoNumbersForAPoint) {
  for (char const *line :
       {"", "1", "1 ", "1 x", "x 1", "1,2", ". 1", "- 1", "+-5 1", "1e2e3 4", "END"}) {
    SCOPED_TRACE(line);
    EXPECT_FALSE(Read("1\n" + std::string(line) + "\nEND\nEND\n"));
    EXPECT_EQ(Told(), Texts{"First coordinate of vector expected"});
    if (line == std::string("END")) continue;
    EXPECT_FALSE(Read("1\n1 2\n" + std::string(line) + "\nEND\nEND\n"));
    EXPECT_EQ(Told(), Texts{"Subsequent coordinate of vector expected"});
  }
}

TEST_F(NetworkVectorText, TakesBothLineBreaks) {
  std::string text;
  for (char const c : kRoad) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
  ASSERT_TRUE(Read(text));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(Written(), kRoad);
}

TEST_F(NetworkVectorText, ReadsARoadOfOnePointAsAnUnusedNode) {
  ASSERT_TRUE(Read("1\n1 2\nEND\nEND\n"));
  EXPECT_EQ(network.NodeCount(), 2U);
  EXPECT_FALSE(network.HasData());
  EXPECT_TRUE(CNetwork::IsUnused(network.GetNode(1)));
}

TEST_F(NetworkVectorText, LinksAPointThatRepeatsItselfToItself) {
  ASSERT_TRUE(Read("1\n1 2\n1 2\nEND\nEND\n"));
  EXPECT_EQ(network.NodeCount(), 2U);
  EXPECT_EQ(network.FindLink(1, 1), network.GetLink(1));
}

TEST_F(NetworkVectorText, ReadTwiceMakesNoNewLinks) {
  ASSERT_TRUE(Read(kRoad));
  ASSERT_TRUE(Read(kRoad));
  EXPECT_EQ(network.NodeCount(), 4U);
  EXPECT_EQ(network.LinkCount(), 3U);
  EXPECT_EQ(Access::Cells(network).size(), 5U);
}

TEST_F(NetworkVectorText, ReadAsAnotherTypeTakesTheLinksOver) {
  ASSERT_TRUE(Read(kRoad, 0));
  ASSERT_TRUE(Read("99" + kRoad.substr(10), 1));
  EXPECT_EQ(network.GetLink(1)->type, 1U);
  EXPECT_EQ(network.GetLink(2)->type, 1U);
  EXPECT_EQ(network.GetLink(1)->id, 99U);
  EXPECT_EQ(Written(0), "END\n");
}

TEST_F(NetworkVectorText, MakesTwoLinksOfASegmentInBothDirections) {
  ASSERT_TRUE(Read("1\n1 2\n3 4\nEND\nEND\n"));
  ASSERT_TRUE(Read("2\n3 4\n1 2\nEND\nEND\n"));
  EXPECT_EQ(network.NodeCount(), 3U);
  EXPECT_EQ(network.LinkCount(), 3U);
}

TEST_F(NetworkVectorText, BringsANodeThatLostItsLinksBackToLife) {
  ASSERT_TRUE(Read("1\n1 2\n3 4\nEND\nEND\n"));
  DeleteLink(network, 1);
  ASSERT_TRUE(Read("1\n1 2\n3 4\nEND\nEND\n"));
  EXPECT_EQ(network.NodeCount(), 3U);
  EXPECT_EQ(network.LinkCount(), 3U);
  EXPECT_FALSE(CNetwork::IsUnused(network.GetNode(1)));
}

TEST_F(NetworkVectorText, LeavesTheNameOfTheBinaryFileAlone) {
  Access::FileName(network) = "a.bin";
  ASSERT_TRUE(Read(kRoad));
  Written();
  EXPECT_EQ(Access::FileName(network), "a.bin");
}

TEST_F(NetworkVectorText, CutsALineBehind4095CharactersAndTakesTheRestForTheNext) {
  std::string const id(4095, '0');
  EXPECT_TRUE(Read(id + "\n1 2\nEND\nEND\n"));
  EXPECT_TRUE(Read(id + "\r\n1 2\nEND\nEND\n"));
  EXPECT_FALSE(Read(id + "5\n1 2\nEND\nEND\n"));  // 5 is a point that lacks its y
  EXPECT_EQ(Told(), Texts{"First coordinate of vector expected"});
  EXPECT_TRUE(Read(id + "5 6\nEND\nEND\n"));
  EXPECT_NE(network.FindNode(5, 6), nullptr);
  EXPECT_TRUE(Read("1\n1 2" + std::string(4092, ' ') + "7 8\nEND\nEND\n"));
  EXPECT_NE(network.FindNode(7, 8), nullptr);
}

TEST_F(NetworkVectorText, LongerThanItsBufferIsReadAsOne) {
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    text += std::to_string(i) + "\n" + std::to_string(i) + " 0" +
            std::string(static_cast<std::size_t>(i % 97), ' ') + "\n" + std::to_string(i + 1) +
            " 0\nEND\n";
  }
  ASSERT_TRUE(Read(text + "END\n"));
  EXPECT_EQ(network.NodeCount(), 20002U);
  EXPECT_EQ(network.LinkCount(), 20001U);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkVectorText, CutAtAnyByteIsReadAsFarAsItGoes) {
  for (std::size_t length = 0; length < kRoad.size() - 1; ++length) {
    SCOPED_TRACE(length);
    network.Clear(true);
    bool const read = Read(kRoad.substr(0, length));
    EXPECT_FALSE(read);
    EXPECT_GE(application.boxes.size(), 2U);
    EXPECT_EQ(application.boxes[0].text, "Unexpected end of file");
    EXPECT_LE(network.LinkCount(), 3U);
  }
}

TEST_F(NetworkVectorText, ThatDoesNotOpenIsTold) {
  EXPECT_FALSE(network.ReadAsciiFile(directory.Path("missing.txt").c_str(), 0));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
}

TEST_F(NetworkVectorText, ThatIsADirectoryIsToldLikeOneThatDoesNotOpen) {
  EXPECT_FALSE(network.ReadAsciiFile(directory.Path().c_str(), 1));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
}

// Far more links at one node than a walk for each could look at in the time of a test.
TEST_F(NetworkVectorText, OfAHubIsReadAsAnyOther) {
  constexpr int kRays = 150000;
  std::string text = "1\n0 0\n";
  for (int i = 1; i <= kRays; ++i) text += std::to_string(i) + " 1\n0 0\n";
  ASSERT_TRUE(Read(text + "END\nEND\n"));
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(1)), kRays);
  EXPECT_EQ(network.NodeInDegree(network.GetNode(1)), kRays);
  EXPECT_EQ(network.FindLink(1, kRays + 1), network.GetLink(2 * kRays - 1));
  ASSERT_TRUE(Read(text + "END\nEND\n", 7));
  EXPECT_EQ(network.LinkCount(), 2UL * kRays + 1);
  EXPECT_EQ(network.GetLink(1)->type, 7U);
}

TEST_F(NetworkVectorText, ThatCannotBeCreatedIsTold) {
  EXPECT_FALSE(network.WriteAsciiFile(directory.Path("missing/out.txt").c_str(), 0));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot create file");
}

// ---- What follows from putting polylines together by id and order alone ------------------------

class WrittenVectors : public NetworkVectorText {
 protected:
  // A link from (n, 0) to (n + 1, 0).
  void Link(int n, unsigned int type, unsigned int id) {
    AddLinkBetween(network, {n, 0}, {n + 1, 0}, type, id);
  }
  static std::string Point(int n) {
    return "          " + std::to_string(n) + ".000000          0.000000\n";
  }
};

TEST_F(WrittenVectors, AreNotClosedBeforeARecordOfTheSameIdThatIsNotWritten) {
  Link(1, 2, 5);
  Link(2, 3, 5);  // another type
  EXPECT_EQ(Written(), "         5\n" + Point(1) + Point(2) + "END\n");
  network.GetLink(2)->type = 2;
  DeleteLink(network, 2);  // or not in use
  EXPECT_EQ(Written(), "         5\n" + Point(1) + Point(2) + "END\n");
}

TEST_F(WrittenVectors, OfAFirstId0HaveNeitherIdNorFirstPoint) {
  Link(1, 2, 0);
  Link(5, 2, 3);
  Link(8, 2, 0);  // later ones have both
  EXPECT_EQ(Written(), Point(2) + "END\n" + "         3\n" + Point(5) + Point(6) + "END\n" +
                           "         0\n" + Point(8) + Point(9) + "END\nEND\n");
}

TEST_F(WrittenVectors, OfEqualIdsInARowAreOneWhetherTheyJoinUpOrNot) {
  Link(1, 2, 5);
  Link(7, 2, 5);
  EXPECT_EQ(Written(), "         5\n" + Point(1) + Point(2) + Point(8) + "END\nEND\n");
}

TEST_F(WrittenVectors, OfAnIdThatReturnsBehindOtherTypesHaveNoIdLine) {
  Link(1, 2, 5);
  Link(3, 9, 6);
  Link(5, 2, 5);
  EXPECT_EQ(Written(), "         5\n" + Point(1) + Point(2) + "END\n" + Point(6) + "END\nEND\n");
}

TEST_F(WrittenVectors, HaveCoordinatesInFieldsOf17With6Decimals) {
  network.CreateNode()->x = -123456789.1234567;
  network.GetNode(1)->y = 0.0000005;
  CNetwork::CNode *const node = network.CreateNode();
  node->x = 1e20;  // wider than its field
  node->y = -0.0;
  AddLink(network, 1, 2, 2, 0xFFFFFF);
  EXPECT_EQ(Written(),
            "  16777215\n"
            " -123456789.123457          0.000000\n"
            " 100000000000000000000.000000         -0.000000\n"
            "END\nEND\n");
}

TEST_F(WrittenVectors, HaveNumbersAsPrintfWritesThem) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200; ++i) {
    std::uint64_t const bits = random();
    double x = 0;
    std::memcpy(&x, &bits, sizeof x);
    if (!(x > -1e300 && x < 1e300)) continue;
    double const y = static_cast<double>(static_cast<std::int64_t>(random())) / 1e9;
    network.Clear(true);
    CNetwork::CNode *const node = network.CreateNode();
    node->x = x;
    node->y = y;
    AddLink(network, 1, 1, 2, 1);
    char expected[800];
    std::snprintf(expected, sizeof expected, " %17.6f %17.6f\n", x, y);
    std::string line = expected;
    for (char &c : line)
      if (c == ',') c = '.';  // should the tests run in such a locale
    EXPECT_EQ(Written(), "         1\n" + line + line + "END\nEND\n");
  }
}

// ---- Against a naive reader, over random files ---------------------------------------------------

struct NaiveLink {
  unsigned long from, to;
  unsigned int type, id;
};

TEST_F(NetworkVectorText, IsReadAsANaiveReaderReadsIt) {
  for (unsigned int seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    network.Clear(true);
    std::vector<std::pair<double, double>> places(1);
    std::vector<NaiveLink> links(1);
    for (unsigned char type = 0; type < 3; ++type) {
      std::string text;
      for (int vector = 0; vector < 60; ++vector) {
        auto const id = static_cast<unsigned int>(random() % 50);
        text += std::to_string(id) + "\n";
        unsigned long previous = 0;
        for (auto points = 1 + random() % 8; points > 0; --points) {
          double const x = static_cast<double>(random() % 12) / 8 * (random() % 2 == 0 ? 1 : -1);
          double const y = static_cast<double>(random() % 6);
          text += "  " + std::to_string(x) + " " + std::to_string(y) + " tail\n";
          unsigned long node = 1;
          while (node < places.size() && !(places[node].first == x && places[node].second == y))
            ++node;
          if (node == places.size()) places.emplace_back(x, y);
          if (previous != 0) {
            std::size_t link = 1;
            while (link < links.size() && !(links[link].from == previous && links[link].to == node))
              ++link;
            if (link == links.size()) links.push_back({previous, node, 0, 0});
            links[link].type = type;
            links[link].id = id;
          }
          previous = node;
        }
        text += "END\n";
      }
      for (char &c : text)
        if (c == ',') c = '.';
      ASSERT_TRUE(Read(text + "END\n", type));
    }
    ASSERT_EQ(network.NodeCount(), places.size());
    for (unsigned long i = 1; i < places.size(); ++i) {
      EXPECT_EQ(network.GetNode(i)->x, places[i].first);
      EXPECT_EQ(network.GetNode(i)->y, places[i].second);
    }
    ASSERT_EQ(network.LinkCount(), links.size());
    for (unsigned long i = 1; i < links.size(); ++i) {
      CNetwork::CLink const *const link = network.GetLink(i);
      EXPECT_EQ(link->from, links[i].from);
      EXPECT_EQ(link->to, links[i].to);
      EXPECT_EQ(link->type, links[i].type);
      EXPECT_EQ(link->id, links[i].id);
    }
  }
}

TEST_F(NetworkVectorText, ExampleOfTheFormatPageIsReadAndWrittenBackByteForByte) {
  EXPECT_TRUE(StandsInPage("network-vector-text.md", "network.txt"));
  ASSERT_TRUE(network.ReadAsciiFile(ExampleFile("network.txt").c_str(), 2));
  EXPECT_EQ(network.NodeCount(), 4U);
  EXPECT_EQ(network.LinkCount(), 5U);
  EXPECT_EQ(Written(), BytesOfFile(ExampleFile("network.txt")));
}

}  // namespace
