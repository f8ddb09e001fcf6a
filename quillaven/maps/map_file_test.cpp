#include <cstdint>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/archive.h>
#include <quillaven/raster/raster_operations.h>

#include "tests/support/allocation_count.h"
#include "tests/support/memory_file.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string const kFloatOnes = [] {
  std::string const one = Bytes(0, 0, 0x80, 0x3F);
  return Bytes(2, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 'a', 1, 0, 0xFF, 0, 0, 0) + one + one +
         one + one;
}();

std::string Number(std::int32_t value) {
  auto const bits = static_cast<std::uint32_t>(value);
  return Bytes(bits & 0xFF, bits >> 8 & 0xFF, bits >> 16 & 0xFF, bits >> 24);
}

// Sizes and an empty legend.
std::string Head(std::int32_t rows, std::int32_t cols) {
  return Number(rows) + Number(cols) + Number(0) + Bytes(0, 0, 0, 0);
}

std::string Store(CBaseMap &map) {
  MemoryFile file;
  CArchive archive(&file, CArchive::store);
  map.Serialize(archive);
  archive.Close();
  return file.content;
}

void Load(CBaseMap &map, std::string const &bytes) {
  MemoryFile file(bytes);
  CArchive archive(&file, CArchive::load);
  map.Serialize(archive);
}

int CauseOfLoading(CBaseMap &map, std::string const &bytes) {
  try {
    Load(map, bytes);
  } catch (CArchiveException const &reason) {
    return reason.m_cause;
  }
  return CArchiveException::none;
}

class MapFile : public testing::Test {
 protected:
  MapFile() {
    floatMap.Attach("a", "A", &floats, nullptr, false);
    shortMap.Attach("a", "A", &shorts, nullptr);
    byteMap.Attach("a", "A", &bytes, nullptr);
    for (CBaseMap *map : {static_cast<CBaseMap *>(&floatMap), static_cast<CBaseMap *>(&shortMap),
                          static_cast<CBaseMap *>(&byteMap)})
      map->ClearLegend();
  }
  ~MapFile() override {
    DefaultFineResolution(1);
    DefaultResolutionMap(nullptr);
  }

  // Stores with the sizes that the raster has now, as an application brings them up to date.
  template <class Map>
  static std::string StoreAsItIs(Map &map) {
    map.m_nRows = map.NRows();
    map.m_nCols = map.NCols();
    return Store(map);
  }

  RecordingApplication application;
  CMultiScaleFloatMatrix floats;
  CMultiScaleShortMatrix shorts;
  CMultiScaleByteMatrix bytes;
  CFloatMatrixBaseMap floatMap;
  CShortMatrixBaseMap shortMap;
  CByteMatrixBaseMap byteMap;
};

TEST_F(MapFile, IsWrittenByteForByte) {
  floats.Redim(2, 2, 1);
  AssignMultiScaleFloatMatrix(floats, 1);
  floatMap.AddLegendItem("a", 255);
  EXPECT_EQ(StoreAsItIs(floatMap), kFloatOnes);
  EXPECT_EQ(kFloatOnes.size(), 38U);
}

TEST_F(MapFile, HasTwoBytesForAShortAndOneForAByte) {
  shorts.Redim(1, 2, 1);
  shorts.At(0, 0) = -2;
  shorts.At(0, 1) = 0x1234;
  EXPECT_EQ(StoreAsItIs(shortMap), Head(1, 2) + Bytes(0xFE, 0xFF, 0x34, 0x12));
  bytes.Redim(1, 2, 1);
  bytes.At(0, 0) = 7;
  bytes.At(0, 1) = 200;
  EXPECT_EQ(StoreAsItIs(byteMap), Head(1, 2) + Bytes(7, 200));
}

