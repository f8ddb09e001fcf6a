#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/system_paths.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(SystemPathHere, TurnsBackslashesIntoSlashesAndFindsNamesWithoutRegardToCase) {
  TemporaryDirectory directory;
  directory.Write("Legends/Landuse.txt", "x");
  std::string const root = directory.Path();
  EXPECT_EQ(SystemPath(root + "\\Legends\\Landuse.txt"), root + "/Legends/Landuse.txt");
  EXPECT_EQ(SystemPath(root + "\\LEGENDS\\landuse.TXT"), root + "/Legends/Landuse.txt");
  EXPECT_EQ(SystemPath(LibraryPath(root) + "\\legends\\landuse.txt"),
            root + "/Legends/Landuse.txt");
}

TEST(SystemPathHere, ExactNameWinsOverOneThatDiffersInCase) {
  TemporaryDirectory directory;
  directory.Write("Map.txt", "x");
  directory.Write("map.txt", "y");
  EXPECT_EQ(SystemPath(directory.Path() + "\\map.txt"), directory.Path("map.txt"));
  EXPECT_EQ(SystemPath(directory.Path() + "\\MAP.txt"), directory.Path("Map.txt"));
}

TEST(SystemPathHere, ComponentsThatMatchNothingStayAsWritten) {
  TemporaryDirectory directory;
  directory.Write("Sub/x", "");
  EXPECT_EQ(SystemPath(directory.Path() + "\\sub\\New\\File.txt"),
            directory.Path() + "/Sub/New/File.txt");
  EXPECT_EQ(SystemPath("no\\Such\\name"), "no/Such/name");
  EXPECT_EQ(SystemPath(""), "");
}

}  // namespace
