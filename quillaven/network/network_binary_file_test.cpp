#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>
#include <quillaven/network/network_bytes_internal.h>

#include "tests/support/pipe.h"
#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

using Access = CNetworkAccess;

constexpr char kHeaderMessage[] = "Incorrect header of the binary network file";

// Bytes from their hexadecimal digits; white space is skipped.
std::string Bytes(std::string const &digits) {
  std::istringstream stream(digits);
  std::string bytes;
  for (std::string pair; stream >> pair;) bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
  return bytes;
}

std::string Number(std::uint32_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
  return bytes;
}

// A road between (1, 2) and (3, -4) in both directions, the second one deleted, and one type.
CNetwork MakeRoad() {
  CNetwork network;
  unsigned long const a = NodeOf(network, 1, 2);
  unsigned long const b = NodeOf(network, 3, -4);
  AddLink(network, a, b, 2, 0x030405);
  DeleteLink(network, AddLink(network, b, a, 255, 7));
  network.SetLinkTypeName(0, "Roads");
  return network;
}

std::string const kRoadPools =
    // nodes
    "03 00 00 00 "
    "00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  00 00 00 00  00 00 00 00 "
    "00 00 00 00 00 00 F0 3F  00 00 00 00 00 00 00 40  00 00 00 00  01 00 00 00 "
    "00 00 00 00 00 00 08 40  00 00 00 00 00 00 10 C0  02 00 00 00  00 00 00 00 "
    // links
    "03 00 00 00 "
    "00 00 00 00  00 00 00 00  00 00 00 00 "
    "01 00 00 00  02 00 00 00  05 04 03 02 "
    "00 00 00 00  00 00 00 00  07 00 00 FF "
    // list cells
    "05 00 00 00 "
    "00 00 00 00  00 00 00 00 "
    "01 00 00 00  00 00 00 00 "
    "01 00 00 00  00 00 00 00 "
    "00 00 00 00  00 00 00 00 "
    "00 00 00 00  00 00 00 00 ";
std::string const kRoadTypes =
    "01 00 00 00 "
    "52 6F 61 64 73 00 00 00  00 00 00 00 00 00 00 00 "
    "00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00 ";

class NetworkBinaryFile : public testing::Test {
 protected:
  std::string Written(CNetwork const &from, std::string const &name = "out.bin") {
    EXPECT_TRUE(from.Write(directory.Path(name).c_str()));
    return directory.Read(name);
  }
  bool Read(std::string const &bytes) {
    return network.Read(directory.Write("in.bin", bytes).c_str());
  }
  // Whether reading gave exactly that one box.
  bool Told(std::string const &text) const {
    return application.boxes.size() == 1 && application.boxes[0].text == text &&
           application.boxes[0].title == "Read network";
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  CNetwork network;
};

TEST_F(NetworkBinaryFile, OfAClearedNetworkHas64Bytes) {
  std::string const golden = Bytes("4D 49 30 33  01 00 00 00") + std::string(24, '\0') + Number(1) +
                             std::string(12, '\0') + Number(1) + std::string(8, '\0') + Number(0);
  EXPECT_EQ(golden.size(), 64U);
  EXPECT_EQ(Written(network), golden);
}

TEST_F(NetworkBinaryFile, OfAClearedNetworkWithTheStandardTypesHas192Bytes) {
  NameStandardLinkTypes(network);
  std::string const file = Written(network);
  EXPECT_EQ(file.size(), 192U);
  EXPECT_EQ(file.substr(0, 8), Bytes("4D 49 30 33 01 00 00 00"));
  EXPECT_EQ(file.substr(32, 4), Number(1));
  EXPECT_EQ(file.substr(48, 4), Number(1));
  EXPECT_EQ(file.substr(60, 4), Number(4));
  EXPECT_STREQ(file.c_str() + 64 + 3 * 32, "Railways");
}

TEST_F(NetworkBinaryFile, IsTheImageOfThePoolsByteForByte) {
  EXPECT_EQ(Written(MakeRoad()), Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes));
}

