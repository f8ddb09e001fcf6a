#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/legends/map_legend.h>

#include "tests/support/legend_map.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

// Reaches the room of CMapLegend that nothing in the library calls any more.
struct CMapLegendAccess {
  static void WriteVersion1(CMapLegend &legend, CBaseMap &map, char const *file) {
    legend.WriteVersion1(&map, file);
  }
};

namespace {

using Names = std::vector<std::string>;
using Colors = std::vector<unsigned long>;

// A help directory with a folder "Legends", and a legend that is applied to a map of its own.
class LegendFiles : public testing::Test {
 protected:
  LegendFiles() {
    application.helpFilePath = directory.Path("model.hlp");
    directory.Write("Legends/readme", "");
  }

  void Load(std::string const &content) {
    directory.Write("Legends/a.txt", content);
    legend.SetBaseMapLegend(&map, "a.txt");
  }
  std::string Box(std::size_t i = 0) { return application.boxes.at(i).text; }
  // The default behind an empty or failed categorial file.
  void ExpectCategorialDefault() {
    EXPECT_EQ(map.GetLegendItemCount(), 11);
    EXPECT_EQ(legend.NClasses(), 11);
    EXPECT_EQ(legend.LegendType(), 0);
    EXPECT_EQ(map.GetLegendItemName(0), "<item 0>");
    EXPECT_EQ(map.GetLegendItemName(10), "<item 10>");
    EXPECT_EQ(map.GetLegendItemColor(0), 0UL);
    EXPECT_EQ(map.GetLegendItemColor(10), 0x0A0A0AUL);
  }
  void ExpectDefaultProper() {
    EXPECT_EQ(map.GetLegendItemCount(), 11);
    EXPECT_EQ(legend.LegendType(), 1);
    EXPECT_EQ(legend.StateScale(), 0);
    EXPECT_EQ(legend.StateLabel(), 4);
    EXPECT_EQ(legend.StateOrder(), 0);
    EXPECT_EQ(legend.Decimals(), 2);
    EXPECT_EQ(legend.DisplayMin(), -0.05);
    EXPECT_EQ(legend.DisplayMax(), 1.05);
    EXPECT_EQ(map.GetLegendItemName(0), "0.95 ... 1.05");
    EXPECT_EQ(map.GetLegendItemName(10), "-0.05 ... 0.05");
    EXPECT_EQ(map.GetLegendItemColor(0), 0UL);
    EXPECT_EQ(map.GetLegendItemColor(10), 0xFFFFFFUL);
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  LegendMap map;
  CMapLegend legend;
};

std::string const kIntervals =
    "Version 2\nNClasses 2\nPalette\n255\t000\t000\n000\t255\t000\nStateOrderColor 0\n"
    "LegendType 1\nDecimals 1\nDisplayMin 0\nDisplayMax 2\nStateLabel 3\nlow\nhigh\n"
    "StateOrder 1\nStateScale 2\n0\t1\n1\t2\n";

TEST_F(LegendFiles, NullGivesTheDefaultOfElevenClassesAndWritesNothing) {
  legend.SetBaseMapLegend(&map, nullptr);
  ExpectDefaultProper();
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(legend.GetCellLegendIndex(&map, 1.0F), 0);
}

TEST_F(LegendFiles, MissingFileShowsTheBoxOnceAndIsThenThereWithTheDefault) {
  legend.SetBaseMapLegend(&map, "New.txt");
  ExpectDefaultProper();
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(directory.ReadText("Legends/New.txt").substr(0, 39),
            "Version 2\nNClasses 11\nPalette\n000\t000\t0");

  LegendMap again;
  CMapLegend second;
  second.SetBaseMapLegend(&again, "New.txt");
  EXPECT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(again.m_LegendNames, map.m_LegendNames);
  EXPECT_EQ(again.m_LegendColors, map.m_LegendColors);
}

TEST_F(LegendFiles, MissingFolderShowsBothBoxesAndStillGivesTheDefault) {
  legend.SetBaseMapLegend(&map, "Nowhere\\New.txt");
  ExpectDefaultProper();
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(application.boxes[1].title, "Error: Cannot create file");
}

TEST_F(LegendFiles, NameMayHoldASubfolder) {
  directory.Write("Legends/Sub/b.txt", kIntervals);
  legend.SetBaseMapLegend(&map, "Sub\\b.txt");
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
}

TEST_F(LegendFiles, EmptyFileGivesElevenCategorialClassesAndIsNotWritten) {
  Load("");
  ExpectCategorialDefault();
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(directory.ReadText("Legends/a.txt"), "");
}

TEST_F(LegendFiles, EmptyLinesAreSkipped) {
  Load("\n\n\t0\t1\t2\t3\ta\n\n\t1\t4\t5\t6\tb\n\n");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
}

TEST_F(LegendFiles, TwoWholeNumberValueLinesAreCategorial) {
  Load("\t0\t1\t2\t3\tmeadow\n\t1\t4\t5\t6\twood\n");
  EXPECT_EQ(legend.LegendType(), 0);
  EXPECT_EQ(legend.StateLabel(), 3);
  EXPECT_EQ(legend.StateScale(), 0);
  EXPECT_EQ(legend.StateOrder(), 1);
  EXPECT_EQ(legend.Decimals(), 0);
  EXPECT_EQ(legend.DisplayMin(), 0.0);
  EXPECT_EQ(legend.DisplayMax(), 1.0);
  EXPECT_EQ(map.m_LegendNames, (Names{"meadow", "wood"}));
  EXPECT_EQ(map.m_LegendColors, (Colors{0x030201, 0x060504}));
  EXPECT_EQ(legend.NClasses(), 2);
}

TEST_F(LegendFiles, ValueLineWithAFractionMakesTheLegendNumeric) {
  Load("\t0\t1\t2\t3\ta\n\t1.5\t4\t5\t6\tb\n");
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.Lo(0), -1e37F);
  EXPECT_EQ(legend.Hi(0), 0.0F);
  EXPECT_EQ(legend.Hi(1), 1.5F);
}

TEST_F(LegendFiles, IntervalLinesGiveTheRangeOfTheirMiddles) {
  Load("0\t1\t1\t2\t3\ta\n1\t2\t4\t5\t6\tb\n2\t3\t7\t8\t9\tc\n");
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.StateLabel(), 3);
  EXPECT_EQ(legend.StateOrder(), 1);
  EXPECT_EQ(legend.StateOrderColor(), 0);
  // The middles run from 0.5 to 2.5; half a step of 2 / 3 on either side.
  EXPECT_DOUBLE_EQ(legend.DisplayMin(), 0.5 - 1.0 / 3);
  EXPECT_DOUBLE_EQ(legend.DisplayMax(), 2.5 + 1.0 / 3);
  // Half of the step between classes, 0.666667, has six digits behind the point.
  EXPECT_EQ(legend.Decimals(), 6);
}

