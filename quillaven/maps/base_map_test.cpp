#include <cstddef>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <quillaven/maps/base_map.h>
#include <quillaven/platform/exceptions.h>

#include "tests/support/legend_map.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

static_assert(std::is_abstract_v<CBaseMap>, "a map must say the legend item of a cell");

// A map whose cells all have one item, and whose report can be called.
class OneItemMap : public LegendMap {
 public:
  using LegendMap::LegendMap;
  int GetCellLegendIndex(int /*row*/, int /*col*/) override { return item; }
  void Report(CException &exception, int saving, unsigned int defaultMessage) {
    ReportSaveLoadException("maps\\a.map", &exception, saving, defaultMessage);
  }
  int item = 0;
};

TEST(BaseMap, HasItsInitialValues) {
  LegendMap const map;
  EXPECT_EQ(map.m_nRows, 0);
  EXPECT_EQ(map.m_nCols, 0);
  EXPECT_EQ(map.m_nLegendItems, 0);
  EXPECT_EQ(map.m_nSelectedItem, 0);
  EXPECT_TRUE(map.m_bDisplayFlag1);
  EXPECT_TRUE(map.m_bDisplayFlag2);
  EXPECT_FALSE(map.m_bJitter);
  EXPECT_TRUE(map.m_bDisplayFlag4);
  EXPECT_TRUE(map.m_bDisplayFlag5);
  EXPECT_TRUE(map.m_bDisplayFlag6);
  EXPECT_FALSE(map.m_bDisplayFlag7);
  EXPECT_FALSE(map.m_bDisplayFlag8);
  for (unsigned char byte : map.m_Reserved) EXPECT_EQ(byte, 0);
  EXPECT_EQ(map.m_strTitle, "");
  EXPECT_EQ(map.m_strBaseName, "");
  EXPECT_EQ(map.GetModifiedFlag(), 0UL);
  EXPECT_EQ(map.m_SaveFormat, CBaseMap::ftUnknown);
}

TEST(BaseMap, ModifiedBitIsTheOneOfValueTwo) {
  LegendMap map;
  map.SetModifiedFlag(1);
  EXPECT_EQ(map.IsModified(), 0);
  EXPECT_EQ(map.GetModifiedFlag(), 1UL);
  map.SetModifiedFlag(2);
  EXPECT_EQ(map.IsModified(), 2);
  map.SetModifiedFlag(12);
  map.ClearModifiedFlag(2);
  EXPECT_EQ(map.IsModified(), 0);
  EXPECT_EQ(map.GetModifiedFlag(), 13UL);
}

TEST(BaseMap, LegendItemOutOfRangeIsEmptyAndBlack) {
  LegendMap map({"a", "b"}, {1, 2});
  for (int item : {-1, 2, map.GetLegendItemCount()}) {
    EXPECT_EQ(map.GetLegendItemName(item), "");
    EXPECT_EQ(map.GetLegendItemColor(item), 0UL);
  }
  EXPECT_EQ(map.GetLegendItemName(1), "b");
  EXPECT_EQ(map.GetLegendItemColor(1), 2UL);
}

TEST(BaseMap, ClearedLegendBeginsWithItemZeroAgain) {
  LegendMap map({"a", "b"}, {1, 2});
  map.ClearLegend();
  EXPECT_EQ(map.GetLegendItemCount(), 0);
  map.AddLegendItem("c", 3);
  EXPECT_EQ(map.GetLegendItemCount(), 1);
  EXPECT_EQ(map.GetLegendItemName(0), "c");
}

TEST(BaseMap, CellShowsTheColourAndNameOfItsItem) {
  OneItemMap map({"a", "b"}, {1, 2});
  map.item = 1;
  EXPECT_EQ(map.GetCellColor(0, 0), 2UL);
  EXPECT_EQ(map.GetCellString(0, 0), "b");
  map.item = -1;
  EXPECT_EQ(map.GetCellColor(0, 0), 0UL);
  EXPECT_EQ(map.GetCellString(0, 0), "");
}