TEST_F(MapFile, GivesBackSizesLegendAndCells) {
  Load(floatMap, kFloatOnes);
  EXPECT_EQ(floatMap.m_nRows, 2);
  EXPECT_EQ(floatMap.m_nCols, 2);
  EXPECT_EQ(floatMap.GetLegendItemCount(), 1);
  EXPECT_EQ(floatMap.GetLegendItemName(0), "a");
  EXPECT_EQ(floatMap.GetLegendItemColor(0), 255UL);
  for (int cell = 0; cell < 4; ++cell) EXPECT_EQ(floats.At(cell / 2, cell % 2), 1.0F);
}

TEST_F(MapFile, OfNoRowsIsSizesAndLegendAlone) {
  floats.Redim(0, 5, 1);
  std::string const stored = StoreAsItIs(floatMap);
  EXPECT_EQ(stored, Head(0, 5));
  floats.Redim(3, 3, 1);
  Load(floatMap, stored);
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floats.NCols(), 5);
}

TEST_F(MapFile, LegendWithoutItemsIsTwoCountsOfZero) {
  floats.Redim(0, 0, 1);
  EXPECT_EQ(StoreAsItIs(floatMap).substr(12), Bytes(0, 0, 0, 0));
}

TEST_F(MapFile, NameOf254BytesHasALengthOfOneByteAndOneOf255HasThree) {
  floats.Redim(0, 0, 1);
  floatMap.AddLegendItem(std::string(254, 'x'), 1);
  EXPECT_EQ(StoreAsItIs(floatMap).substr(14, 2), Bytes(0xFE, 'x'));
  floatMap.ClearLegend();
  floatMap.AddLegendItem(std::string(255, 'x'), 1);
  std::string const stored = StoreAsItIs(floatMap);
  EXPECT_EQ(stored.substr(14, 4), Bytes(0xFF, 0xFF, 0, 'x'));
  Load(floatMap, stored);
  EXPECT_EQ(floatMap.GetLegendItemName(0), std::string(255, 'x'));
}

TEST_F(MapFile, NameIsCutAtItsFirstZeroByte) {
  floats.Redim(0, 0, 1);
  floatMap.AddLegendItem(std::string("ab\0cd", 5), 1);
  EXPECT_EQ(StoreAsItIs(floatMap).substr(14, 3), Bytes(2, 'a', 'b'));
}

// Only storing cuts a name: what a file of another maker holds is kept until then.
TEST_F(MapFile, NameThatIsLoadedWithAZeroByteKeepsItUntilItIsStored) {
  std::string const file = Number(0) + Number(0) + Number(1) + Bytes(1, 0, 4, 'a', 'b', 0, 'd') +
                           Bytes(1, 0) + Number(7);
  Load(floatMap, file);
  EXPECT_EQ(floatMap.GetLegendItemName(0), std::string("ab\0d", 4));
  EXPECT_EQ(Store(floatMap).substr(14, 5), Bytes(2, 'a', 'b', 1, 0));
}

TEST_F(MapFile, LegendOf65535ItemsComesBack) {
  floats.Redim(0, 0, 1);
  for (int item = 0; item < 65535; ++item)
    floatMap.AddLegendItem(std::to_string(item), static_cast<unsigned long>(item));
  std::string const stored = StoreAsItIs(floatMap);
  EXPECT_EQ(stored.substr(12, 6), Bytes(0xFF, 0xFF, 0xFF, 0xFF, 0, 0));
  floatMap.ClearLegend();
  Load(floatMap, stored);
  EXPECT_EQ(floatMap.GetLegendItemCount(), 65535);
  EXPECT_EQ(floatMap.GetLegendItemName(65534), "65534");
  EXPECT_EQ(floatMap.GetLegendItemColor(65534), 65534UL);
}