TEST_F(LegendFiles, OpenIntervalsDoNotCountForTheRange) {
  Load("-1e37\t1\t1\t2\t3\ta\n1\t2\t4\t5\t6\tb\n2\t1e37\t7\t8\t9\tc\n");
  EXPECT_DOUBLE_EQ(legend.DisplayMin(), 1.5);
  EXPECT_DOUBLE_EQ(legend.DisplayMax(), 1.5);
  Load("-1e37\t1\t1\t2\t3\ta\n2\t1e37\t7\t8\t9\tc\n");
  EXPECT_EQ(legend.DisplayMin(), 0.0);
  EXPECT_EQ(legend.DisplayMax(), 1.0);
}

TEST_F(LegendFiles, FallingIntervalsHaveOrderZero) {
  Load("1\t2\t4\t5\t6\tb\n0\t1\t1\t2\t3\ta\n");
  EXPECT_EQ(legend.StateOrder(), 0);
}

TEST_F(LegendFiles, OneIntervalLineIsReplacedByElevenRegularClassesThatKeepItsName) {
  Load("3\t4\t1\t2\t3\tmine\n");
  EXPECT_EQ(map.GetLegendItemCount(), 11);
  EXPECT_EQ(legend.NClasses(), 11);
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.StateScale(), 0);
  EXPECT_EQ(legend.StateLabel(), 3);
  EXPECT_EQ(legend.DisplayMin(), -0.05);
  EXPECT_EQ(legend.DisplayMax(), 1.05);
  EXPECT_EQ(map.GetLegendItemName(0), "mine");
  EXPECT_EQ(map.GetLegendItemName(1), "<item 1>");
  EXPECT_EQ(map.GetLegendItemName(10), "<item 10>");
  EXPECT_EQ(map.GetLegendItemColor(0), 0UL);
  EXPECT_EQ(map.GetLegendItemColor(10), 0xFFFFFFUL);
}