TEST(BaseMap, OnMapGoesByTheStoredSizes) {
  LegendMap map;
  EXPECT_EQ(map.OnMap(0, 0), 0);
  map.m_nRows = 3;
  map.m_nCols = 4;
  EXPECT_EQ(map.OnMap(0, 0), 1);
  EXPECT_EQ(map.OnMap(2, 3), 1);
  EXPECT_EQ(map.OnMap(3, 0), 0);
  EXPECT_EQ(map.OnMap(0, 4), 0);
  EXPECT_EQ(map.OnMap(-1, 0), 0);
  EXPECT_EQ(map.OnMap(0, -1), 0);
}

TEST(BaseMap, CopyHasEveryFieldOfItsSource) {
  LegendMap map({"a"}, {7});
  map.m_nSelectedItem = 5;
  map.m_bJitter = true;
  map.m_bDisplayFlag1 = false;
  map.m_Reserved[31] = 9;
  map.m_strTitle = "title";
  map.m_strBaseName = "base";
  map.SetModifiedFlag(6);
  map.SetSaveFormat(CBaseMap::ftBinary);
  LegendMap const copy(map);
  LegendMap assigned;
  assigned = map;
  for (LegendMap const *same : {&copy, &static_cast<LegendMap const &>(assigned)}) {
    EXPECT_EQ(same->m_nSelectedItem, 5);
    EXPECT_TRUE(same->m_bJitter);
    EXPECT_FALSE(same->m_bDisplayFlag1);
    EXPECT_EQ(same->m_Reserved[31], 9);
    EXPECT_EQ(same->m_strTitle, "title");
    EXPECT_EQ(same->m_strBaseName, "base");
    EXPECT_EQ(same->GetModifiedFlag(), 6UL);
    EXPECT_EQ(same->m_SaveFormat, CBaseMap::ftBinary);
    EXPECT_EQ(same->GetLegendItemName(0), "a");
  }
}

TEST(BaseMap, OperationsOfOtherKindsOfMapAnswerNothing) {
  LegendMap map;
  unsigned char byte = 1;
  unsigned long number = 2;
  float value = 3;
  EXPECT_FALSE(map.CanShowFeature());
  EXPECT_FALSE(map.ShowFeature(0, 0));
  EXPECT_FALSE(map.CanShowFunction());
  EXPECT_FALSE(map.ShowFunction(0, 0));
  EXPECT_FALSE(map.AllowNumericEditing());
  EXPECT_EQ(map.GetLegendItemSymbol(0), 0);
  EXPECT_EQ(map.UnderlineItem(0), 0);
  EXPECT_EQ(map.GetCellValue(0, 0, byte), 0);
  EXPECT_EQ(map.GetCellValue(0, 0, number), 0);
  EXPECT_EQ(map.GetCellValue(0, 0, value), 0);
  EXPECT_EQ(byte, 1);
  EXPECT_EQ(number, 2UL);
  EXPECT_EQ(value, 3.0F);
  map.SetCellValue(0, 0, byte);
  map.SetCellValue(0, 0, number);
  map.SetCellValue(0, 0, value);
  map.SetCell(0, 0);
  map.ClearCell(0, 0);
  map.FillArea(0, 0);
  map.FineCell(0, 0, false);
  EXPECT_TRUE(map.FineCell(0, 0));
  EXPECT_EQ(map.OnOpenDocument("a"), 0);
  EXPECT_EQ(map.OnReadDocument("a"), 0);
  EXPECT_EQ(map.OnSaveDocument("a"), 0);
  EXPECT_EQ(map.OnFileImport("a", 1), 0);
  EXPECT_EQ(map.OnFileExport("a", 1), 0);
  EXPECT_EQ(map.WriteBitmap("a", 1, CRect(), ""), 0);
  EXPECT_EQ(map.IsModified(), 0);
}

TEST(CBool, IsOneByteAndFalseUntilToldOtherwise) {
  static_assert(sizeof(CBaseMap::CBool) == 1);
  CBaseMap::CBool flag;
  EXPECT_FALSE(flag);
  bool const yes = true;
  static_assert(std::is_same_v<decltype(flag = yes), CBaseMap::CBool const &>);
  static_assert(std::is_same_v<decltype(flag = CBaseMap::CBool(true)), CBaseMap::CBool const &>);
  flag = yes;
  EXPECT_TRUE(flag);
  CBaseMap::CBool const copy(flag);
  EXPECT_TRUE(copy);
}