TEST_F(MapFile, ItemCountIsTheOneOfItsThirdField) {
  // Arrays of two items behind a count of one: the second is dropped.
  std::string const file = Number(0) + Number(0) + Number(1) + Bytes(2, 0, 1, 'a', 1, 'b') +
                           Bytes(2, 0) + Number(1) + Number(2);
  Load(floatMap, file);
  EXPECT_EQ(floatMap.GetLegendItemCount(), 1);
  EXPECT_EQ(floatMap.m_LegendNames, (std::vector<std::string>{"a"}));
  EXPECT_EQ(floatMap.m_LegendColors, (std::vector<unsigned long>{1}));
}

TEST_F(MapFile, WhoseArraysAreShorterThanItsItemCountIsNoMapFile) {
  std::string const file =
      Number(0) + Number(0) + Number(3) + Bytes(1, 0, 1, 'a') + Bytes(1, 0) + Number(1);
  EXPECT_EQ(CauseOfLoading(floatMap, file), CArchiveException::endOfFile);
}

TEST_F(MapFile, CoarseBlockIsStoredOnceForEachOfItsCells) {
  bytes.Redim(2, 2, 2);
  bytes.At(0, 0) = 5;
  std::string const stored = StoreAsItIs(byteMap);
  EXPECT_EQ(stored, Head(2, 2) + Bytes(5, 5, 5, 5));
  Load(byteMap, stored);
  EXPECT_EQ(bytes.W(), 1);
  for (int cell = 0; cell < 4; ++cell) EXPECT_EQ(bytes.At(cell / 2, cell % 2), 5);
}

TEST_F(MapFile, SizeOfTheFileDoesNotDependOnFineBlocks) {
  bytes.Redim(5, 5, 2);
  AssignMultiScaleByteMatrix(bytes, 1);
  std::size_t const coarse = StoreAsItIs(byteMap).size();
  bytes.FineCell(0, 0, true);
  bytes.FineCell(4, 4, true);
  EXPECT_EQ(StoreAsItIs(byteMap).size(), coarse);
}

TEST_F(MapFile, CoarseBlockKeepsTheLastOfItsCells) {
  DefaultFineResolution(2);
  Load(byteMap, Head(2, 2) + Bytes(1, 2, 3, 4));
  EXPECT_EQ(bytes.W(), 2);
  EXPECT_FALSE(bytes.FineCell(0, 0));
  EXPECT_EQ(bytes.At(0, 0), 4);
}

TEST_F(MapFile, SameResolutionMapGivesEveryFineCellBack) {
  CMultiScaleByteMatrix pattern;
  pattern.Redim(5, 5, 2);
  pattern.FineCell(2, 2, true);
  pattern.FineCell(4, 4, true);
  DefaultFineResolution(2);
  DefaultResolutionMap(&pattern);
  floats.Redim(5, 5, 2);
  for (int row = 0; row < 5; ++row)
    for (int col = 0; col < 5; ++col) floats.At(row, col) = static_cast<float>(row * 10 + col);
  CMultiScaleFloatMatrix const before = floats;
  Load(floatMap, StoreAsItIs(floatMap));
  for (int row = 0; row < 5; ++row)
    for (int col = 0; col < 5; ++col) EXPECT_EQ(floats.At(row, col), before.At(row, col));
}

TEST_F(MapFile, LoadLeavesNoDataLegendRuleAndModifiedWordAlone) {
  floats.SetNoDataValue(true, 5.0F);
  floatMap.m_Legend.NClasses(7);
  floatMap.m_nSelectedItem = 3;
  floatMap.ClearModifiedFlag(~0UL);
  Load(floatMap, kFloatOnes);
  EXPECT_TRUE(floats.HasNoDataValue());
  EXPECT_EQ(floats.NoDataValue(), 5.0F);
  EXPECT_EQ(floatMap.m_Legend.NClasses(), 7);
  EXPECT_EQ(floatMap.m_nSelectedItem, 3);
  EXPECT_EQ(floatMap.GetModifiedFlag(), 0UL);
  EXPECT_TRUE(application.messages.empty());
}