TEST_F(NetworkBinaryFile, GivesBackEveryRecord) {
  ASSERT_TRUE(Read(Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes)));
  EXPECT_EQ(network.NodeCount(), 3U);
  EXPECT_EQ(network.LinkCount(), 3U);  // as the file has it, the reserved one included
  EXPECT_EQ(Access::Cells(network).size(), 5U);
  EXPECT_EQ(network.GetNode(2)->x, 3.0);
  EXPECT_EQ(network.GetNode(2)->y, -4.0);
  EXPECT_EQ(network.GetLink(1)->type, 2U);
  EXPECT_EQ(network.GetLink(1)->id, 0x030405U);
  EXPECT_EQ(network.GetLink(2)->type, 255U);
  EXPECT_EQ(network.FindLink(1, 2), network.GetLink(1));
  EXPECT_EQ(network.GetLinkTypesCount(), 1);
  EXPECT_EQ(network.GetLinkTypeName(0), "Roads");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkBinaryFile, OfVersion2HasNoTypesAndBringsTheStandardOnes) {
  ASSERT_TRUE(Read(Bytes("4D 49 30 32 " + kRoadPools)));
  ASSERT_EQ(network.GetLinkTypesCount(), 4);
  EXPECT_EQ(network.GetLinkTypeName(0), "Planned transport links");
  EXPECT_EQ(network.GetLinkTypeName(1), "Toll-ways");
  EXPECT_EQ(network.GetLinkTypeName(2), "Other roads");
  EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
  EXPECT_FALSE(Access::LinkTypesRead(network));
}

TEST_F(NetworkBinaryFile, IsAlwaysWrittenAsVersion3) {
  ASSERT_TRUE(Read(Bytes("4D 49 30 32 " + kRoadPools)));
  std::string const file = Written(network);
  EXPECT_EQ(file.substr(0, 4), "MI03");
  EXPECT_EQ(file.substr(4, Bytes(kRoadPools).size()), Bytes(kRoadPools));
}

TEST_F(NetworkBinaryFile, OfVersion2ReplacesOtherNamesAndOneOfVersion3LeavesThem) {
  for (int i = 0; i < 6; ++i) network.SetLinkTypeName(i, "other");
  Access::LinkTypesRead(network) = true;
  ASSERT_TRUE(Read(Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes)));
  EXPECT_EQ(network.GetLinkTypesCount(), 6);
  EXPECT_EQ(network.GetLinkTypeName(0), "other");
  ASSERT_TRUE(Read(Bytes("4D 49 30 32 " + kRoadPools)));
  EXPECT_EQ(network.GetLinkTypesCount(), 4);
  EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
}

TEST_F(NetworkBinaryFile, ReadSecondKeepsTheNamesOfTheFirstUntilAllIsCleared) {
  CNetwork other = MakeRoad();
  other.SetLinkTypeName(0, "Tracks");
  std::string const second = Written(other);
  ASSERT_TRUE(Read(Written(MakeRoad())));
  ASSERT_TRUE(Read(second));
  EXPECT_EQ(network.GetLinkTypeName(0), "Roads");
  network.Clear(false);
  ASSERT_TRUE(Read(second));
  EXPECT_EQ(network.GetLinkTypeName(0), "Roads");
  network.Clear(true);
  ASSERT_TRUE(Read(second));
  EXPECT_EQ(network.GetLinkTypeName(0), "Tracks");
}

TEST_F(NetworkBinaryFile, WithOtherLettersAtItsStartIsToldAndChangesNothing) {
  network = MakeSmallNetwork();
  std::string const before = Written(network);
  for (char const *digits : {"58 58 30 33 ", "6D 69 30 33 ", "4D 4E 30 33 "}) {
    application.boxes.clear();
    EXPECT_FALSE(Read(Bytes(digits + kRoadPools + kRoadTypes)));
    EXPECT_TRUE(Told(kHeaderMessage));
    EXPECT_EQ(Written(network), before);
  }
}