TEST_F(LegendFiles, ScaleLineGivesTheDefaultProperWhateverItsNumbersSay) {
  Load("L 100 200 5 1 2 3\n\t0\t1\t2\t3\ta\n\t1\t1\t2\t3\tb\n");
  ExpectDefaultProper();
  EXPECT_TRUE(application.boxes.empty());
  Load("l\t-7\t7\t9\t255\t255\t255\n");
  ExpectDefaultProper();
}

TEST_F(LegendFiles, ScaleLineBehindIntervalsEndsTheFileAndErasesTheColours) {
  Load("0\t1\t1\t2\t3\ta\n1\t2\t4\t5\t6\tb\nL 0 9 2 0 0 0\n2\t3\t1\t1\t1\tc\n");
  EXPECT_EQ(legend.StateScale(), 0);
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.StateOrderColor(), 1);
  EXPECT_EQ(legend.DisplayMin(), 0.0);
  EXPECT_EQ(legend.DisplayMax(), 1.0);
  EXPECT_EQ(map.GetLegendItemCount(), 2);
  EXPECT_TRUE(map.m_LegendColors.empty());
  EXPECT_EQ(legend.GetCellColor(&map, 0.2F), 0UL);
}

TEST_F(LegendFiles, BadVersionOneLineNamesTheFailingFieldAndEndsTheReading) {
  Load("\t0\t1\t2\t3\ta\n\t1\t4\t5\t6\tb\n\t2\t7\tgreen\t9\tc\n\t3\t1\t1\t1\td\n");
  ASSERT_EQ(application.boxes.size(), 1U);
  std::string const path = "Legends\\a.txt";
  EXPECT_NE(Box().find("legend "), std::string::npos);
  EXPECT_NE(Box().find(path + " contains bad char at column 3:\n'\t2\t7\tgreen\t9\tc'"),
            std::string::npos);
  EXPECT_EQ(application.boxes[0].title, "Quillaven");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
}

TEST_F(LegendFiles, ColumnOfABadLineCountsTheFieldsOfItsForm) {
  struct Row {
    char const *line;
    char column;
  };
  for (Row const &row : {Row{"word", '1'}, Row{"0 word", '2'}, Row{"0 1 2 3", '5'},
                         Row{"0 1 2 3 4", '6'}, Row{"0 1 2 3 4 \\name", '6'}, Row{"\tx", '1'},
                         Row{"\t0 1 2 3", '5'}, Row{"L 1 2 x", '3'}, Row{"l", '1'}}) {
    application.boxes.clear();
    Load(std::string(row.line) + "\n");
    ASSERT_EQ(application.boxes.size(), 1U) << row.line;
    EXPECT_NE(Box().find(std::string("at column ") + row.column + ":"), std::string::npos)
        << row.line << " gave " << Box();
  }
}

