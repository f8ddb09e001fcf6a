#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>
#include <quillaven/platform/system_paths.h>

#include "tests/support/format_page.h"
#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

using Access = CNetworkAccess;
using Texts = std::vector<std::string>;
using Place = std::pair<double, double>;

class NetworkYears : public testing::Test {
 protected:
  // Reads definitions that are relative to their own file.
  void Load(std::string const &text) {
    application.boxes.clear();
    std::string const file = directory.Write("net.txt", text);
    network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  }
  std::string Saved(std::string const &name = "saved.txt") {
    std::string const file = directory.Path(name);
    EXPECT_TRUE(network.SaveTemporalDataDefinition(file.c_str(), file.c_str()));
    return directory.ReadText(name);
  }
  // The texts of the boxes, which must all have the one title.
  Texts Told() const {
    Texts texts;
    for (RecordedBox const &box : application.boxes) {
      EXPECT_EQ(box.title, "Temporal network data definitions file");
      texts.push_back(box.text);
    }
    return texts;
  }
  std::vector<CNetwork::CTemporalData> &Years() { return Access::Years(network); }
  int Loaded() { return Access::LoadedYearIndex(network); }
  std::vector<int> YearNumbers() {
    std::vector<int> numbers;
    for (CNetwork::CTemporalData const &entry : Years()) numbers.push_back(entry.year);
    return numbers;
  }
  bool Has(Place from, Place to) {
    CNetwork::CNode const *const start = network.FindNode(from.first, from.second);
    CNetwork::CNode const *const end = network.FindNode(to.first, to.second);
    return start != nullptr && end != nullptr &&
           network.FindLink(network.IndexOf(start), network.IndexOf(end)) != nullptr;
  }
  // A network file of one link from (1, y) to (2, y).
  std::string WriteNetwork(std::string const &name, double y) {
    CNetwork other;
    AddLinkBetween(other, {1, y}, {2, y}, 2, 5);
    std::string const path = directory.Path(name);
    EXPECT_TRUE(other.Write(path.c_str()));
    return path;
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  CNetwork network;
};

// ---- Which entry rules for a year ----------------------------------------------------------------

TEST_F(NetworkYears, AreRuledByTheLastEntryNotLaterOrTheFirst) {
  EXPECT_EQ(Access::YearIndex(network, 1990), -1);
  network.SetDataDefYear(1990, "<none>");
  network.SetDataDefYear(2000, "<none>");
  struct {
    int year;
    int index;
  } const cases[] = {{1980, 0}, {1990, 0}, {1995, 0}, {1999, 0}, {2000, 1}, {2050, 1}};
  for (auto const &[year, index] : cases) EXPECT_EQ(Access::YearIndex(network, year), index);
}

TEST_F(NetworkYears, BetweenTwoEntriesCountAsLoadedWithTheEarlierOne) {
  Load("year\t1990\t<none>\nadd\t1\t1\t2\t2\t0\nyear\t2000\t<none>\n");
  ASSERT_TRUE(network.LoadTemporalData(1992));
  EXPECT_TRUE(Has({1, 1}, {2, 2}));
  network.Clear(false);  // to see whether anything is done
  Access::LoadedYearIndex(network) = 0;
  EXPECT_TRUE(network.LoadTemporalData(1995));
  EXPECT_FALSE(network.HasData());
  EXPECT_TRUE(network.IsYearLoaded(1999));
  EXPECT_TRUE(network.IsYearLoaded(1980));
  EXPECT_FALSE(network.IsYearLoaded(2000));
}

TEST_F(NetworkYears, WithoutAnEntryMeanAnEmptyNetwork) {
  network = MakeSmallNetwork();
  EXPECT_TRUE(network.IsYearLoaded(1990));
  EXPECT_TRUE(network.LoadTemporalData(1990));
  EXPECT_FALSE(network.HasData());
  EXPECT_EQ(Loaded(), -1);
  EXPECT_TRUE(network.IsYearLoaded(1990));
  Access::LoadedYearIndex(network) = 0;
  EXPECT_FALSE(network.IsYearLoaded(1990));
}

// ---- The definitions file -------------------------------------------------------------------------

TEST_F(NetworkYears, AreReadWithTheirFilesAndChanges) {
  Load(
      "year\t1990\t.\\net_1990.bin\n"
      "year\t1995\t<none>\n"
      "add\t1.5\t2\t3\t-4e2\t3\n"
      "del\t5\t6\t7\t8\n");
  EXPECT_TRUE(application.boxes.empty());
  ASSERT_EQ(Years().size(), 2U);
  EXPECT_EQ(Years()[0].fileName, LibraryPath(directory.Path("net_1990.bin")));
  EXPECT_TRUE(Years()[0].deltas.empty());
  EXPECT_EQ(Years()[1].fileName, "<none>");
  ASSERT_EQ(Years()[1].deltas.size(), 2U);
  CNetwork::CDelta const &add = Years()[1].deltas[0];
  EXPECT_TRUE(add.add);
  EXPECT_EQ(add.start.x, 1.5);
  EXPECT_EQ(add.start.y, 2.0);
  EXPECT_EQ(add.end.x, 3.0);
  EXPECT_EQ(add.end.y, -400.0);
  EXPECT_EQ(add.link.type, 3U);
  CNetwork::CDelta const &del = Years()[1].deltas[1];
  EXPECT_FALSE(del.add);
  EXPECT_EQ(del.end.y, 8.0);
}

TEST_F(NetworkYears, HaveKeywordsInAnyCase) {
  Load("YEAR\t1990\t<none>\nAdd\t1\t2\t3\t4\t0\nDEL\t1\t2\t3\t4\n");
  ASSERT_EQ(Years().size(), 1U);
  EXPECT_EQ(Years()[0].deltas.size(), 2U);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkYears, SkipLinesOfAnyOtherWord) {
  Load("# comment\n\nyear\t1990\t<none>\n year\t1991\t<none>\nyears\t1992\t<none>\nadding\t1\n");
  EXPECT_EQ(YearNumbers(), std::vector<int>{1990});
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkYears, TakeBothLineBreaks) {
  Load("year\t1990\t<none>\r\nadd\t1\t2\t3\t4\t9\r\n\r\n");
  ASSERT_EQ(Years().size(), 1U);
  EXPECT_EQ(Years()[0].fileName, "<none>");
  ASSERT_EQ(Years()[0].deltas.size(), 1U);
  EXPECT_EQ(Years()[0].deltas[0].link.type, 9U);
}

TEST_F(NetworkYears, IgnoreALastLineWithoutALineBreak) {
  Load("year\t1990\t<none>\nyear\t1995\t<none>");
  EXPECT_EQ(YearNumbers(), std::vector<int>{1990});
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkYears, KeepTheOrderOfTheFileAndRepeatedYears) {
  Load("year\t2000\t<none>\nyear\t1990\t<none>\nyear\t1990\ta.bin\n");
  EXPECT_EQ(YearNumbers(), (std::vector<int>{2000, 1990, 1990}));
}

TEST_F(NetworkYears, TellTheFirstFieldThatALineLacks) {
  struct {
    char const *line;
    char const *field;
  } const cases[] = {{"year", "Year"},
                     {"year\t", "Year"},
                     {"year\t\ta.bin", "Year"},
                     {"year\t1995", "Network fileName"},
                     {"year\t1995\t", "Network fileName"},
                     {"add", "startX"},
                     {"add\t1", "startY"},
                     {"add\t1\t2", "endX"},
                     {"add\t1\t2\t3", "endY"},
                     {"add\t1\t2\t3\t4", "TYPE"},
                     {"add\t1\t2\t3\t4\t", "TYPE"},
                     {"add\t1\t\t3\t4\t5", "startY"},
                     {"add 1 2 3 4 5", nullptr},  // blanks separate nothing: another word
                     {"del\t\t2\t3\t4", "startX"},
                     {"del\t1\t2\t3", "endY"}};
  for (auto const &[line, field] : cases) {
    SCOPED_TRACE(line);
    Load("year\t1990\t<none>\n" + std::string(line) + "\ndel\t1\t2\t3\t4\n");
    EXPECT_EQ(Told(), field == nullptr ? Texts{} : Texts{field});
    ASSERT_EQ(Years().size(), 1U);            // the line adds nothing
    EXPECT_EQ(Years()[0].deltas.size(), 1U);  // and the next one belongs to the year before
  }
}

TEST_F(NetworkYears, RefuseAChangeInFrontOfTheFirstYear) {
  Load("add\t1\t2\t3\t4\t0\ndel\t1\t2\t3\t4\nyear\t1990\t<none>\n");
  EXPECT_EQ(Told(), (Texts{"Year", "Year"}));
  ASSERT_EQ(Years().size(), 1U);
  EXPECT_TRUE(Years()[0].deltas.empty());
}

TEST_F(NetworkYears, GiveAnAddedLinkTheLowBitsOfStartYForAnId) {
  Load("year\t1990\t<none>\nadd\t1\t0.1\t3\t4\t257\n");
  EXPECT_EQ(Years()[0].deltas[0].link.id, 0x99999AU);  // 0.1 is 3FB999999999999A
  EXPECT_EQ(Years()[0].deltas[0].link.type, 1U);       // 257 in 8 bits
}

TEST_F(NetworkYears, TakeFieldsAsAtoiAndAtofDo) {
  Load("year\t1990 AD\t<none>\nadd\tone\t2nd\t 3\t0x10\tx\n");
  EXPECT_EQ(YearNumbers(), std::vector<int>{1990});
  CNetwork::CDelta const &add = Years()[0].deltas[0];
  EXPECT_EQ(add.start.x, 0.0);
  EXPECT_EQ(add.start.y, 2.0);
  EXPECT_EQ(add.end.x, 3.0);
  EXPECT_EQ(add.link.type, 0U);
}

TEST_F(NetworkYears, ThatNameTheFileOfAnEarlierYearAgainHaveNone) {
  Load(
      "year\t1990\tNet.bin\nyear\t1992\t<none>\nyear\t1995\tnET.BIN\nyear\t2000\tother.bin\n"
      "year\t2005\tnet.bin\n");
  ASSERT_EQ(Years().size(), 5U);
  EXPECT_EQ(Years()[0].fileName, LibraryPath(directory.Path("Net.bin")));
  EXPECT_EQ(Years()[2].fileName, "<none>");
  EXPECT_NE(Years()[3].fileName, "<none>");
  EXPECT_NE(Years()[4].fileName, "<none>");  // another file lies between
}

TEST_F(NetworkYears, ReplaceTheListAndLeaveTheNetwork) {
  Load("year\t1990\t<none>\nadd\t1\t2\t3\t4\t0\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  Load("year\t2000\t<none>\nyear\t2005\t<none>\n");
  EXPECT_EQ(YearNumbers(), (std::vector<int>{2000, 2005}));
  EXPECT_TRUE(network.HasData());
  EXPECT_EQ(Loaded(), 0);  // stale, as told
  EXPECT_TRUE(network.LoadTemporalData(2000));
  EXPECT_TRUE(network.HasData());  // nothing was done
}

TEST_F(NetworkYears, OfAFileThatDoesNotOpenAreThrownAndTheListIsEmpty) {
  network = MakeSmallNetwork();
  network.SetDataDefYear(1990, "a.bin");
  std::string const missing = directory.Path("missing.txt");
  try {
    network.LoadTemporalDataDefinition(missing.c_str(), missing.c_str());
    FAIL() << "nothing was thrown";
  } catch (std::string const &text) {
    EXPECT_EQ(text.find("Error: Cannot open file\n"), 0U);
    EXPECT_NE(text.find(missing), std::string::npos);
  }
  EXPECT_TRUE(Years().empty());
  EXPECT_TRUE(network.HasData());
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkYears, OfADirectoryAreThrownToo) {
  network.SetDataDefYear(1990, "a.bin");
  EXPECT_THROW(network.LoadTemporalDataDefinition(directory.Path().c_str(), "base.txt"),
               std::string);
  EXPECT_TRUE(Years().empty());
}

// The reader knows the marker as it is written alone: in other letters it is the name of a file.
TEST_F(NetworkYears, TakeTheMarkerInOtherLettersForAName) {
  Load("year\t1990\t<NONE>\n");
  ASSERT_EQ(Years().size(), 1U);
  EXPECT_EQ(Years()[0].fileName, LibraryPath(directory.Path("<NONE>")));
  EXPECT_FALSE(network.LoadTemporalData(1990));
}

TEST_F(NetworkYears, TakeNamesInEitherFormOfTheMachine) {
  std::string const absolute = WriteNetwork("elsewhere.bin", 8);
  WriteNetwork("near.bin", 7);
  Load("year\t1990\t" + absolute + "\nyear\t1995\t" +
       std::filesystem::path("./near.bin").make_preferred().string() + "\n");
  EXPECT_EQ(Years()[0].fileName, LibraryPath(absolute));
  EXPECT_EQ(Years()[1].fileName, LibraryPath(directory.Path("near.bin")));
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_TRUE(Has({1, 8}, {2, 8}));
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_TRUE(Has({1, 7}, {2, 7}));
}

TEST_F(NetworkYears, CutALineBehind4095Characters) {
  Load("year\t1990\t" + std::string(4095 - 10, 'x') + "year\t1995\t<none>\n");
  EXPECT_EQ(YearNumbers(), (std::vector<int>{1990, 1995}));
}

TEST_F(NetworkYears, CutAtAnyByteAreReadAsFarAsWholeLinesGo) {
  std::string const text = "year\t1990\t<none>\nadd\t1\t2\t3\t4\t0\nyear\t1995\t<none>\n";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SCOPED_TRACE(length);
    Load(text.substr(0, length));
    EXPECT_TRUE(application.boxes.empty());
    EXPECT_EQ(Years().size(), length == text.size() ? 2U : length >= 17 ? 1U : 0U);
  }
}

// ---- Saving ----------------------------------------------------------------------------------------

TEST_F(NetworkYears, AreWrittenWithSixDecimalsAndWithoutIds) {
  network = MakeSmallNetwork();
  network.GetNode(1)->x = 1.23456789;
  network.DeltaAddLink(1990, network.GetLink(1));
  network.DeltaDeleteLink(800, network.GetLink(2));
  EXPECT_EQ(Saved(),
            "year\t800\t<none>\n"
            "del\t3.000000\t4.000000\t5.000000\t6.000000\n"
            "year\t1990\t<none>\n"
            "add\t1.234568\t2.000000\t3.000000\t4.000000\t2\n");
}

TEST_F(NetworkYears, WithNeitherFileNorChangesAreNotWritten) {
  network.SetDataDefYear(1990, "<none>");
  EXPECT_EQ(Saved(), "");
  EXPECT_EQ(Years().size(), 1U);
}

TEST_F(NetworkYears, AreSavedWithCopiesOfTheirFilesBesideThem) {
  std::filesystem::create_directories(directory.Path("elsewhere"));
  std::string const original = WriteNetwork("elsewhere/a.bin", 7);
  network.SetDataDefYear(800, original.c_str());
  network.SetDataDefYear(12345, original.c_str());
  EXPECT_EQ(Saved("net.old.txt"),
            "year\t800\t.\\net.old_0800.bin\nyear\t12345\t.\\net.old_12345.bin\n");
  EXPECT_EQ(directory.Read("net.old_0800.bin"), directory.Read("elsewhere/a.bin"));
  EXPECT_EQ(directory.Read("net.old_12345.bin"), directory.Read("elsewhere/a.bin"));
  EXPECT_EQ(Years()[0].fileName, directory.Path("net.old_0800.bin"));  // the network's own now
}

TEST_F(NetworkYears, OfADefinitionsFileWithoutExtensionHaveTheirCopyNameToo) {
  std::filesystem::create_directories(directory.Path("dir.d"));
  network.SetDataDefYear(1995, WriteNetwork("a.bin", 7).c_str());
  EXPECT_EQ(Saved("dir.d/net"), "year\t1995\t.\\net_1995.bin\n");
  EXPECT_EQ(directory.Read("dir.d/net_1995.bin"), directory.Read("a.bin"));
}

TEST_F(NetworkYears, WhoseFileIsTheCopyCopyNothing) {
  std::string const file = WriteNetwork("net_1995.bin", 7);
  auto const before = std::filesystem::last_write_time(file) - std::chrono::hours(1);
  std::filesystem::last_write_time(file, before);
  network.SetDataDefYear(1995, LibraryPath(file).c_str());
  EXPECT_EQ(Saved("NET.txt"), "year\t1995\t.\\net_1995.bin\n");
  EXPECT_EQ(std::filesystem::last_write_time(file), before);
  std::vector<std::string> files;
  for (auto const &entry : std::filesystem::directory_iterator(directory.Path()))
    files.push_back(entry.path().filename().string());
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{"NET.txt", "net_1995.bin"}));
}