TEST_F(MapFile, StoresTheSizesOfTheBaseThoughTheRasterHasOthers) {
  bytes.Redim(1, 1, 1);
  bytes.At(0, 0) = 9;
  byteMap.m_nRows = 2;
  byteMap.m_nCols = 2;
  EXPECT_EQ(Store(byteMap), Head(2, 2) + Bytes(9, 0, 0, 0));  // 0 off the raster
}

TEST_F(MapFile, BaseMapHasTheLegendAlone) {
  class Plain : public CBaseMap {
   public:
    int GetCellLegendIndex(int /*row*/, int /*col*/) override { return 0; }
  };
  Plain map;
  map.m_nRows = 3;
  map.m_nCols = 4;
  map.AddLegendItem("a", 1);
  std::string const stored = Store(map);
  EXPECT_EQ(stored, Number(3) + Number(4) + Number(1) + Bytes(1, 0, 1, 'a', 1, 0) + Number(1));
  Plain copy;
  Load(copy, stored);
  EXPECT_EQ(copy.m_nRows, 3);
  EXPECT_EQ(copy.GetLegendItemName(0), "a");
}

TEST_F(MapFile, CutAnywhereEndsInEndOfFileAndTheMessageForAnUnexpectedFormat) {
  class Reporting : public CFloatMatrixBaseMap {
   public:
    void Report(CException *exception) { ReportSaveLoadException("a.qmp", exception, 0, 0); }
  };
  Reporting map;
  CMultiScaleFloatMatrix raster;
  map.Attach("a", "A", &raster, nullptr, false);
  for (std::size_t size = 0; size < kFloatOnes.size(); ++size) {
    SCOPED_TRACE(size);
    application.boxes.clear();
    try {
      Load(map, kFloatOnes.substr(0, size));
      FAIL() << "nothing was thrown";
    } catch (CArchiveException &reason) {
      EXPECT_EQ(reason.m_cause, CArchiveException::endOfFile);
      map.Report(&reason);
    }
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].helpId, 61728U);
    map.GetCellColor(0, 0);
    map.GetCellColor(1, 1);
  }
}

TEST_F(MapFile, CutWithinItsCellsKeepsTheCellsBeforeTheCut) {
  EXPECT_EQ(CauseOfLoading(byteMap, Head(2, 3) + Bytes(1, 2, 3, 4, 5)),
            CArchiveException::endOfFile);
  for (int cell = 0; cell < 5; ++cell) EXPECT_EQ(bytes.At(cell / 3, cell % 3), cell + 1);
}

TEST_F(MapFile, ThatAsksForMoreCellsThanItHoldsLeavesAnEmptyUsableRaster) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  floats.Redim(3, 3, 1);
  for (auto const &[rows, cols] :
       {std::pair{kMost, kMost}, {kMost, 1}, {kMost, 0}, {100000, 100000}}) {
    SCOPED_TRACE(rows);
    EXPECT_EQ(CauseOfLoading(floatMap, Head(rows, cols)), CArchiveException::endOfFile);
    EXPECT_EQ(floats.NRows(), 0);
    EXPECT_EQ(floats.NCols(), 0);
    EXPECT_EQ(floatMap.OnMap(0, 0), 0);
    EXPECT_EQ(Store(floatMap), Head(0, 0));
    floats.Redim(2, 2, 1);
    floats.At(1, 1) = 4;
    EXPECT_EQ(floats.At(1, 1), 4.0F);
  }
}

TEST_F(MapFile, WithoutARasterIsNotBelievedEither) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  CByteMatrixBaseMap map;
  EXPECT_EQ(CauseOfLoading(map, Head(kMost, kMost)), CArchiveException::endOfFile);
  EXPECT_EQ(Store(map), Head(0, 0));
}