TEST_F(LegendFiles, VersionOneIsNoHeaderAndFailsAsALine) {
  Load("Version 1\n\t0\t1\t2\t3\ta\n");
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_NE(Box().find("contains bad char at column 1:\n'Version 1'"), std::string::npos);
  ExpectCategorialDefault();
}

TEST_F(LegendFiles, NameEndsAtTheFirstBackslashAndKeepsItsTrailingBlanks) {
  Load("\t0\t1\t2\t3\tRivers\\lakes\n\t1\t1\t2\t3\t   big  wood  \n");
  EXPECT_EQ(map.m_LegendNames, (Names{"Rivers", "big  wood  "}));
}

TEST_F(LegendFiles, ColoursKeepTheLowBytesOfTheirNumbers) {
  Load("\t0\t256\t257\t-1\ta\n\t1\t1\t2\t3\tb\n");
  EXPECT_EQ(map.m_LegendColors[0], 0xFF0100UL);
}

TEST_F(LegendFiles, CarriageReturnsAreDropped) {
  std::string crlf;
  for (char c : kIntervals) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  Load(crlf);
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
  EXPECT_EQ(legend.PaletteFile(), "");
}

TEST_F(LegendFiles, LineOfMoreThan511CharactersArrivesAsTwo) {
  std::string const name(600, 'n');
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\nLegendType 0\n" + name +
       "\n");
  EXPECT_EQ(map.m_LegendNames, (Names{name.substr(0, 511), name.substr(511)}));
}

TEST_F(LegendFiles, LineOfExactly511CharactersIsOne) {
  std::string const name(511, 'n');
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\nLegendType 0\n" + name +
       "\nb\n");
  EXPECT_EQ(map.m_LegendNames, (Names{name, "b"}));
}

TEST_F(LegendFiles, LineOf511CharactersMayEndWithACarriageReturn) {
  std::string const name(511, 'n');
  Load(
      "Version 2\r\nNClasses 2\r\nPalette\r\n1 2 3\r\n4 5 6\r\nStateOrderColor 0\r\n"
      "LegendType 0\r\n" +
      name + "\r\nb\r\n");
  EXPECT_EQ(map.m_LegendNames, (Names{name, "b"}));
}

TEST_F(LegendFiles, FolderInPlaceOfAFileIsToldAndGivesTheDefault) {
  directory.Write("Legends/sub/x", "");
  legend.SetBaseMapLegend(&map, "sub");
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(application.boxes[1].title, "Error: Cannot create file");
  ExpectDefaultProper();
}

TEST_F(LegendFiles, MissingFileBehindACategorialLegendGivesTheCategorialDefault) {
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\nLegendType 0\na\nb\n");
  legend.SetBaseMapLegend(&map, "new.txt");
  ExpectCategorialDefault();
  EXPECT_NE(directory.ReadText("Legends/new.txt").find("LegendType 0\n"), std::string::npos);
}

TEST_F(LegendFiles, TypeOtherThanOneGoesOnWithItsNames) {
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\nLegendType 7\na\nb\n");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(legend.LegendType(), 7);
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
}

TEST_F(LegendFiles, PaletteLineIsKnownByItsFirstSevenCharacters) {
  Load("Version 2\nNClasses 2\nPalettes x\nStateOrderColor 0\nLegendType 0\na\nb\n");
  EXPECT_EQ(legend.PaletteFile(), "s x");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
}

TEST_F(LegendFiles, KeywordsAreMatchedWithCaseAtTheStartOfTheLine) {
  Load("version 2\nNClasses 1\n");
  EXPECT_NE(Box().find("contains bad char at column 1:\n'version 2'"), std::string::npos);
  Load(" Version 2\nNClasses 1\n");
  Load("Version 2\nnclasses 1\n");
  ASSERT_EQ(application.boxes.size(), 3U);
  EXPECT_EQ(Box(2), "version 2 Legend: 'NClasses <num>' expected instead of 'nclasses 1'");
}

