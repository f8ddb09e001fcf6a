#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/directories_internal.h>
#include <quillaven/platform/new_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>
#include <quillaven/platform/system_paths.h>

#include "tests/support/system_error.h"
#include "tests/support/temporary_directory.h"

namespace {

TEST(SystemPath, NameThatExistsAsItStandsIsTakenAsItStands) {
  TemporaryDirectory directory;
  std::string const odd = directory.Write("a\\b.txt", "x");
  directory.Write("a/b.txt", "y");
  EXPECT_EQ(SystemPath(odd), odd);
}

TEST(SystemPath, LeavesTheLastErrorAsItIs) {
  SetLastSystemError(kAccessError);
  SystemPath("no\\such\\name");
  EXPECT_EQ(LastSystemError(), kAccessError);
}

TEST(LibraryPath, TurnsSlashesIntoBackslashes) {
  EXPECT_EQ(LibraryPath("/a/b"), "\\a\\b");
}

TEST(GetWorkingDirectory, LeavesABufferThatIsTooSmallAsItWas) {
  char buffer[2] = {'x', 'y'};
  std::filesystem::path const before = std::filesystem::current_path();
  TemporaryDirectory directory;
  std::filesystem::current_path(directory.Path());
  EXPECT_FALSE(GetWorkingDirectory(buffer, sizeof buffer));
  std::filesystem::current_path(before);
  EXPECT_EQ(buffer[0], 'x');
  EXPECT_EQ(buffer[1], 'y');
}

TEST(NewFile, ReplacesAFileAndWritesInPieces) {
  TemporaryDirectory directory;
  std::string const path = directory.Write("a", "something longer");
  NewFile file(path.c_str());
  EXPECT_TRUE(file.IsOpen());
  EXPECT_TRUE(file.Write("ab", 2));
  EXPECT_TRUE(file.Write("", 0));
  EXPECT_TRUE(file.Write("c", 1));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(directory.Read("a"), "abc");
}

TEST(NewFile, FailureLeavesItsReasonAsTheLastError) {
  {
    NewFile file("/no/such/folder/x");
    EXPECT_FALSE(file.IsOpen());
  }
  EXPECT_EQ(LastSystemError(), kMissingDirectoryError);
  if (std::filesystem::exists("/dev/full")) {
    {
      NewFile file("/dev/full");
      ASSERT_TRUE(file.IsOpen());
      EXPECT_FALSE(file.Write("abc", 3));
    }
    EXPECT_EQ(LastSystemError(), kDiskFullError);
  }
}

}  // namespace
