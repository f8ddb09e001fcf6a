#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/new_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(NewFile, HoldsThePiecesThatWereWritten) {
  TemporaryDirectory directory;
  NewFile file(directory.Path("a.bin").c_str());
  ASSERT_TRUE(file.IsOpen());
  EXPECT_TRUE(file.Write("abc", 3));
  EXPECT_TRUE(file.Write("", 0));
  EXPECT_TRUE(file.Write("d", 1));
  EXPECT_TRUE(file.Close());
  EXPECT_TRUE(file.Close());  // is closed already
  EXPECT_EQ(directory.Read("a.bin"), "abcd");
}

TEST(NewFile, ReplacesALongerOneAndIsClosedAtItsEnd) {
  TemporaryDirectory directory;
  std::string const path = directory.Write("a.bin", "something longer");
  {
    NewFile file(path.c_str());
    EXPECT_TRUE(file.Write("ab", 2));
  }
  EXPECT_EQ(directory.Read("a.bin"), "ab");
}

TEST(NewFile, IsNotMadeWhereThereIsNoDirectoryNorOverOne) {
  TemporaryDirectory directory;
  NewFile const nowhere(directory.Path("none/a.bin").c_str());
  EXPECT_FALSE(nowhere.IsOpen());
  EXPECT_NE(LastSystemError(), 0U);
  EXPECT_FALSE(NewFile(directory.Path().c_str()).IsOpen());
}

}  // namespace