TEST_F(NetworkBinaryFile, OfFewerThanTwoBytesHasABadHeader) {
  for (char const *content : {"", "M"}) {
    application.boxes.clear();
    EXPECT_FALSE(Read(content));
    EXPECT_TRUE(Told(kHeaderMessage));
  }
}

TEST_F(NetworkBinaryFile, OfTheTwoLettersAloneFailsAtTheCountWithoutAMessage) {
  for (char const *content : {"MI", "MI0", "MI3", "MI03", "MI03\1\1\1"}) {
    EXPECT_FALSE(Read(content));
    EXPECT_EQ(network.NodeCount(), 1U);
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkBinaryFile, HasAVersionAsAtoiReadsIt) {
  // Letters give 0, which is old; digits end at the first letter.
  struct {
    char const *digits;
    bool hasTypes;
  } const cases[] = {{"ab", false}, {"0x", false}, {"3x", true},  {"99", true}, {"x3", false},
                     {" 3", true},  {"+3", true},  {"-3", false}, {" +", false}};
  for (auto const &[digits, hasTypes] : cases) {
    SCOPED_TRACE(digits);
    network.Clear(true);
    ASSERT_TRUE(Read("MI" + std::string(digits) + Bytes(kRoadPools + kRoadTypes)));
    EXPECT_EQ(network.GetLinkTypeName(0), hasTypes ? "Roads" : "Planned transport links");
  }
}

TEST_F(NetworkBinaryFile, MayGoOnBehindItsEnd) {
  EXPECT_TRUE(Read(Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes) + "anything"));
  EXPECT_EQ(Written(network), Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes));
}

TEST_F(NetworkBinaryFile, OfVersion3IsTheSameByteForByteAfterAReadAndAWrite) {
  CNetwork small = MakeSmallNetwork();
  NameStandardLinkTypes(small);
  std::string const file = Written(small);
  ASSERT_TRUE(Read(file));
  EXPECT_EQ(Written(network), file);
}

TEST_F(NetworkBinaryFile, LeavesRoomForAThousandCreations) {
  ASSERT_TRUE(Read(Bytes("4D 49 30 33 " + kRoadPools + kRoadTypes)));
  CNetwork copy = network;  // without room
  ASSERT_TRUE(copy.Read(directory.Path("in.bin").c_str()));
  EXPECT_EQ(Access::Nodes(copy).capacity(), 1003U);
  EXPECT_EQ(Access::Links(copy).capacity(), 1003U);
  EXPECT_EQ(Access::Cells(copy).capacity(), 1005U);
  CNetwork fresh;
  ASSERT_TRUE(fresh.Read(directory.Path("in.bin").c_str()));
  EXPECT_EQ(Access::LinkTypes(fresh).capacity(), 1001U);
}

TEST_F(NetworkBinaryFile, NameIsKeptAfterASuccessfulReadOnly) {
  std::string const good = directory.Write("good.bin", Written(MakeRoad()));
  ASSERT_TRUE(network.Read(good.c_str()));
  EXPECT_EQ(Access::FileName(network), good);
  EXPECT_FALSE(network.Read(directory.Write("bad.bin", "MI03").c_str()));
  EXPECT_EQ(Access::FileName(network), good);
  EXPECT_TRUE(network.Write(directory.Path("other.bin").c_str()));
  EXPECT_EQ(Access::FileName(network), good);
}

TEST_F(NetworkBinaryFile, ReadLeavesTheYearsAlone) {
  network.SetDataDefYear(1990, "a.bin");
  Access::LoadedYearIndex(network) = 0;
  ASSERT_TRUE(Read(Written(MakeRoad())));
  EXPECT_EQ(Access::LoadedYearIndex(network), 0);
  EXPECT_EQ(Access::Years(network).size(), 1U);
}

