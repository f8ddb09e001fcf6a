#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/application.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/stamp_font.h>

#include "tests/support/recording_application.h"

namespace {

TEST(Application, PuttingOneInForceReturnsTheOneBeforeAndNullBringsBackTheBuiltIn) {
  CApplication *const before = SetApplication(nullptr);
  CApplication *const builtIn = &GetApplication();
  CApplication mine;
  EXPECT_EQ(SetApplication(&mine), builtIn);
  EXPECT_EQ(&GetApplication(), &mine);
  EXPECT_EQ(SetApplication(nullptr), &mine);
  EXPECT_EQ(&GetApplication(), builtIn);
  EXPECT_EQ(SetApplication(before), builtIn);
}

TEST(Application, OneThatIsDestroyedInForceLeavesTheBuiltInOne) {
  CApplication *const before = SetApplication(nullptr);  // that of the test program
  CApplication *const builtIn = &GetApplication();
  {
    CApplication mine;
    SetApplication(&mine);
    CApplication const another(mine);  // its end is none of mine
  }
  EXPECT_EQ(&GetApplication(), builtIn);
  CApplication mine;
  SetApplication(&mine);
  { CApplication const another(mine); }
  EXPECT_EQ(SetApplication(before), &mine);
}

TEST(Application, DefaultsWorkWithoutAScreen) {
  CApplication application;
  EXPECT_EQ(application.HelpFilePath(), "");
  EXPECT_EQ(application.Name(), "Quillaven");
  application.BeginWaitCursor();
  application.EndWaitCursor();
  application.OnMainWindowMessage(32771);
}

TEST(MessageBoxes, EndAtTheApplicationWithTheirTitles) {
  RecordingApplication application;
  ShowMessageBox("text", "title");
  AfxMessageBox("other", 48, 61728);
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].title, "title");
  EXPECT_EQ(application.boxes[0].type, 0U);
  EXPECT_EQ(application.boxes[1].title, "Quillaven");
  EXPECT_EQ(application.boxes[1].text, "other");
  EXPECT_EQ(application.boxes[1].type, 48U);
  EXPECT_EQ(application.boxes[1].helpId, 61728U);
}

// A stamp as text, a line for each row of pixels.
std::string Shown(CStampImage const &image) {
  std::string text;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x)
      text += image.letters.at(static_cast<std::size_t>(y * image.width + x)) != 0 ? '#' : '.';
    text += '\n';
  }
  return text;
}

TEST(BuiltInFont, DrawsLettersWithBackgroundAroundThem) {
  EXPECT_EQ(Shown(DrawWithBuiltInFont("1g")),
            ".............\n"
            "...#.........\n"
            "..##.........\n"
            ".#.#....####.\n"
            "...#...#...#.\n"
            "...#...#...#.\n"
            "...#....####.\n"
            ".#####.....#.\n"
            "........###..\n"
            ".............\n");
}

TEST(BuiltInFont, EmptyTextHasNoWidth) {
  for (char const *none : {"", static_cast<char const *>(nullptr)}) {
    CStampImage const image = DrawWithBuiltInFont(none);
    EXPECT_EQ(image.width, 0);
    EXPECT_TRUE(image.letters.empty());
  }
}

TEST(BuiltInFont, BytesThatAreNotPrintableShowAsABox) {
  std::string const box = Shown(DrawWithBuiltInFont("\x01"));
  EXPECT_EQ(Shown(DrawWithBuiltInFont("\xC4")), box);
  EXPECT_EQ(Shown(DrawWithBuiltInFont("\x7F")), box);
  EXPECT_NE(Shown(DrawWithBuiltInFont("~")), box);
}

TEST(BuiltInFont, EveryPrintableCharacterButTheBlankLooksDifferent) {
  std::vector<std::string> seen;
  for (char c = ' '; c <= '~'; ++c) {
    std::string const shown = Shown(DrawWithBuiltInFont(std::string(1, c).c_str()));
    for (std::string const &other : seen) EXPECT_NE(shown, other) << c;
    seen.push_back(shown);
  }
  EXPECT_EQ(seen.size(), 95U);
}

TEST(BuiltInFont, VeryLongTextIsCut) {
  EXPECT_LT(DrawWithBuiltInFont(std::string(100000, 'x').c_str()).width, 30000);
}

}  // namespace
