#include <string>

#include <gtest/gtest.h>

#include <quillaven/legends/bitmap_legend.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

class BitmapLegend : public testing::Test {
 protected:
  BitmapLegend() { application.helpFilePath = directory.Path("model.hlp"); }

  TemporaryDirectory directory;
  RecordingApplication application;
};

TEST_F(BitmapLegend, NoDataColourStandsBehindTheColoursOfTheLegend) {
  CBitmapLegend legend(true, -9999.0F, 0xABCDEF);
  EXPECT_TRUE(legend.ReadFile(nullptr));
  EXPECT_EQ(legend.GetColorCount(), 12);
  EXPECT_EQ(legend.GetIthColor(11), 0xABCDEFUL);
  EXPECT_EQ(legend.GetIthColor(4711), 0xABCDEFUL);
  EXPECT_EQ(legend.GetColorIndexOfValue(-9999.0F), 11);
  EXPECT_EQ(legend.GetIthColor(10), 0xFFFFFFUL);
  EXPECT_EQ(legend.GetColorIndexOfValue(0.0F), 10);
}

TEST_F(BitmapLegend, WithoutNoDataItsValueIsClassifiedLikeAnyNumber) {
  CBitmapLegend legend(false, -9999.0F, 0xABCDEF);
  EXPECT_TRUE(legend.ReadFile(nullptr));
  EXPECT_EQ(legend.GetColorCount(), 11);
  EXPECT_EQ(legend.GetColorIndexOfValue(-9999.0F), 10);
  EXPECT_EQ(legend.GetIthColor(11), 0UL);
  EXPECT_EQ(legend.GetIthColor(-1), 0UL);
}

TEST_F(BitmapLegend, MissingFileGivesTheDefaultAfterABoxAndIsTrueAllTheSame) {
  directory.Write("Legends/readme", "");
  CBitmapLegend legend(true, -1.0F, 0);
  EXPECT_TRUE(legend.ReadFile("None.txt"));
  EXPECT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(legend.GetColorCount(), 12);
  EXPECT_TRUE(directory.Has("Legends/None.txt"));
}

TEST_F(BitmapLegend, IndexIsCutToEightBits) {
  std::string file = "Version 2\nNClasses 300\nPalette\n";
  for (int i = 0; i < 300; ++i) file += "000\t000\t000\n";
  file += "StateOrderColor 0\nLegendType 0\n";
  directory.Write("Legends/Many.txt", file);
  CBitmapLegend legend(true, -1.0F, 0);
  legend.ReadFile("Many.txt");
  EXPECT_EQ(legend.GetColorCount(), 301);
  EXPECT_EQ(legend.GetColorIndexOfValue(255.0F), 255);
  EXPECT_EQ(legend.GetColorIndexOfValue(256.0F), 0);
  EXPECT_EQ(legend.GetColorIndexOfValue(-1.0F), 300 - 256);
}

TEST_F(BitmapLegend, CopiesAreDeep) {
  CBitmapLegend legend(true, -1.0F, 0x123456);
  legend.ReadFile(nullptr);
  CBitmapLegend const copy(legend);
  CBitmapLegend assigned(false, 0.0F, 0);
  assigned = legend;
  directory.Write("Legends/Two.txt", "\t0\t1\t2\t3\ta\n\t1\t4\t5\t6\tb\n");
  legend.ReadFile("Two.txt");
  EXPECT_EQ(legend.GetColorCount(), 3);
  EXPECT_EQ(legend.GetIthColor(0), 0x030201UL);
  for (CBitmapLegend const &same : {copy, assigned}) {
    EXPECT_EQ(same.GetColorCount(), 12);
    EXPECT_EQ(same.GetIthColor(11), 0x123456UL);
    EXPECT_EQ(same.GetColorIndexOfValue(-1.0F), 11);
  }
}

}  // namespace