TEST_F(NetworkBinaryFile, ThatDoesNotOpenIsToldAndChangesNothing) {
  network = MakeSmallNetwork();
  std::string const before = Written(network);
  EXPECT_FALSE(network.Read(directory.Path("missing.bin").c_str()));
  EXPECT_FALSE(Access::ReadIOS(network, directory.Path("missing.bin").c_str()));
  EXPECT_FALSE(network.Read(directory.Path().c_str()));  // a directory
  ASSERT_EQ(application.boxes.size(), 3U);
  for (RecordedBox const &box : application.boxes) EXPECT_EQ(box.title, "Error: Cannot open file");
  EXPECT_EQ(Written(network), before);
}

TEST_F(NetworkBinaryFile, ThatCannotBeCreatedIsTold) {
  std::string const nowhere = directory.Path("missing/out.bin");
  EXPECT_FALSE(network.Write(nowhere.c_str()));
  EXPECT_FALSE(Access::WriteSDK(network, nowhere.c_str()));
  ASSERT_EQ(application.boxes.size(), 2U);
  for (RecordedBox const &box : application.boxes)
    EXPECT_EQ(box.title, "Error: Cannot create file");
}

TEST_F(NetworkBinaryFile, BothWaysThroughTheMachineLayAndTakeTheSameBytes) {
  CNetwork const small = MakeSmallNetwork();
  std::string const path = directory.Path("sdk.bin");
  ASSERT_TRUE(Access::WriteSDK(small, path.c_str()));
  ASSERT_TRUE(Access::WriteIOS(small, directory.Path("ios.bin").c_str()));
  EXPECT_EQ(directory.Read("sdk.bin"), directory.Read("ios.bin"));
  CNetwork a;
  CNetwork b;
  ASSERT_TRUE(Access::ReadSDK(a, path.c_str()));
  ASSERT_TRUE(Access::ReadIOS(b, path.c_str()));
  EXPECT_EQ(Written(a), directory.Read("sdk.bin"));
  EXPECT_EQ(Written(b), directory.Read("sdk.bin"));
  EXPECT_EQ(Access::FileName(b), "");  // the name belongs to Read
}

TEST_F(NetworkBinaryFile, OverwritesALongerFile) {
  directory.Write("out.bin", std::string(5000, 'x'));
  EXPECT_EQ(Written(network).size(), 64U);
}

// What is there after a file was cut off, told from the offsets of the blocks.
TEST_F(NetworkBinaryFile, CutAtAnyByteFailsAtTheNextCountAndKeepsWhatWasReadWhole) {
  std::string const file = Written(MakeRoad());
  constexpr std::size_t kNodes = 8;
  constexpr std::size_t kLinks = kNodes + 3 * 24 + 4;
  constexpr std::size_t kCells = kLinks + 3 * 12 + 4;
  constexpr std::size_t kTypes = kCells + 5 * 8 + 4;
  for (bool stream : {false, true}) {
    for (std::size_t length = 0; length <= file.size(); ++length) {
      SCOPED_TRACE(length);
      application.boxes.clear();
      network = MakeSmallNetwork();
      network.SetLinkTypeName(0, "old");
      std::string const path = directory.Write("cut.bin", file.substr(0, length));
      bool const read =
          stream ? Access::ReadIOS(network, path.c_str()) : Access::ReadSDK(network, path.c_str());
      EXPECT_EQ(read, length >= kTypes);
      EXPECT_EQ(application.boxes.size(), length < 2 ? 1U : 0U);
      EXPECT_EQ(network.NodeCount(), length >= kNodes ? 3U : 4U);
      EXPECT_EQ(network.LinkCount(), length >= kLinks ? 3U : 5U);
      EXPECT_EQ(Access::Cells(network).size(), length >= kCells ? 5U : 9U);
      EXPECT_EQ(Access::LinkTypesRead(network), length >= kCells);  // before its count is read
      bool const isOld = length == 2 || length == 3;  // no version counts as an old one
      if (isOld) {
        EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
      } else {
        EXPECT_EQ(network.GetLinkTypesCount(), 1);
      }
      if (length < kTypes && !isOld) {
        EXPECT_EQ(network.GetLinkTypeName(0), "old");
      }
      if (length == kTypes) {
        EXPECT_EQ(network.GetLinkTypeName(0), "");
      }
      if (length >= kNodes + 48) {
        EXPECT_EQ(network.GetNode(1)->y, 2.0);
      }
    }
  }
}

