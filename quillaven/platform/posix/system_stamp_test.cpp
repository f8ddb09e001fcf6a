#include <gtest/gtest.h>

#include <quillaven/platform/application.h>
#include <quillaven/platform/stamp_font.h>

namespace {

TEST(SystemStampHere, IsInTheBuiltInFont) {
  CStampImage const image = CApplication().MakeStamp("Town 1990");
  CStampImage const expected = DrawWithBuiltInFont("Town 1990");
  EXPECT_GT(image.width, 0);
  EXPECT_EQ(image.width, expected.width);
  EXPECT_EQ(image.height, expected.height);
  EXPECT_EQ(image.letters, expected.letters);
}

}  // namespace
