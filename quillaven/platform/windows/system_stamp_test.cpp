#include <algorithm>
#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/application.h>

#include "tests/support/graphics_objects.h"

namespace {

CStampImage Stamp(char const *text) {
  return CApplication().MakeStamp(text);
}

std::ptrdiff_t LetterPixels(CStampImage const &image) {
  return std::count(image.letters.begin(), image.letters.end(), 1);
}

TEST(SystemStampHere, IsAsLargeAsTheSystemSaysTheTextIs) {
  HDC const context = ::CreateCompatibleDC(nullptr);
  SIZE size{};
  ASSERT_TRUE(::GetTextExtentPoint32A(context, "Town 1990", 9, &size));
  ::DeleteDC(context);
  CStampImage const image = Stamp("Town 1990");
  EXPECT_EQ(image.width, size.cx);
  EXPECT_EQ(image.height, size.cy);
  EXPECT_EQ(image.letters.size(), static_cast<std::size_t>(size.cx * size.cy));
}

TEST(SystemStampHere, HasLettersOnBackground) {
  CStampImage const image = Stamp("Town 1990");
  EXPECT_GT(LetterPixels(image), 50);
  EXPECT_LT(LetterPixels(image), image.width * image.height / 2);
  EXPECT_EQ(LetterPixels(Stamp("   ")), 0);
  EXPECT_GT(LetterPixels(Stamp("88")), LetterPixels(Stamp("8")));
}

TEST(SystemStampHere, EveryDigitLooksDifferent) {
  for (char const *digit : {"0", "1", "2", "3", "4", "5", "6", "7", "8"})
    EXPECT_NE(Stamp(digit).letters, Stamp("9").letters) << digit;
}

TEST(SystemStampHere, EmptyTextHasNoWidth) {
  EXPECT_EQ(Stamp("").width, 0);
  EXPECT_TRUE(Stamp("").letters.empty());
}

TEST(SystemStampHere, VeryLongTextIsCut) {
  CStampImage const image = Stamp(std::string(100000, 'x').c_str());
  EXPECT_GT(image.width, 0);
  EXPECT_EQ(image.width, Stamp(std::string(4096, 'x').c_str()).width);
}

TEST(SystemStampHere, LeavesNoObjectsBehind) {
  Stamp("Town 1990");
  unsigned long const before = GraphicsObjects();
  for (int i = 0; i < 1000; ++i) ASSERT_GT(Stamp("1").width, 0) << i;
  EXPECT_LT(GraphicsObjects(), before + 500);
}

}  // namespace