TEST_F(LegendFiles, NumericFileThatEndsInItsNamesHasEmptyOnesAndMissesTheOrder) {
  Load(kIntervals.substr(0, kIntervals.find("high")));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(Box(), "version 2 Legend: 'StateOrder <num>' expected instead of ''");
}

TEST_F(LegendFiles, VersionTwoBehindLinesOfVersionOneMayStillFail) {
  Load("0 1 1 2 3 a\n1 2 1 2 3 b\nVersion 2\nbad\n");
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(Box(), "version 2 Legend: 'NClasses <num>' expected instead of 'bad'");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));  // what was read before is made complete
  EXPECT_EQ(legend.NClasses(), 2);
}

TEST_F(LegendFiles, VersionTwoNumericFileIsReadWhole) {
  Load(kIntervals);
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(legend.NClasses(), 2);
  EXPECT_EQ(legend.LegendType(), 1);
  EXPECT_EQ(legend.Decimals(), 1);
  EXPECT_EQ(legend.DisplayMin(), 0.0);
  EXPECT_EQ(legend.DisplayMax(), 2.0);
  EXPECT_EQ(legend.StateLabel(), 3);
  EXPECT_EQ(legend.StateOrder(), 1);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.Hi(0), 1.0F);
  EXPECT_EQ(legend.Hi(1), 2.0F);
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
  EXPECT_EQ(map.m_LegendColors, (Colors{0x0000FF, 0x00FF00}));
}

TEST_F(LegendFiles, KeywordsNeedNoBlankBeforeTheirNumber) {
  Load("Version2\nNClasses2\nPalette\n1 2 3\n4 5 6\nStateOrderColor0\nLegendType0\na\nb\n");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
}

TEST_F(LegendFiles, CategorialFileThatEndsEarlyNumbersTheMissingNames) {
  Load("Version 2\nNClasses 3\nPalette\n1 2 3\n4 5 6\n7 8 9\nStateOrderColor 0\nLegendType 0\na\n");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "item 1", "item 2"}));
}

TEST_F(LegendFiles, EmptyNameLineIsAnEmptyName) {
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\nLegendType 0\n\nb\n");
  EXPECT_EQ(map.m_LegendNames, (Names{"", "b"}));
}

TEST_F(LegendFiles, WhatStandsBehindTheLastLineIsIgnored) {
  Load(kIntervals + "word\nVersion 9\n");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(map.GetLegendItemCount(), 2);
}

TEST_F(LegendFiles, CategorialFileLeavesTheNumericFieldsButForTheScale) {
  legend.Decimals(7);
  legend.DisplayMax(99);
  legend.StateLabel(1);
  legend.StateOrder(5);
  Load("Version 2\nNClasses 1\nPalette\n1 2 3\nStateOrderColor 1\nLegendType 0\na\n");
  EXPECT_EQ(legend.Decimals(), 7);
  EXPECT_EQ(legend.DisplayMax(), 99);
  EXPECT_EQ(legend.StateLabel(), 1);
  EXPECT_EQ(legend.StateOrder(), 5);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.StateOrderColor(), 1);
}

