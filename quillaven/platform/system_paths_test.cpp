#include <cerrno>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/directories_internal.h>
#include <quillaven/platform/new_file_internal.h>
#include <quillaven/platform/system_paths.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(SystemPath, TurnsBackslashesIntoSlashesAndFindsNamesWithoutRegardToCase) {
  TemporaryDirectory directory;
  directory.Write("Legends/Landuse.txt", "x");
  std::string const root = directory.Path();
  EXPECT_EQ(SystemPath(root + "\\Legends\\Landuse.txt"), root + "/Legends/Landuse.txt");
  EXPECT_EQ(SystemPath(root + "\\LEGENDS\\landuse.TXT"), root + "/Legends/Landuse.txt");
  EXPECT_EQ(SystemPath(LibraryPath(root) + "\\legends\\landuse.txt"),
            root + "/Legends/Landuse.txt");
}

TEST(SystemPath, NameThatExistsAsItStandsIsTakenAsItStands) {
  TemporaryDirectory directory;
  std::string const odd = directory.Write("a\\b.txt", "x");
  directory.Write("a/b.txt", "y");
  EXPECT_EQ(SystemPath(odd), odd);
}

TEST(SystemPath, ExactNameWinsOverOneThatDiffersInCase) {
  TemporaryDirectory directory;
  directory.Write("Map.txt", "x");
  directory.Write("map.txt", "y");
  EXPECT_EQ(SystemPath(directory.Path() + "\\map.txt"), directory.Path("map.txt"));
  EXPECT_EQ(SystemPath(directory.Path() + "\\MAP.txt"), directory.Path("Map.txt"));
}

TEST(SystemPath, ComponentsThatMatchNothingStayAsWritten) {
  TemporaryDirectory directory;
  directory.Write("Sub/x", "");
  EXPECT_EQ(SystemPath(directory.Path() + "\\sub\\New\\File.txt"),
            directory.Path() + "/Sub/New/File.txt");
  EXPECT_EQ(SystemPath("no\\Such\\name"), "no/Such/name");
  EXPECT_EQ(SystemPath(""), "");
}

TEST(SystemPath, LeavesTheLastErrorAsItIs) {
  errno = EACCES;
  SystemPath("no\\such\\name");
  EXPECT_EQ(errno, EACCES);
}

TEST(LibraryPath, TurnsSlashesIntoBackslashes) {
  EXPECT_EQ(LibraryPath("/a/b"), "\\a\\b");
}

TEST(MakeFullPath, TakesOutDotsAndHoldsItsLimit) {
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
  EXPECT_EQ(errno, ENOENT);
  if (std::filesystem::exists("/dev/full")) {
    {
      NewFile file("/dev/full");
      ASSERT_TRUE(file.IsOpen());
      EXPECT_FALSE(file.Write("abc", 3));
    }
    EXPECT_EQ(errno, ENOSPC);
  }
}

}  // namespace
