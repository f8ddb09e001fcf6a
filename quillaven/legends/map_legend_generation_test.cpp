#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_palette.h>
#include <quillaven/legends/map_legend.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

using Colors = std::vector<unsigned long>;
using Names = std::vector<std::string>;

// A palette whose entry i is the number i.
Colors Counting(std::size_t size) {
  Colors palette(size);
  for (unsigned long i = 0; i < size; ++i) palette[i] = i;
  return palette;
}

Colors Generated(CMapLegend &legend, Colors palette) {
  Colors colors;
  legend.GenerateColorItem(colors, &palette);
  return colors;
}

Names GeneratedNames(CMapLegend &legend, Names names = {}) {
  legend.GenerateNameItem(names);
  return names;
}

TEST(GenerateColorItem, NumericLegendSpansThePaletteFromFirstToLast) {
  CMapLegend legend;
  legend.NClasses(5);
  EXPECT_EQ(Generated(legend, Counting(256)), (Colors{0, 63, 127, 191, 255}));
  legend.StateOrderColor(1);
  EXPECT_EQ(Generated(legend, Counting(256)), (Colors{255, 192, 128, 64, 0}));
}

TEST(GenerateColorItem, CategorialLegendRepeatsThePalette) {
  CMapLegend legend;
  legend.LegendType(0);
  legend.NClasses(5);
  EXPECT_EQ(Generated(legend, Counting(3)), (Colors{0, 1, 2, 0, 1}));
  legend.StateOrderColor(1);
  EXPECT_EQ(Generated(legend, Counting(3)), (Colors{2, 1, 0, 2, 1}));
}

TEST(GenerateColorItem, LegendTypeOtherThanOneWalksThePaletteAsCategorial) {
  CMapLegend legend;
  legend.LegendType(7);
  legend.NClasses(4);
  EXPECT_EQ(Generated(legend, Counting(3)), (Colors{0, 1, 2, 0}));
}

TEST(GenerateColorItem, SingleNumericClassTakesTheFirstEntry) {
  CMapLegend legend;
  legend.NClasses(1);
  EXPECT_EQ(Generated(legend, Counting(9)), (Colors{0}));
  legend.StateOrderColor(1);  // the order of the colours means nothing to one class
  EXPECT_EQ(Generated(legend, Counting(9)), (Colors{0}));
}

TEST(GenerateColorItem, WithoutAPaletteThereAreGreyStepsAndNoReversal) {
  CMapLegend legend;
  legend.NClasses(2);
  legend.StateOrderColor(1);
  Colors colors{1, 2, 3};
  legend.GenerateColorItem(colors, nullptr);
  EXPECT_EQ(colors, (Colors{0x000000, 0xFFFFFF}));
  EXPECT_EQ(legend.StateOrderColor(), 0);
}

TEST(GenerateColorItem, EmptyPaletteIsNoPalette) {
  CMapLegend legend;
  legend.NClasses(2);
  legend.StateOrderColor(1);
  EXPECT_EQ(Generated(legend, {}), (Colors{0x000000, 0xFFFFFF}));
  EXPECT_EQ(legend.StateOrderColor(), 0);
}

TEST(GenerateColorItem, NoClassesGiveNoColours) {
  CMapLegend legend;
  EXPECT_EQ(Generated(legend, Counting(3)), Colors{});
  legend.NClasses(-4);
  EXPECT_EQ(Generated(legend, Counting(3)), Colors{});
}

TEST(GenerateColorItem, PaletteFileIsReadFromPalettesAndTheArgumentIgnored) {
  TemporaryDirectory directory;
  directory.Write("Palettes/readme", "");
  RecordingApplication application;
  application.helpFilePath = directory.Path("model.hlp");
  Colors red{0x0000FF, 0x0000FE};
  ASSERT_TRUE(WriteIdrisiPalette(directory.Path("Palettes/Red.smp").c_str(), red));
  CMapLegend legend;
  legend.NClasses(2);
  legend.PaletteFile("Red.smp");
  EXPECT_EQ(Generated(legend, Counting(9)), red);
}

TEST(GenerateColorItem, PaletteFileThatIsNotThereGivesGreyAndLosesTheReversalForGood) {
  TemporaryDirectory directory;
  RecordingApplication application;
  application.helpFilePath = directory.Path("model.hlp");
  CMapLegend legend;
  legend.NClasses(2);
  legend.StateOrderColor(1);
  legend.PaletteFile("None.smp");
  EXPECT_EQ(Generated(legend, Counting(9)), (Colors{0x000000, 0xFFFFFF}));
  EXPECT_EQ(legend.StateOrderColor(), 0);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
}

