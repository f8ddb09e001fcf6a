#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/directories_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(MakeFullPathHere, HasADriveAndBackslashesAndNoDots) {
  std::string full;
  EXPECT_TRUE(MakeFullPath("c:\\a\\.\\b\\..\\c/d", 260, full));
  EXPECT_EQ(full, "c:\\a\\c\\d");
  EXPECT_TRUE(MakeFullPath("c:\\..\\..", 260, full));
  EXPECT_EQ(full, "c:\\");
  EXPECT_TRUE(MakeFullPath("\\a\\", 260, full));
  EXPECT_EQ(full.substr(1), ":\\a\\");
}

TEST(MakeFullPathHere, HoldsItsLimit) {
  std::string full;
  EXPECT_TRUE(MakeFullPath("c:\\abc", 7, full));
  EXPECT_FALSE(MakeFullPath("c:\\abc", 6, full));
  EXPECT_EQ(full, "c:\\abc");
}

TEST(CanOpenFileHere, IsTrueOfFilesAloneWhateverTheirCase) {
  TemporaryDirectory directory;
  directory.Write("Map.txt", "x");
  EXPECT_TRUE(CanOpenFile(directory.Path("MAP.TXT").c_str()));
  EXPECT_FALSE(CanOpenFile(directory.Path("none.txt").c_str()));
  EXPECT_FALSE(CanOpenFile(directory.Path().c_str()));
}

}  // namespace
