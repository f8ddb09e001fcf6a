#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/strings.h>

namespace {

TEST(CString, TakesPartsAndHoldsCountsToTheText) {
  CString const text = "landuse";
  EXPECT_EQ(text.GetLength(), 7);
  EXPECT_EQ(text.Left(4), "land");
  EXPECT_EQ(text.Right(3), "use");
  EXPECT_EQ(text.Mid(4), "use");
  EXPECT_EQ(text.Mid(1, 3), "and");
  EXPECT_EQ(text.Left(99), "landuse");
  EXPECT_EQ(text.Left(-1), "");
  EXPECT_EQ(text.Right(99), "landuse");
  EXPECT_EQ(text.Right(-1), "");
  EXPECT_EQ(text.Mid(99), "");
  EXPECT_EQ(text.Mid(-1), "landuse");
}

TEST(CString, FindsTextsAndCharacters) {
  CString const path = "C:\\a\\b";
  EXPECT_EQ(path.Find("\\"), 2);
  EXPECT_EQ(path.Find('\\', 3), 4);
  EXPECT_EQ(path.Find("x"), -1);
  EXPECT_EQ(path.ReverseFind('\\'), 4);
  EXPECT_EQ(path.ReverseFind('x'), -1);
}

TEST(CString, LowersLettersOfTheAlphabetAlone) {
  CString text = "AbZ[\xC4";
  text.MakeLower();
  EXPECT_EQ(text, "abz[\xC4");
}

TEST(CString, FormatsWithAPointAndAnyLength) {
  CString text;
  text.Format("%s %.2f %d", "x", 1.5, 3);
  EXPECT_EQ(text, "x 1.50 3");
  text.Format("%5000d", 1);
  EXPECT_EQ(text.GetLength(), 5000);
  text.Format("%s", "");
  EXPECT_TRUE(text.IsEmpty());
}

TEST(CString, PassesForACStringAndTakesNull) {
  CString const text = "abc";
  char const *plain = text;
  EXPECT_STREQ(plain, "abc");
  EXPECT_EQ(CString(static_cast<char const *>(nullptr)), "");
}

}  // namespace