TEST(GenerateColorItem, FileThatIsNoPaletteGivesGrey) {
  TemporaryDirectory directory;
  RecordingApplication application;
  application.helpFilePath = directory.Path("model.hlp");
  directory.Write("Palettes/Bad.smp", "no palette at all, but a text");
  CMapLegend legend;
  legend.NClasses(2);
  legend.PaletteFile("Bad.smp");
  EXPECT_EQ(Generated(legend, Counting(9)), (Colors{0x000000, 0xFFFFFF}));
  ASSERT_EQ(application.boxes.size(), 1U);
}

TEST(GenerateNameItem, RangeLabelsShowBothBounds) {
  CMapLegend legend;
  legend.NClasses(2);
  legend.Decimals(1);
  EXPECT_EQ(GeneratedNames(legend), (Names{"0.5 ... 1.0", "0.0 ... 0.5"}));
}

TEST(GenerateNameItem, WithoutDecimalsThereIsNoPoint) {
  CMapLegend legend;
  legend.NClasses(1);
  legend.Decimals(0);
  EXPECT_EQ(GeneratedNames(legend), (Names{"0 ... 1"}));
  legend.StateLabel(1);
  EXPECT_EQ(GeneratedNames(legend), (Names{"1"}));
}

TEST(GenerateNameItem, LabelShowsLowerBoundUpperBoundOrMiddle) {
  CMapLegend legend;
  legend.NClasses(2);
  legend.DisplayMax(8);
  legend.StateOrder(1);
  legend.StateLabel(0);
  EXPECT_EQ(GeneratedNames(legend), (Names{"0.00", "4.00"}));
  legend.StateLabel(1);
  EXPECT_EQ(GeneratedNames(legend), (Names{"4.00", "8.00"}));
  legend.StateLabel(2);
  EXPECT_EQ(GeneratedNames(legend), (Names{"2.00", "6.00"}));
}

TEST(GenerateNameItem, OpenEndsWinOverTheLabel) {
  CMapLegend legend;
  std::vector<float> lo{-1e37F, -1e36F, 5};
  std::vector<float> hi{3, 1e36F, 1e37F};
  legend.Update(lo, hi);
  legend.NClasses(3);
  for (int label : {0, 1, 2, 4, 99}) {
    legend.StateLabel(label);
    EXPECT_EQ(GeneratedNames(legend), (Names{"-INF ... 3.00", "-INF ... INF", "5.00 ... INF"}))
        << label;
  }
}

TEST(GenerateNameItem, UnknownLabelThrowsItsTextAndKeepsTheNamesMadeBefore) {
  CMapLegend legend;
  std::vector<float> lo{-1e37F, 0};
  std::vector<float> hi{3, 1};
  legend.Update(lo, hi);
  legend.NClasses(2);
  legend.StateLabel(5);
  Names names;
  try {
    legend.GenerateNameItem(names);
    FAIL() << "nothing was thrown";
  } catch (std::string const &text) {
    EXPECT_EQ(text, "logic error in CMapLegend::GenerateNameItem");
  }
  EXPECT_EQ(names, (Names{"-INF ... 3.00", ""}));
}

TEST(GenerateNameItem, CategorialNamesAreKeptAndMissingOnesNumbered) {
  CMapLegend legend;
  legend.LegendType(0);
  legend.NClasses(3);
  EXPECT_EQ(GeneratedNames(legend, {"wood"}), (Names{"wood", "<item 1>", "<item 2>"}));
  EXPECT_EQ(GeneratedNames(legend, {"a", "b", "c", "d"}), (Names{"a", "b", "c"}));
}

TEST(GenerateNameItem, NumericNamesOfTheirOwnAreKeptToo) {
  CMapLegend legend;
  legend.NClasses(2);
  legend.StateLabel(3);
  EXPECT_EQ(GeneratedNames(legend, {"low"}), (Names{"low", "<item 1>"}));
}

TEST(GenerateNameItem, DecimalsThatNoNameCanShowAreHeld) {
  CMapLegend legend;
  legend.NClasses(1);
  legend.StateLabel(1);
  legend.Decimals(2000000000);
  EXPECT_EQ(GeneratedNames(legend)[0].size(), 102U);
  legend.Decimals(-5);
  EXPECT_EQ(GeneratedNames(legend), (Names{"1"}));
}

TEST(GenerateNameItem, NegativeClassesGiveNoNames) {
  CMapLegend legend;
  legend.NClasses(-1);
  EXPECT_EQ(GeneratedNames(legend, {"a"}), Names{});
}

}  // namespace