TEST_F(MapFile, OfNoRowsMayHaveAnyNumberOfColumns) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  for (std::int32_t const cols : {100000000, kMost}) {
    for (int const width : {1, 2}) {
      SCOPED_TRACE(cols);
      DefaultFineResolution(width);
      Load(floatMap, Head(0, cols));
      EXPECT_EQ(floats.NRows(), 0);
      EXPECT_EQ(floats.NCols(), cols);
      EXPECT_EQ(Store(floatMap), Head(0, cols));
    }
  }
}

// Of such a file nothing is asked but its bytes.
TEST_F(MapFile, ThatOnlyReadsIsLoadedAsAnyOther) {
  floatMap.AddLegendItem(std::string(300, 'x'), 1);
  floats.Redim(50, 60, 1);
  AssignMultiScaleFloatMatrix(floats, 2.5F);
  MemoryFile file(StoreAsItIs(floatMap));
  file.onlyReads = true;
  file.most = 1000;
  floats.Redim(1, 1, 1);
  floatMap.ClearLegend();
  CArchive archive(&file, CArchive::load);
  floatMap.Serialize(archive);
  EXPECT_EQ(floats.NRows(), 50);
  EXPECT_EQ(floats.At(49, 59), 2.5F);
  EXPECT_EQ(floatMap.GetLegendItemCount(), 1);
}

// It cannot tell its length, so that nothing speaks for a shape that takes all memory.
TEST_F(MapFile, ThatOnlyReadsIsNotBelievedToHoldVeryManyCells) {
  MemoryFile file(Head(100000, 100000));
  file.onlyReads = true;
  CArchive archive(&file, CArchive::load);
  EXPECT_THROW(floatMap.Serialize(archive), CArchiveException);
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floatMap.OnMap(0, 0), 0);
}

TEST_F(MapFile, NegativeSizesGiveARasterWithoutCells) {
  Load(floatMap, Head(-3, 7));
  EXPECT_EQ(floats.NRows(), -3);
  EXPECT_EQ(Store(floatMap), Head(-3, 7));
  float value = 0;
  EXPECT_FALSE(floats.GetSave(0, 0, value));
}

TEST_F(MapFile, NegativeItemCountIsAnAllocationThatFailsAndEmptiesTheRaster) {
  floats.Redim(3, 3, 1);
  EXPECT_THROW(Load(floatMap, Number(2) + Number(2) + Number(-1) + Bytes(0, 0, 0, 0)),
               std::bad_alloc);
  EXPECT_EQ(floats.NRows(), 0);
  EXPECT_EQ(floatMap.GetLegendItemCount(), 0);
}

// Whatever a load ends in, the number of items is the size of both lists, the sizes are those of the
// raster, and the map can be edited, stored and loaded on.
void ExpectUsable(CFloatMatrixBaseMap &map, CMultiScaleFloatMatrix const &raster) {
  int const items = map.GetLegendItemCount();
  ASSERT_EQ(map.m_LegendNames.size(), static_cast<std::size_t>(items));
  ASSERT_EQ(map.m_LegendColors.size(), static_cast<std::size_t>(items));
  EXPECT_EQ(map.m_nRows, raster.NRows());
  EXPECT_EQ(map.m_nCols, raster.NCols());
  map.AddLegendItem("added", 77);
  EXPECT_EQ(map.GetLegendItemName(items), "added");
  EXPECT_EQ(map.GetLegendItemColor(items), 77UL);
  std::string const stored = Store(map);
  Load(map, stored);
  EXPECT_EQ(map.GetLegendItemCount(), items + 1);
  EXPECT_TRUE(Store(map) == stored);
}