TEST_F(LegendFiles, EachVersionTwoLineThatIsNotAsExpectedHasItsMessage) {
  struct Row {
    char const *before;
    char const *message;
  };
  // Each file is cut before a line, in whose place "bad" stands.
  Row const rows[] = {
      {"NClasses", "version 2 Legend: 'NClasses <num>' expected instead of 'bad'"},
      {"Palette", "version 2 Legend: 'Palette [<filename>]' expected instead of 'bad'"},
      {"000\t255", "version 2 Legend: palette entry 1 '<r> <g> <b>' expected instead of 'bad'"},
      {"StateOrderColor", "version 2 Legend: 'StateOrderColor <num>' expected instead of 'bad'"},
      {"LegendType", "version 2 Legend: 'LegendType <num>' expected instead of 'bad'"},
      {"Decimals", "version 2 Legend: 'Decimals <num>' expected instead of 'bad'"},
      {"DisplayMin", "version 2 Legend: 'DisplayMin <num>' expected instead of 'bad'"},
      {"DisplayMax", "version 2 Legend: 'DisplayMax <num>' expected instead of 'bad'"},
      {"StateLabel", "version 2 Legend: 'StateLabel <num>' expected instead of 'bad'"},
      {"StateOrder 1", "version 2 Legend: 'StateOrder <num>' expected instead of 'bad'"},
      {"StateScale", "version 2 Legend: 'StateScale <num>' expected instead of 'bad'"},
      {"1\t2\n", "version 2 Legend: interval 1 '<lo> <hi>' expected instead of 'bad'"},
  };
  for (Row const &row : rows) {
    application.boxes.clear();
    Load(kIntervals.substr(0, kIntervals.find(row.before)) + "bad\n");
    ASSERT_EQ(application.boxes.size(), 1U) << row.before;
    EXPECT_EQ(Box(), row.message);
    EXPECT_EQ(map.GetLegendItemCount(), 11) << row.before;
  }
}

TEST_F(LegendFiles, MissingTypeLineGivesElevenCategorialClasses) {
  Load("Version 2\nNClasses 2\nPalette\n1 2 3\n4 5 6\nStateOrderColor 0\n");
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(Box(), "version 2 Legend: 'LegendType <num>' expected instead of ''");
  ExpectCategorialDefault();
}

TEST_F(LegendFiles, UnknownVersionAloneGivesNoClassesAndNoError) {
  Load("Version 3\n");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(map.GetLegendItemCount(), 0);
  EXPECT_TRUE(map.m_LegendNames.empty());
  EXPECT_TRUE(map.m_LegendColors.empty());
}

TEST_F(LegendFiles, LineBehindAnUnknownVersionIsOneOfVersionOne) {
  Load("Version 3\n\t0\t1\t2\t3\ta\n\t1\t1\t2\t3\tb\n");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b"}));
  Load("Version 3\n" + kIntervals);
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
}

TEST_F(LegendFiles, PaletteNameIsTheRestOfItsLine) {
  Load("Version 2\nNClasses 2\nPalette \t My Relief.smp\nStateOrderColor 0\nLegendType 0\na\nb\n");
  EXPECT_EQ(legend.PaletteFile(), "My Relief.smp");
  EXPECT_EQ(map.m_LegendColors, (Colors{0x000000, 0x010101}));  // there is no such palette
  EXPECT_EQ(application.boxes.size(), 1U);
}

TEST_F(LegendFiles, LabelThatIsNoneThrowsThroughTheLoad) {
  try {
    Load(
        "Version 2\nNClasses 1\nPalette\n1 2 3\nStateOrderColor 0\nLegendType 1\nDecimals 0\n"
        "DisplayMin 0\nDisplayMax 1\nStateLabel 9\nStateOrder 0\nStateScale 0\n");
    FAIL() << "nothing was thrown";
  } catch (std::string const &text) {
    EXPECT_EQ(text, "logic error in CMapLegend::GenerateNameItem");
  }
}

TEST_F(LegendFiles, AbsurdClassCountIsAsUnreadableAsAWord) {
  Load("Version 2\nNClasses 2000000000\nPalette x\nStateOrderColor 0\nLegendType 0\n");
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(Box(), "version 2 Legend: 'NClasses <num>' expected instead of 'NClasses 2000000000'");
  ExpectCategorialDefault();
}

TEST_F(LegendFiles, NegativeClassCountGivesNoClasses) {
  Load("Version 2\nNClasses -5\nPalette\nStateOrderColor 0\nLegendType 0\n");
  EXPECT_EQ(map.GetLegendItemCount(), 0);
  EXPECT_TRUE(map.m_LegendNames.empty());
}

