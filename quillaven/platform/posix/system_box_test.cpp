#include <gtest/gtest.h>

#include <quillaven/platform/application.h>

namespace {

TEST(SystemBoxHere, IsTitleAndTextOnStandardErrorAndAnsweredAtOnce) {
  CApplication application;
  testing::internal::CaptureStderr();
  EXPECT_EQ(application.DoMessageBox("a text", "a title", 0, 0), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a title\na text\n");
}

}  // namespace