TEST_F(MapFile, FailedLoadLeavesAMapThatCanBeUsedOn) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  std::vector<std::string> files;
  for (std::size_t size = 0; size < kFloatOnes.size(); ++size)
    files.push_back(kFloatOnes.substr(0, size));
  std::string const noItems = Bytes(0, 0, 0, 0);
  for (std::int32_t const items : {kMost, 1, -1, std::numeric_limits<std::int32_t>::min()})
    files.push_back(Number(2) + Number(2) + Number(items) + noItems);
  for (auto const &[rows, cols] : {std::pair{kMost, kMost}, {kMost, 1}, {kMost, 0}, {1, kMost}}) {
    files.push_back(Head(rows, cols));
    files.push_back(Number(rows) + Number(cols) + Number(5) + noItems);
  }
  for (std::string const &file : files) {
    SCOPED_TRACE(testing::PrintToString(file));
    floatMap.ClearLegend();
    floatMap.AddLegendItem("before", 1);
    floats.Redim(3, 3, 1);
    AssignMultiScaleFloatMatrix(floats, 9);
    floatMap.m_nRows = 3;
    floatMap.m_nCols = 3;
    try {
      Load(floatMap, file);
      FAIL() << "nothing was thrown";
    } catch (CArchiveException const &) {
    } catch (std::bad_alloc const &) {
    }
    ExpectUsable(floatMap, floats);
  }
}

TEST_F(MapFile, LoadThatRunsOutOfMemoryAnywhereLeavesAMapThatCanBeUsedOn) {
  std::string const file = Number(2) + Number(2) + Number(2) + Bytes(2, 0, 40) +
                           std::string(40, 'x') + Bytes(1, 'b', 2, 0) + Number(1) + Number(2) +
                           std::string(16, '\0');
  DefaultFineResolution(2);
  bool failed = true;
  for (long n = 1; failed; ++n) {
    SCOPED_TRACE(n);
    CMultiScaleFloatMatrix raster;
    CFloatMatrixBaseMap map;
    map.Attach("a", "A", &raster, nullptr, false);
    map.ClearLegend();
    MemoryFile source(file);
    CArchive archive(&source, CArchive::load);
    failed = false;
    try {
      FailingAllocation const failing(n);
      map.Serialize(archive);
    } catch (std::bad_alloc const &) {
      failed = true;
    }
    ExpectUsable(map, raster);
  }
}

TEST_F(MapFile, WithoutARasterStoresZeroesAndLoadsTheLegendAlone) {
  CByteMatrixBaseMap map;
  map.m_nRows = 1;
  map.m_nCols = 2;
  EXPECT_EQ(Store(map), Head(1, 2) + Bytes(0, 0));
  Load(map, Head(1, 2) + Bytes(0, 0));
  EXPECT_EQ(map.m_nCols, 2);
}

TEST_F(MapFile, WhoseDiskRunsFullEndsInDiskFullAndItsMessage) {
  class Reporting : public CByteMatrixBaseMap {
   public:
    void Report(CException *exception) { ReportSaveLoadException("a.qmp", exception, 1, 0); }
  };
  CMultiScaleByteMatrix raster;
  raster.Redim(100, 100, 1);
  Reporting map;
  map.Attach("a", "A", &raster, nullptr);
  MemoryFile file;
  for (std::size_t room : {0U, 10U, 5000U}) {
    SCOPED_TRACE(room);
    application.boxes.clear();
    file.content.clear();
    file.room = room;
    CArchive archive(&file, CArchive::store);
    try {
      map.Serialize(archive);
      archive.Close();
      FAIL() << "nothing was thrown";
    } catch (CFileException &reason) {
      EXPECT_EQ(reason.m_cause, CFileException::diskFull);
      map.Report(&reason);
    }
    EXPECT_EQ(file.content.size(), room);
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].helpId, 61730U);
  }
}