TEST_F(NetworkBinaryFile, OldAndCutOffBringsTheStandardNamesAllTheSame) {
  network.SetLinkTypeName(9, "old");
  EXPECT_FALSE(Read(Bytes("4D 49 30 32 " + kRoadPools).substr(0, 100)));
  EXPECT_EQ(network.GetLinkTypesCount(), 4);
  EXPECT_EQ(network.GetLinkTypeName(3), "Railways");
}

TEST_F(NetworkBinaryFile, CountThatTheFileCannotHoldTakesNoMemory) {
  std::string const file = Written(MakeRoad());
  std::size_t const counts[] = {4, 8 + 72, 12 + 72 + 36, 16 + 72 + 36 + 40};
  for (std::uint32_t count : {0xFFFFFFFFU, 0x7FFFFFFFU, 100000000U}) {
    for (std::size_t at : counts) {
      for (bool stream : {false, true}) {
        SCOPED_TRACE(at);
        std::string damaged = file;
        damaged.replace(at, 4, Number(count));
        std::string const path = directory.Write("in.bin", damaged);
        network.Clear(true);
        bool const read = stream ? Access::ReadIOS(network, path.c_str())
                                 : Access::ReadSDK(network, path.c_str());
        EXPECT_EQ(read, at == counts[3]);  // behind the last block there is no count to fail
        EXPECT_LT(network.NodeCount(), 1100U);
        EXPECT_LT(network.LinkCount(), 1100U);
        EXPECT_LT(Access::Cells(network).size(), 1100U);
        EXPECT_LT(network.GetLinkTypesCount(), 1100);
      }
    }
  }
  EXPECT_TRUE(application.boxes.empty());
}

// A pipe does not tell how much will come through it.
TEST_F(NetworkBinaryFile, ThatComesThroughAPipeIsReadWhole) {
  CNetwork large;
  for (int i = 0; i < 6000; ++i) {
    AddLinkBetween(large, {i, 1}, {i, 2}, 2, static_cast<unsigned int>(i));
    large.SetLinkTypeName(i, std::to_string(i));
  }
  for (CNetwork const &sent : {CNetwork(), MakeSmallNetwork(), large}) {
    std::string const file = Written(sent);
    for (bool stream : {false, true}) {
      SCOPED_TRACE(stream);
      network.Clear(true);
      Pipe const pipe(file);
      ASSERT_TRUE(stream ? Access::ReadIOS(network, pipe.Name().c_str())
                         : Access::ReadSDK(network, pipe.Name().c_str()));
      EXPECT_EQ(Written(network), file);
    }
  }
  EXPECT_GE(Access::Nodes(network).capacity(), network.NodeCount() + 1000);
}