class TypeOfFile : public testing::Test {
 protected:
  bool Ask(std::string const &bytes) {
    std::string const path = directory.Write("file", bytes);
    type = CBaseMap::ftBinary;
    return CBaseMap::GetTypeOfFile(path.c_str(), type);
  }
  TemporaryDirectory directory;
  CBaseMap::CFileType type = CBaseMap::ftBinary;
};

TEST_F(TypeOfFile, IsUnknownForAFileThatIsMissingOrShorterThan16Bytes) {
  EXPECT_FALSE(CBaseMap::GetTypeOfFile(directory.Path("none").c_str(), type));
  EXPECT_EQ(type, CBaseMap::ftUnknown);
  EXPECT_FALSE(Ask("123456789012345"));
  EXPECT_EQ(type, CBaseMap::ftUnknown);
}

TEST_F(TypeOfFile, IsTextWithTabsAndLineBreaks) {
  EXPECT_TRUE(Ask("a text\twith\r\n tabs and what follows is \x01 not looked at"));
  EXPECT_EQ(type, CBaseMap::ftText);
}

TEST_F(TypeOfFile, OneByteThatIsNoTextDecidesForGood) {
  std::string bytes = "abcdefghijklmnop";
  bytes[9] = '\0';
  EXPECT_TRUE(Ask(bytes));
  EXPECT_EQ(type, CBaseMap::ftBinary);
  for (char odd : {'\x01', '\x1B', '\x7F', '\x80', '\xE4', '\xFF'}) {
    bytes[9] = 'x';
    bytes[0] = odd;
    EXPECT_TRUE(Ask(bytes));
    EXPECT_EQ(type, CBaseMap::ftBinary) << static_cast<int>(odd);
  }
}

class SaveLoadReport : public testing::Test {
 protected:
  // The message number that a fault is told with, 0 if none is told.
  unsigned int Number(CException &&exception, int saving) {
    application.boxes.clear();
    map.Report(exception, saving, 4711);
    if (application.boxes.empty()) return 0;
    EXPECT_EQ(application.boxes[0].type, 48U);
    EXPECT_EQ(application.boxes[0].title, "Quillaven");
    EXPECT_NE(application.boxes[0].text.find("maps\\a.map"), std::string::npos);
    EXPECT_EQ(application.boxes[0].text.find("%1"), std::string::npos);
    return application.boxes[0].helpId;
  }
  RecordingApplication application;
  OneItemMap map;
};

TEST_F(SaveLoadReport, ShowsNothingForWhatTheUserHasBeenTold) {
  EXPECT_EQ(Number(CUserException(), 0), 0U);
}

TEST_F(SaveLoadReport, ChoosesTheMessageOfAnArchiveFault) {
  for (int cause : {3, 5, 6, 7}) EXPECT_EQ(Number(CArchiveException(cause), 0), 61728U) << cause;
  for (int cause : {0, 1, 2, 4, 8}) EXPECT_EQ(Number(CArchiveException(cause), 1), 4711U) << cause;
}

TEST_F(SaveLoadReport, ChoosesTheMessageOfAFileFault) {
  for (int saving : {0, 1}) {
    for (int cause : {2, 3}) EXPECT_EQ(Number(CFileException(cause), saving), 61729U);
    EXPECT_EQ(Number(CFileException(13), saving), 61730U);
    EXPECT_EQ(Number(CFileException(5), saving), saving != 0 ? 61732U : 61731U);
    for (int cause : {1, 4, 6, 8, 9, 10})
      EXPECT_EQ(Number(CFileException(cause), saving), saving != 0 ? 61734U : 61733U) << cause;
    for (int cause : {0, 7, 11, 12, 14, 99})
      EXPECT_EQ(Number(CFileException(cause), saving), 4711U) << cause;
  }
}

TEST_F(SaveLoadReport, LeavesTheNumberForAnyOtherFault) {
  EXPECT_EQ(Number(CException(), 1), 4711U);
}

}  // namespace