// The fault comes out as it is from within the sizes, the legend and the cells.
TEST_F(MapFile, WhoseDeviceFailsWhileItIsReadEndsInItsFaultAndItsMessage) {
  class Reporting : public CFloatMatrixBaseMap {
   public:
    void Report(CException *exception) { ReportSaveLoadException("a.qmp", exception, 0, 0); }
  };
  CMultiScaleFloatMatrix raster;
  Reporting map;
  map.Attach("a", "A", &raster, nullptr, false);
  for (std::size_t const sound : {0U, 6U, 15U, 20U, 22U, 30U, 37U}) {
    SCOPED_TRACE(sound);
    application.boxes.clear();
    MemoryFile file(kFloatOnes);
    file.failsAt = sound;
    CArchive archive(&file, CArchive::load);
    try {
      map.Serialize(archive);
      FAIL() << "nothing was thrown";
    } catch (CFileException &reason) {
      EXPECT_EQ(reason.m_cause, CFileException::hardIO);
      map.Report(&reason);
    }
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].helpId, 61733U);
    ExpectUsable(map, raster);
  }
}

TEST_F(MapFile, StoresAndLoadsThroughARealFile) {
  TemporaryDirectory directory;
  floats.Redim(300, 200, 1);
  for (int row = 0; row < 300; ++row)
    for (int col = 0; col < 200; ++col) floats.At(row, col) = static_cast<float>(row * 200 + col);
  floatMap.m_nRows = 300;
  floatMap.m_nCols = 200;
  {
    CFile file(directory.Path("a.qmp").c_str(), CFile::modeWrite | CFile::modeCreate);
    CArchive archive(&file, CArchive::store);
    floatMap.Serialize(archive);
    archive.Close();
  }
  floats.Redim(1, 1, 1);
  CFile file(directory.Path("a.qmp").c_str(), CFile::modeRead);
  CArchive archive(&file, CArchive::load);
  floatMap.Serialize(archive);
  ASSERT_EQ(floats.NRows(), 300);
  for (int row = 0; row < 300; ++row)
    for (int col = 0; col < 200; ++col)
      ASSERT_EQ(floats.At(row, col), static_cast<float>(row * 200 + col));
}

TEST_F(MapFile, AllocatesNothingForEachCell) {
  bytes.Redim(500, 500, 1);
  byteMap.m_nRows = 500;
  byteMap.m_nCols = 500;
  long const before = AllocationCount();
  std::string const stored = Store(byteMap);
  Load(byteMap, stored);
  EXPECT_LT(AllocationCount() - before, 60);  // the file in memory grows by doubling
}

template <class T>
bool RoundTrip(CMatrixBaseMap<T> &map, CMultiScaleMatrix<T> &raster, std::mt19937 &random,
               int width) {
  int const rows = static_cast<int>(random() % 40) + 1;
  int const cols = static_cast<int>(random() % 40) + 1;
  CMultiScaleByteMatrix pattern;
  pattern.Redim(rows, cols, width);
  for (int i = 0; i < 10; ++i)
    pattern.FineCell(static_cast<int>(random() % static_cast<unsigned>(rows)),
                     static_cast<int>(random() % static_cast<unsigned>(cols)), true);
  DefaultFineResolution(width);
  DefaultResolutionMap(&pattern);
  raster.Redim(rows, cols, width);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col)
      raster.At(row, col) = static_cast<T>(static_cast<int>(random() % 60000) - 30000);
  CMultiScaleMatrix<T> const before = raster;
  map.m_nRows = rows;
  map.m_nCols = cols;
  std::string const stored = Store(map);
  Load(map, stored);
  DefaultResolutionMap(nullptr);
  for (int row = 0; row < rows; ++row)
    for (int col = 0; col < cols; ++col)
      if (raster.At(row, col) != before.At(row, col)) return false;
  return Store(map) == stored;
}

TEST_F(MapFile, RandomRastersOfAllTypesComeBackExactlyAtEveryScale) {
  constexpr unsigned kSeed = 33;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int round = 0; round < 60; ++round) {
    int const width = round % 6 + 1;
    SCOPED_TRACE(width);
    EXPECT_TRUE(RoundTrip<float>(floatMap, floats, random, width));
    EXPECT_TRUE(RoundTrip<short>(shortMap, shorts, random, width));
    EXPECT_TRUE(RoundTrip<unsigned char>(byteMap, bytes, random, width));
  }
}

}  // namespace