TEST_F(NetworkBinaryFile, ThatEndsWithinAPipeFailsAtTheNextCountAndTakesNoMemory) {
  std::string const file = Written(MakeRoad());
  std::string damaged = file;
  damaged.replace(4, 4, Number(0xFFFFFFFFU));
  for (bool stream : {false, true}) {
    for (std::string const &bytes : {file.substr(0, 60), file.substr(0, 100), damaged}) {
      network.Clear(true);
      Pipe const pipe(bytes);
      EXPECT_FALSE(stream ? Access::ReadIOS(network, pipe.Name().c_str())
                          : Access::ReadSDK(network, pipe.Name().c_str()));
      EXPECT_LT(network.NodeCount(), 1100U);
    }
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkBinaryFile, WithoutEvenTheReservedRecordsIsAcceptedAndHarmless) {
  ASSERT_TRUE(Read("MI03" + Number(0) + Number(0) + Number(0) + Number(0)));
  EXPECT_EQ(network.NodeCount(), 0U);
  EXPECT_EQ(network.LinkCount(), 0U);
  EXPECT_FALSE(network.HasData());
  EXPECT_EQ(network.FindNode(0, 0), nullptr);
  EXPECT_EQ(network.FindLink(0, 0), nullptr);
  EXPECT_EQ(network.FindClosestNode(0, 0), nullptr);
  EXPECT_EQ(network.FindClosestLink(0, 0, 0), nullptr);
  EXPECT_TRUE(network.Report(directory.Path("report.txt").c_str()));
  EXPECT_TRUE(network.WriteAsciiFile(directory.Path("out.txt").c_str(), 0));
  EXPECT_EQ(directory.ReadText("out.txt"), "END\n");
}

TEST_F(NetworkBinaryFile, OfRandomNetworksGivesThemBack) {
  for (unsigned int seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CNetwork original;
    for (int i = 0; i < 300; ++i) {
      unsigned long const a = NodeOf(original, static_cast<double>(random() % 9), 0.1);
      unsigned long const b = NodeOf(original, static_cast<double>(random() % 9), -0.1);
      unsigned long const link = AddLink(original, a, b, random() % 256U, random() & 0xFFFFFFU);
      if (random() % 3 == 0) DeleteLink(original, link);
    }
    NameStandardLinkTypes(original);
    network.Clear(true);
    ASSERT_TRUE(Read(Written(original)));
    ASSERT_EQ(Written(network), directory.Read("in.bin"));
    for (unsigned long i = 1; i < original.NodeCount(); ++i)
      ASSERT_EQ(network.NodeInDegree(network.GetNode(i)),
                original.NodeInDegree(original.GetNode(i)));
  }
}

// A machine that stores numbers the other way goes through these; here they must give the image.
template <class Record>
void ExpectEncodedAsInMemory(CRecordPool<Record> const &pool) {
  static_assert(std::endian::native == std::endian::little);
  for (Record const &record : pool) {
    unsigned char bytes[sizeof(Record)];
    Encode(record, bytes);
    EXPECT_EQ(std::memcmp(bytes, &record, sizeof(Record)), 0);
    Record decoded{};
    Decode(bytes, decoded);
    EXPECT_EQ(std::memcmp(&decoded, &record, sizeof(Record)), 0);
  }
}

TEST(NetworkBytes, OfARecordAreThoseOfItsImage) {
  CNetwork road = MakeRoad();
  ExpectEncodedAsInMemory(Access::Nodes(road));
  ExpectEncodedAsInMemory(Access::Links(road));
  ExpectEncodedAsInMemory(Access::Cells(road));
  ExpectEncodedAsInMemory(Access::LinkTypes(road));
}

// The example of the format page: the page's own digits, the file, and the network that both mean.
TEST_F(NetworkBinaryFile, ExampleOfTheFormatPageIsTheRoad) {
  std::string const formats = QUILLAVEN_SOURCE_DIR "/docs/formats";
  std::ifstream page(formats + "/network-binary.md");
  std::string const text{std::istreambuf_iterator<char>(page), std::istreambuf_iterator<char>()};
  std::size_t const begin = text.find("```\n");
  std::size_t const end = text.find("```", begin + 4);
  ASSERT_NE(end, std::string::npos);
  std::istringstream lines(text.substr(begin + 4, end - begin - 4));
  std::string digits;
  for (std::string line; std::getline(lines, line);) digits += line.substr(0, line.find('|')) + " ";

  std::ifstream file(formats + "/examples/network.bin", std::ios::binary);
  std::string const bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(bytes, Bytes(digits));
  EXPECT_EQ(bytes, Written(MakeRoad()));
}

}  // namespace