TEST_F(LegendFiles, BinaryFileEndsInABoxAndTheDefault) {
  Load(std::string("\x01\x00\x02\xFF\xFE\x80", 6) + "\n" + std::string(2000, '\xFF'));
  EXPECT_EQ(application.boxes.size(), 1U);
  ExpectCategorialDefault();
}

TEST_F(LegendFiles, FileCutAtAnyByteLeavesAUsableLegend) {
  for (std::size_t length = 0; length <= kIntervals.size(); ++length) {
    SCOPED_TRACE(length);
    application.boxes.clear();
    Load(kIntervals.substr(0, length));
    EXPECT_LE(application.boxes.size(), 1U);
    ASSERT_GE(map.GetLegendItemCount(), 0);
    ASSERT_EQ(map.m_LegendNames.size(), static_cast<std::size_t>(legend.NClasses()));
    for (float value : {-1.0F, 0.5F, 99.0F}) legend.GetCellColor(&map, value);
  }
}

TEST_F(LegendFiles, LoadingReplacesTheItemsWholesale) {
  map.AddLegendItem("old", 1);
  Load(kIntervals);
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
  Load("\t0\t1\t2\t3\ta\n\t1\t1\t2\t3\tb\n\t2\t1\t2\t3\tc\n");
  EXPECT_EQ(map.m_LegendNames, (Names{"a", "b", "c"}));
}

TEST_F(LegendFiles, WrittenNumericLegendHasItsExactBytes) {
  Load(kIntervals);
  legend.Write(&map, "out.txt");
  EXPECT_EQ(directory.ReadText("Legends/out.txt"), kIntervals);
}

TEST_F(LegendFiles, WrittenCategorialLegendHasEveryNameOfTheList) {
  Names names{"meadow", "wood"};
  Colors colors{0x030201, 0xFF0A00};
  legend.SetBaseMapLegend(&map, 1, 0, names, colors);
  map.m_LegendNames.emplace_back("one name more");
  legend.Write(&map, "out.txt");
  EXPECT_EQ(directory.ReadText("Legends/out.txt"),
            "Version 2\nNClasses 2\nPalette\n001\t002\t003\n000\t010\t255\nStateOrderColor 1\n"
            "LegendType 0\nmeadow\nwood\none name more\n");
}

TEST_F(LegendFiles, PaletteFileIsWrittenInPlaceOfTheColours) {
  legend.SetBaseMapLegend(&map, nullptr);
  legend.PaletteFile("Relief.smp");
  legend.Write(&map, "out.txt");
  EXPECT_EQ(directory.ReadText("Legends/out.txt"),
            "Version 2\nNClasses 11\nPalette Relief.smp\nStateOrderColor 0\nLegendType 1\n"
            "Decimals 2\nDisplayMin -0.05\nDisplayMax 1.05\nStateLabel 4\nStateOrder 0\n"
            "StateScale 0\n");
}

TEST_F(LegendFiles, EveryTypeButZeroIsWrittenAsNumeric) {
  legend.SetBaseMapLegend(&map, nullptr);
  legend.LegendType(7);
  legend.Write(&map, "out.txt");
  EXPECT_NE(directory.ReadText("Legends/out.txt").find("LegendType 7\nDecimals 2\n"),
            std::string::npos);
}

TEST_F(LegendFiles, FileThatCannotBeCreatedIsToldInABox) {
  legend.SetBaseMapLegend(&map, nullptr);
  legend.Write(&map, "Nowhere\\out.txt");
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot create file");
}

TEST_F(LegendFiles, LongNameIsCutToALineAndDoesNoHarm) {
  Names names{std::string(5000, 'x'), "b"};
  Colors colors{1, 2};
  legend.SetBaseMapLegend(&map, 0, 0, names, colors);
  legend.Write(&map, "out.txt");
  EXPECT_NE(directory.ReadText("Legends/out.txt").find(std::string(511, 'x')), std::string::npos);
  EXPECT_EQ(directory.ReadText("Legends/out.txt").find(std::string(512, 'x')), std::string::npos);
}