TEST_F(NetworkYears, WhoseFileIsTheCopyByAnotherNameKeepItsBytes) {
  std::string const file = WriteNetwork("net_1995.bin", 7);
  std::string const bytes = directory.Read("net_1995.bin");
  network.SetDataDefYear(1995, directory.Path("./net_1995.bin").c_str());
  Saved("net.txt");
  EXPECT_EQ(directory.Read("net_1995.bin"), bytes);
  EXPECT_EQ(Years()[0].fileName, file);
}

TEST_F(NetworkYears, OverwriteAnOlderCopy) {
  directory.Write("saved_1995.bin", std::string(9999, 'x'));
  std::string const original = WriteNetwork("a.bin", 7);
  network.SetDataDefYear(1995, original.c_str());
  Saved();
  EXPECT_EQ(directory.Read("saved_1995.bin"), directory.Read("a.bin"));
}

TEST_F(NetworkYears, WhoseFileCannotBeCopiedEndTheSaving) {
  std::string const original = WriteNetwork("a.bin", 7);
  network.SetDataDefYear(1990, original.c_str());
  network.SetDataDefYear(1995, directory.Path("missing.bin").c_str());
  network.SetDataDefYear(2000, original.c_str());
  std::string const file = directory.Path("saved.txt");
  EXPECT_FALSE(network.SaveTemporalDataDefinition(file.c_str(), file.c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Binary Network Copy failed");
  EXPECT_NE(application.boxes[0].text.find("saved_1995.bin"), std::string::npos);
  EXPECT_EQ(directory.ReadText("saved.txt"), "year\t1990\t.\\saved_1990.bin\n");
  EXPECT_EQ(Years()[0].fileName, directory.Path("saved_1990.bin"));
  EXPECT_EQ(Years()[1].fileName, directory.Path("missing.bin"));
  EXPECT_EQ(Years()[2].fileName, original);
}

TEST_F(NetworkYears, WhoseFileIsADirectoryCannotBeCopiedEither) {
  network.SetDataDefYear(1990, directory.Path().c_str());
  std::string const file = directory.Path("saved.txt");
  EXPECT_FALSE(network.SaveTemporalDataDefinition(file.c_str(), file.c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Binary Network Copy failed");
  EXPECT_EQ(Years()[0].fileName, directory.Path());
  EXPECT_EQ(directory.Read("saved.txt"), "");
}

TEST_F(NetworkYears, ThatCannotBeWrittenAreTold) {
  network.SetDataDefYear(1990, "a.bin");
  std::string const file = directory.Path("missing/saved.txt");
  EXPECT_FALSE(network.SaveTemporalDataDefinition(file.c_str(), file.c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot create file");
  EXPECT_EQ(Years()[0].fileName, "a.bin");
}

TEST_F(NetworkYears, OfAnyCaseOfTheMarkerHaveNoFileToCopy) {
  network.SetDataDefYear(1990, "<NONE>");
  EXPECT_EQ(Saved(), "");
  network = MakeSmallNetwork();
  network.SetDataDefYear(1990, "<NONE>");
  network.DeltaDeleteLink(1990, network.GetLink(1));
  EXPECT_EQ(Saved(),
            "year\t1990\t<none>\n"
            "del\t1.000000\t2.000000\t3.000000\t4.000000\n");
}

TEST_F(NetworkYears, AreReadBackAsTheyWereSaved) {
  std::string const original = WriteNetwork("a.bin", 7);
  network.SetDataDefYear(1990, original.c_str());
  network.Read(original.c_str());
  network.DeltaDeleteLink(1995, network.GetLink(1));
  std::string const first = Saved();
  std::string const file = directory.Path("saved.txt");
  network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  EXPECT_EQ(YearNumbers(), (std::vector<int>{1990, 1995}));
  EXPECT_EQ(Saved(), first);
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_TRUE(Has({1, 7}, {2, 7}));
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_FALSE(Has({1, 7}, {2, 7}));
}

TEST_F(NetworkYears, LoseAMatchOfMoreThanSixDecimalsWhenTheyAreSaved) {
  AddLinkBetween(network, {1.23456789, 2}, {3, 4}, 2);
  std::string const base = directory.Path("base.bin");
  ASSERT_TRUE(network.Write(base.c_str()));
  network.SetDataDefYear(1990, base.c_str());
  network.DeltaDeleteLink(1995, network.GetLink(1));
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_FALSE(Has({1.23456789, 2}, {3, 4}));
  Saved();
  std::string const file = directory.Path("saved.txt");
  network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  network.Clear(false);
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_TRUE(Has({1.23456789, 2}, {3, 4}));
}

// ---- Editing the list ------------------------------------------------------------------------------

TEST_F(NetworkYears, AreInsertedInOrder) {
  for (int year : {2000, 1990, 2010, 1995}) EXPECT_TRUE(network.SetDataDefYear(year, "x.bin"));
  EXPECT_EQ(YearNumbers(), (std::vector<int>{1990, 1995, 2000, 2010}));
  EXPECT_EQ(Years()[1].fileName, "x.bin");  // as it is given
}

TEST_F(NetworkYears, StartAfreshWhenTheirFileIsSet) {
  network = MakeSmallNetwork();
  network.DeltaAddLink(1990, network.GetLink(1));
  EXPECT_TRUE(network.SetDataDefYear(1990, "x.bin"));
  ASSERT_EQ(Years().size(), 1U);
  EXPECT_EQ(Years()[0].fileName, "x.bin");
  EXPECT_TRUE(Years()[0].deltas.empty());
}

TEST_F(NetworkYears, GetAnEntryForAChangeInSortedPlace) {
  network = MakeSmallNetwork();
  network.SetDataDefYear(2000, "a.bin");
  network.SetDataDefYear(2010, "b.bin");
  network.DeltaDeleteLink(2005, network.GetLink(2));
  EXPECT_EQ(YearNumbers(), (std::vector<int>{2000, 2005, 2010}));
  EXPECT_EQ(Years()[1].fileName, "<none>");
  ASSERT_EQ(Years()[1].deltas.size(), 1U);
  CNetwork::CDelta const &delta = Years()[1].deltas[0];
  EXPECT_FALSE(delta.add);
  EXPECT_EQ(delta.start.x, 3.0);
  EXPECT_EQ(delta.end.y, 6.0);
  EXPECT_EQ(delta.link.type, 2U);
  EXPECT_EQ(delta.link.id, 7U);
  EXPECT_NE(network.FindLink(2, 3), nullptr);  // the network itself does not change
  network.DeltaAddLink(2005, network.GetLink(1));
  EXPECT_EQ(Years()[1].deltas.size(), 2U);
}

TEST_F(NetworkYears, InsertedInFrontOfTheLoadedOneDoNotShiftIt) {
  Load("year\t1990\t<none>\nyear\t2000\t<none>\n");
  ASSERT_TRUE(network.LoadTemporalData(2000));
  network.SetDataDefYear(1995, "<none>");
  EXPECT_EQ(Loaded(), 1);  // stale, as told: it shows 1995 now
  EXPECT_TRUE(network.IsYearLoaded(1995));
  EXPECT_FALSE(network.IsYearLoaded(2000));
}

// ---- Replaying -------------------------------------------------------------------------------------

TEST_F(NetworkYears, AreReplayedForwardAndBackFromAFile) {
  WriteNetwork("a.bin", 7);
  Load(
      "year\t1990\ta.bin\n"
      "year\t1995\t<none>\nadd\t1\t7\t5\t5\t3\ndel\t1\t7\t2\t7\n"
      "year\t2000\t<none>\ndel\t1\t7\t5\t5\n");
  for (int year : {1990, 1995, 2000, 1995, 1990, 2000}) {
    SCOPED_TRACE(year);
    ASSERT_TRUE(network.LoadTemporalData(year));
    EXPECT_TRUE(network.IsYearLoaded(year));
    EXPECT_EQ(Has({1, 7}, {2, 7}), year == 1990);
    EXPECT_EQ(Has({1, 7}, {5, 5}), year == 1995);
  }
  EXPECT_EQ(Access::FileName(network), LibraryPath(directory.Path("a.bin")));
}

TEST_F(NetworkYears, WithAFileCutOffThePast) {
  WriteNetwork("a.bin", 7);
  WriteNetwork("b.bin", 8);
  Load("year\t1990\ta.bin\nadd\t1\t7\t5\t5\t3\nyear\t1995\tb.bin\n");
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_FALSE(Has({1, 7}, {5, 5}));
  EXPECT_TRUE(Has({1, 8}, {2, 8}));
  EXPECT_EQ(Access::FileName(network), LibraryPath(directory.Path("b.bin")));
}

TEST_F(NetworkYears, WithoutAFileInTheFirstEntryStartOnWhatIsThere) {
  Load("year\t1990\t<none>\nadd\t1\t1\t2\t2\t0\nyear\t2000\t<none>\nadd\t3\t3\t4\t4\t0\n");
  ASSERT_TRUE(network.LoadTemporalData(2000));
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_TRUE(Has({3, 3}, {4, 4}));  // the later change stays
  EXPECT_EQ(network.LinkCount(), 3U);
}

TEST_F(NetworkYears, AddingALinkThatIsThereChangesItsTypeAndIdAlone) {
  WriteNetwork("a.bin", 7);
  Load("year\t1990\ta.bin\nadd\t1\t7\t2\t7\t9\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_EQ(network.LinkCount(), 2U);
  EXPECT_EQ(network.GetLink(1)->type, 9U);
  EXPECT_NE(network.GetLink(1)->id, 5U);
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(1)), 1);
}

// A file may list a link at a node where it does not start: what is added there starts there then.
TEST_F(NetworkYears, AddingALinkThatIsThereSetsItsEndsWhateverTheyWere) {
  CNetwork other;
  AddLinkBetween(other, {1, 7}, {2, 7}, 2, 5);
  NodeOf(other, 3, 7);
  other.GetLink(1)->from = 3;
  ASSERT_TRUE(other.Write(directory.Path("a.bin").c_str()));
  Load("year\t1990\ta.bin\nadd\t1\t7\t2\t7\t9\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_EQ(network.LinkCount(), 2U);
  EXPECT_EQ(network.GetLink(1)->from, 1U);
  EXPECT_EQ(network.GetLink(1)->to, 2U);
  EXPECT_EQ(network.GetLink(1)->type, 9U);
}

// Far more changes at one node than a walk for each could look at in the time of a test.
TEST_F(NetworkYears, AddAndDeleteThousandsOfLinksAtOneNode) {
  constexpr int kLinks = 100000;
  std::string text = "year\t1990\t<none>\n";
  for (int i = 1; i <= kLinks; ++i) text += "add\t0\t0\t" + std::to_string(i) + "\t1\t2\n";
  text += "year\t1995\t<none>\n";
  for (int i = 1; i < kLinks; ++i) text += "del\t0\t0\t" + std::to_string(i) + "\t1\n";
  Load(text);
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(1)), kLinks);
  network.Clear(false);
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(1)), 1);
  EXPECT_TRUE(Has({0, 0}, {kLinks, 1}));
}

TEST_F(NetworkYears, AddedLinksAreListedAtBothEnds) {
  Load("year\t1990\t<none>\nadd\t1\t1\t2\t2\t4\nadd\t2\t2\t1\t1\t4\nadd\t1\t1\t1\t1\t4\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_EQ(network.NodeCount(), 3U);
  EXPECT_EQ(network.NodeOutDegree(network.GetNode(1)), 2);
  EXPECT_EQ(network.NodeInDegree(network.GetNode(1)), 2);
  EXPECT_EQ(network.FindLink(1, 2)->type, 4U);
}

TEST_F(NetworkYears, DeletedLinksAreMarkedAndKeepTypeAndId) {
  WriteNetwork("a.bin", 7);
  Load("year\t1990\ta.bin\ndel\t1\t7\t2\t7\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_EQ(network.LinkCount(), 2U);
  EXPECT_TRUE(CNetwork::IsUnused(network.GetLink(1)));
  EXPECT_EQ(network.GetLink(1)->type, 2U);
  EXPECT_EQ(network.GetLink(1)->id, 5U);
  EXPECT_TRUE(CNetwork::IsUnused(network.GetNode(1)));
  EXPECT_NE(network.FindNode(1, 7), nullptr);
}

TEST_F(NetworkYears, DeletingWhatIsNotThereIsSilent) {
  WriteNetwork("a.bin", 7);
  Load(
      "year\t1990\ta.bin\n"
      "del\t2\t7\t1\t7\n"          // the other direction
      "del\t1.0000001\t7\t2\t7\n"  // anything at all beside the place
      "del\t1\t7\t9\t9\n"
      "del\t9\t9\t2\t7\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_TRUE(Has({1, 7}, {2, 7}));
  EXPECT_EQ(network.NodeCount(), 3U);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(NetworkYears, WhoseFileDoesNotReadLeaveNoneLoaded) {
  WriteNetwork("a.bin", 7);
  Load("year\t1990\ta.bin\nyear\t1995\tmissing.bin\nyear\t2000\t<none>\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_FALSE(network.LoadTemporalData(2000));
  EXPECT_EQ(Loaded(), -1);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(Years().size(), 3U);
  EXPECT_TRUE(network.LoadTemporalData(1990));
}

TEST_F(NetworkYears, KeepTheLinkTypeNamesOfTheFirstFile) {
  CNetwork other;
  other.SetLinkTypeName(0, "first");
  ASSERT_TRUE(other.Write(directory.Path("a.bin").c_str()));
  other.SetLinkTypeName(0, "second");
  ASSERT_TRUE(other.Write(directory.Path("b.bin").c_str()));
  Load("year\t1990\ta.bin\nyear\t1995\tb.bin\n");
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_EQ(network.GetLinkTypeName(0), "first");
}

TEST_F(NetworkYears, AreNotNotedByAReadOfTheCallers) {
  std::string const file = WriteNetwork("a.bin", 7);
  Load("year\t1990\t<none>\n");
  ASSERT_TRUE(network.LoadTemporalData(1990));
  ASSERT_TRUE(network.Read(file.c_str()));
  EXPECT_EQ(Loaded(), 0);
}

// Replays of random lists against the same told by FindNode and FindLink alone.
TEST_F(NetworkYears, AreReplayedAsANaiveReplayDoes) {
  CNetwork base;
  for (int i = 0; i < 6; ++i) AddLinkBetween(base, {i, 0}, {i + 1, 0}, 1, 1);
  std::string const file = directory.Path("base.bin");
  ASSERT_TRUE(base.Write(file.c_str()));

  for (unsigned int seed = 1; seed <= 15; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    network.Clear(true);
    for (int year = 0; year < 8; ++year) {
      if (year == 0 || random() % 4 == 0) network.SetDataDefYear(year, file.c_str());
      for (auto n = random() % 20; n > 0; --n) {
        CNetwork scratch;
        auto const draw = [&] { return static_cast<double>(random() % 9); };
        double const y = static_cast<double>(random() % 2);
        Place const from{draw(), y};
        Place const to{draw(), 0};
        auto const type = static_cast<unsigned int>(random() % 5);
        auto const id = static_cast<unsigned int>(random() % 256);
        unsigned long const link = AddLinkBetween(scratch, from, to, type, id);
        CNetwork::CDelta delta{*scratch.GetNode(scratch.GetLink(link)->from),
                               *scratch.GetNode(scratch.GetLink(link)->to), *scratch.GetLink(link),
                               random() % 2 == 0};
        if (Years().back().year != year) network.SetDataDefYear(year, "<none>");
        Years().back().deltas.push_back(delta);
      }
    }
    CNetwork naive;
    for (int step = 0; step < 12; ++step) {
      int const year = static_cast<int>(random() % 8U);
      int const last = Access::YearIndex(network, year);
      bool const stays = last == Loaded();
      ASSERT_TRUE(network.LoadTemporalData(year));
      for (int i = 0; i <= last && !stays; ++i) {
        CNetwork::CTemporalData const &entry = Years()[static_cast<std::size_t>(i)];
        if (entry.fileName != "<none>") naive.Read(entry.fileName.c_str());
        for (CNetwork::CDelta const &delta : entry.deltas) {
          if (delta.add) {
            unsigned long const a = NodeOf(naive, delta.start.x, delta.start.y);
            unsigned long const b = NodeOf(naive, delta.end.x, delta.end.y);
            CNetwork::CLink *link = naive.FindLink(a, b);
            if (link == nullptr) link = naive.GetLink(AddLink(naive, a, b));
            link->type = delta.link.type;
            link->id = delta.link.id;
          } else {
            CNetwork::CNode *const a = naive.FindNode(delta.start.x, delta.start.y);
            CNetwork::CNode *const b = naive.FindNode(delta.end.x, delta.end.y);
            if (a == nullptr || b == nullptr) continue;
            CNetwork::CLink *const link = naive.FindLink(naive.IndexOf(a), naive.IndexOf(b));
            if (link != nullptr) DeleteLink(naive, naive.IndexOf(link));
          }
        }
      }
      ASSERT_TRUE(network.Write(directory.Path("a.bin").c_str()));
      ASSERT_TRUE(naive.Write(directory.Path("b.bin").c_str()));
      ASSERT_EQ(directory.Read("a.bin"), directory.Read("b.bin"));
    }
  }
}

TEST_F(NetworkYears, OfTheFormatPageAreReplayedAndWrittenBackByteForByte) {
  EXPECT_TRUE(StandsInPage("network-years.md", "network-years.txt"));
  std::string const file =
      directory.Write("network-years.txt", BytesOfFile(ExampleFile("network-years.txt")));
  directory.Write("network.bin", BytesOfFile(ExampleFile("network.bin")));
  network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  ASSERT_TRUE(network.LoadTemporalData(1990));
  EXPECT_TRUE(Has({1, 2}, {3, -4}));
  EXPECT_FALSE(Has({3, -4}, {1, 2}));
  ASSERT_TRUE(network.LoadTemporalData(1995));
  EXPECT_TRUE(Has({3, -4}, {1, 2}));
  ASSERT_TRUE(network.LoadTemporalData(2003));
  EXPECT_FALSE(Has({1, 2}, {3, -4}));
  EXPECT_TRUE(Has({1, 2}, {9.5, 2}));
  EXPECT_TRUE(application.boxes.empty());

  std::string expected = BytesOfFile(ExampleFile("network-years.txt"));
  expected.replace(expected.find("network.bin"), 11, "saved_1990.bin");
  EXPECT_EQ(Saved(), expected);
}

}  // namespace
