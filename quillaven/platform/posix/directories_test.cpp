#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/directories_internal.h>

namespace {

TEST(MakeFullPathHere, TakesOutDotsAndHoldsItsLimit) {
  std::string full;
  EXPECT_TRUE(MakeFullPath("/a/./b/../c//d", 260, full));
  EXPECT_EQ(full, "/a/c/d");
  EXPECT_TRUE(MakeFullPath("/../..", 260, full));
  EXPECT_EQ(full, "/");
  EXPECT_TRUE(MakeFullPath("/a/", 260, full));
  EXPECT_EQ(full, "/a/");
  EXPECT_TRUE(MakeFullPath("/abc", 5, full));
  EXPECT_FALSE(MakeFullPath("/abc", 4, full));
  EXPECT_EQ(full, "/abc");
}

}  // namespace