TEST_F(LegendFiles, LegendMadeByTheCallerIsAppliedAndLeavesTheOtherFields) {
  Load(kIntervals);
  Names names{"a", "b", "c"};
  Colors colors{7, 8, 9, 10};
  legend.SetBaseMapLegend(&map, 1, 0, names, colors);
  EXPECT_EQ(legend.NClasses(), 3);
  EXPECT_EQ(legend.StateOrderColor(), 1);
  EXPECT_EQ(legend.LegendType(), 0);
  EXPECT_EQ(legend.StateScale(), 2);
  EXPECT_EQ(legend.DisplayMax(), 2.0);
  EXPECT_EQ(map.m_LegendNames, names);
  EXPECT_EQ(map.m_LegendColors, (Colors{7, 8, 9}));
  legend.LegendType(1);
  EXPECT_EQ(legend.Lo(1), 0.0F);  // the intervals are gone
}

TEST_F(LegendFiles, LegendMayBeMadeOfTheMapsOwnLists) {
  Load(kIntervals);
  legend.SetBaseMapLegend(&map, 0, 0, map.m_LegendNames, map.m_LegendColors);
  EXPECT_EQ(map.m_LegendNames, (Names{"low", "high"}));
  EXPECT_EQ(map.m_LegendColors, (Colors{0x0000FF, 0x00FF00}));
}

TEST_F(LegendFiles, VersionOneWriterHasBothForms) {
  Load(kIntervals);
  CMapLegendAccess::WriteVersion1(legend, map, "one.txt");
  EXPECT_EQ(directory.ReadText("Legends/one.txt"), "0\t1\t255\t0\t0\tlow\n1\t2\t0\t255\t0\thigh\n");
  legend.StateScale(0);
  CMapLegendAccess::WriteVersion1(legend, map, "two.txt");
  EXPECT_EQ(directory.ReadText("Legends/two.txt"), "L\t0\t2\t2\t255\t255\t255\n");
}

std::string RandomName(std::mt19937 &random) {
  std::string name;
  for (auto i = random() % 12; i > 0; --i) name += static_cast<char>('a' + random() % 26);
  return name;
}

TEST_F(LegendFiles, WrittenLegendReadsBackWithTheSameClasses) {
  constexpr unsigned kSeed = 77;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 300; ++round) {
    int const classes = static_cast<int>(random() % 20) + 1;
    Names names;
    Colors colors;
    std::vector<float> lo;
    std::vector<float> hi;
    for (int i = 0; i < classes; ++i) {
      names.push_back(RandomName(random));
      colors.push_back(random() & 0xFFFFFF);
      lo.push_back(static_cast<float>(random()) / 1e4F - 1e4F);
      hi.push_back(lo.back() + static_cast<float>(random() % 100) / 7.0F);
    }
    legend.SetBaseMapLegend(&map, static_cast<int>(random() % 2), 0, names, colors);
    if (random() % 2 == 0) {
      legend.Update(lo, hi);
      legend.StateLabel(3);
    }
    legend.Write(&map, "a.txt");

    LegendMap again;
    CMapLegend read;
    read.SetBaseMapLegend(&again, "a.txt");
    ASSERT_TRUE(application.boxes.empty()) << Box();
    ASSERT_EQ(again.m_LegendNames, map.m_LegendNames) << round;
    ASSERT_EQ(again.m_LegendColors, map.m_LegendColors) << round;
    ASSERT_EQ(read.LegendType(), legend.LegendType());
    ASSERT_EQ(read.StateOrderColor(), legend.StateOrderColor());
    for (int i = 0; i < classes; ++i) {
      ASSERT_EQ(TextOfNumber(read.Lo(i)), TextOfNumber(legend.Lo(i))) << round;
      ASSERT_EQ(TextOfNumber(read.Hi(i)), TextOfNumber(legend.Hi(i))) << round;
    }
  }
}

}  // namespace
