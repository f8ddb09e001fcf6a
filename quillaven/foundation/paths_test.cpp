#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/foundation/paths.h>
#include <quillaven/platform/system_paths.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

std::string Relative(char const *base, char const *path) {
  return GetRelativePath(base, path);
}
std::string Full(char const *base, char const *path) {
  return GetFullPath(base, path);
}

TEST(GetRelativePath, PathBelowTheDirectoryOfTheBaseBeginsWithADot) {
  EXPECT_EQ(Relative("C:\\Data\\map.txt", "C:\\Data\\Sub\\x.img"), ".\\sub\\x.img");
  EXPECT_EQ(Relative("C:\\Data\\map.txt", "c:\\DATA\\x.img"), ".\\x.img");
}

TEST(GetRelativePath, PathInAnotherDirectoryGoesUp) {
  EXPECT_EQ(Relative("C:\\Data\\map.txt", "C:\\Other\\x.img"), "..\\other\\x.img");
  EXPECT_EQ(Relative("C:\\a\\b\\c\\map.txt", "C:\\a\\x.img"), "..\\..\\x.img");
  EXPECT_EQ(Relative("C:\\a\\b\\map.txt", "C:\\x\\y.img"), "..\\..\\x\\y.img");
}

TEST(GetRelativePath, PathOnAnotherDriveComesBackInLowerCase) {
  EXPECT_EQ(Relative("C:\\Data\\map.txt", "D:\\X.img"), "d:\\x.img");
}

TEST(GetRelativePath, EmptyBaseOrPathLeavesThePathAsItIs) {
  EXPECT_EQ(Relative("", "C:\\Data\\X.img"), "C:\\Data\\X.img");
  EXPECT_EQ(Relative("C:\\Data\\map.txt", ""), "");
}

TEST(GetRelativePath, SearchesForTheDirectoryAnywhereWhereThereIsADrive) {
  // The lengths are cut as if the match stood at the start: only callers with odd paths see it.
  EXPECT_EQ(Relative("c:\\a\\m.txt", "c:\\b\\c:\\a\\x"), ".\\c:\\a\\x");
}

TEST(GetRelativePath, WithoutADriveTheDirectoryMustStandAtTheStart) {
  EXPECT_EQ(Relative("\\data\\maps\\m.txt", "\\data\\maps\\x.img"), ".\\x.img");
  EXPECT_EQ(Relative("\\data\\maps\\m.txt", "\\data\\x.img"), "..\\x.img");
  EXPECT_EQ(Relative("\\data\\m.txt", "\\other\\data\\x.img"), "..\\other\\data\\x.img");
  EXPECT_EQ(Relative("\\m.txt", "\\other\\x.img"), ".\\other\\x.img");
}

TEST(GetRelativePath, SearchThatRunsOutOfBackslashesGivesThePathInLowerCase) {
  EXPECT_EQ(Relative("c:\\data\\m.txt", "cX"), "cx");
  EXPECT_EQ(Relative("map.txt", "Maps\\x"), "maps\\x");
}

TEST(GetFullPath, ResolvesNamesAgainstTheDirectoryOfTheBase) {
  char const *base = "C:\\Data\\Sub\\map.txt";
  EXPECT_EQ(Full(base, "x.img"), "C:\\Data\\Sub\\x.img");
  EXPECT_EQ(Full(base, ".\\x.img"), "C:\\Data\\Sub\\x.img");
  EXPECT_EQ(Full(base, "..\\x.img"), "C:\\Data\\x.img");
  EXPECT_EQ(Full(base, "..\\..\\x.img"), "C:\\x.img");
  EXPECT_EQ(Full(base, "\\x.img"), "C:\\x.img");
}

TEST(GetFullPath, LeavesDrivesAndRemoteLocationsAsTheyAre) {
  char const *base = "C:\\Data\\Sub\\map.txt";
  for (char const *path : {"D:\\X.img", "ftp:x", "FTP://host/x", "FILE:\\x", "file:x"})
    EXPECT_EQ(Full(base, path), path);
}

TEST(GetFullPath, BaseWithoutBackslashAddsNothing) {
  EXPECT_EQ(Full("map.txt", "x.img"), "x.img");
}

TEST(GetFullPath, BaseThatIsANameAloneIsNoDirectoryForDots) {
  EXPECT_EQ(GetFullPath("map.txt", ".\\x.img"), "x.img");
  EXPECT_EQ(GetFullPath("map.txt", "..\\x.img"), "..\\x.img");
}

TEST(GetFullPath, PathFromTheRootIsCompleteWhereTheBaseHasNoDrive) {
  EXPECT_EQ(Full("\\data\\map.txt", "\\other\\x"), "\\other\\x");
  EXPECT_EQ(Full("\\data\\sub\\map.txt", "..\\x"), "\\data\\x");
}

TEST(GetFullPath, IsTheInverseOfTheRelativePath) {
  for (char const *base : {"c:\\data\\sub\\map.txt", "\\data\\sub\\map.txt"})
    for (char const *tail : {"data\\sub\\x", "data\\x", "other\\x", "data\\sub\\deep\\x"}) {
      std::string const path = std::string(base).substr(0, base[0] == 'c' ? 3 : 1) + tail;
      EXPECT_EQ(Full(base, Relative(base, path.c_str()).c_str()), path);
    }
}

TEST(GetShorterPath, PathThatFitsComesBackUnchanged) {
  EXPECT_EQ(GetShorterPath("C:\\a\\b", 6), "C:\\a\\b");
  EXPECT_EQ(GetShorterPath("C:\\a\\b", 7), "C:\\a\\b");
}

TEST(GetShorterPath, KeepsTheDriveAndTheLastComponents) {
  CString const path = "C:\\Documents\\Models\\Town\\landuse.img";
  EXPECT_EQ(GetShorterPath(path, 30), "C:\\... \\Town\\landuse.img");
  EXPECT_EQ(GetShorterPath(path, 20), "C:\\... \\landuse.img");
  EXPECT_LT(GetShorterPath(path, 30).GetLength(), 30);
}

TEST(GetShorterPath, WithoutRoomThereAreOnlyTheDots) {
  EXPECT_EQ(GetShorterPath("C:\\Data\\landuse.img", 7), "C:\\... ");
  EXPECT_EQ(GetShorterPath("C:\\Data\\landuse.img", -5), "C:\\... ");
}

TEST(GetShorterPath, PathWithoutBackslashesEnds) {
  EXPECT_EQ(GetShorterPath("averyverylongname.img", 12), "ave... ");
}

class Directories : public testing::Test {
 protected:
  Directories() { fs::current_path(directory.Path()); }
  ~Directories() override { fs::current_path(before); }

  // A path of this test's directory with backslashes.
  CString In(std::string const &name) {
    return LibraryPath(fs::canonical(directory.Path()).string()) + "\\" + name;
  }
  bool IsThere(std::string const &name) { return fs::is_directory(directory.Path(name)); }
  std::string Where() { return fs::current_path().string(); }

  fs::path before = fs::current_path();
  TemporaryDirectory directory;
};

TEST_F(Directories, AbsPathOfABareNameIsTheWorkingDirectoryWithABackslash) {
  EXPECT_EQ(AbsPathOfFile("x.txt"), In(""));
  EXPECT_EQ(AbsPathOfFile("sub\\..\\x.txt"), In(""));
  EXPECT_EQ(AbsPathOfFile(In("sub\\x.txt")), In("sub\\"));
}

TEST_F(Directories, SplitPathGivesThePartsOfTheAbsoluteForm) {
  CString drive = "?";
  CString folder;
  CString name;
  CString extension;
  SplitPath("sub\\x.tar.gz", &drive, &folder, &name, &extension);
  EXPECT_EQ(drive, In("")[1] == ':' ? In("").Left(2) : "");
  EXPECT_EQ(drive + folder, In("sub\\"));
  EXPECT_EQ(name, "x.tar");
  EXPECT_EQ(extension, ".gz");
  SplitPath("a.b\\plain", nullptr, nullptr, &name, &extension);
  EXPECT_EQ(name, "plain");
  EXPECT_EQ(extension, "");
}

TEST_F(Directories, SplitPathOfATooLongPathGivesEmptyParts) {
  CString name = "?";
  SplitPath(std::string(300, 'x'), nullptr, nullptr, &name, nullptr);
  EXPECT_EQ(name, "");
}

TEST_F(Directories, ValidNameNeedsNoFileAndExistingFileDoes) {
  directory.Write("Present.txt", "x");
  EXPECT_NE(IsValidFileName("absent.txt"), 0);
  EXPECT_EQ(IsValidFileName(""), 0);
  EXPECT_EQ(IsValidFileName(std::string(5000, 'x')), 0);
  EXPECT_NE(FileExists("Present.txt"), 0);
  EXPECT_NE(FileExists("PRESENT.TXT"), 0);
  EXPECT_EQ(FileExists("absent.txt"), 0);
  EXPECT_EQ(FileExists(""), 0);
}

TEST_F(Directories, MakeDirectoryMakesAllParents) {
  EXPECT_TRUE(MakeDirectory("a\\b\\c"));
  EXPECT_TRUE(IsThere("a/b/c"));
  EXPECT_TRUE(MakeDirectory(In("d\\e\\")));
  EXPECT_TRUE(IsThere("d/e"));
  EXPECT_TRUE(MakeDirectory("a\\b\\c"));
}

TEST_F(Directories, MakeDirectoryOfNothingIsFalse) {
  EXPECT_FALSE(MakeDirectory(""));
  EXPECT_FALSE(MakeDirectory(nullptr));
}

TEST_F(Directories, MakeDirectoryComesBackToTheWorkingDirectoryWhateverTheResult) {
  std::string const here = Where();
  EXPECT_TRUE(MakeDirectory("a\\b"));
  EXPECT_EQ(Where(), here);
  directory.Write("file", "x");
  EXPECT_FALSE(MakeDirectory("a\\..\\file\\c"));
  EXPECT_EQ(Where(), here);
  EXPECT_FALSE(MakeDirectory(("a\\" + std::string(500, 'x')).c_str()));
  EXPECT_EQ(Where(), here);
}

TEST_F(Directories, MakeDirectoryIsFalseWhereItCouldNotComeBack) {
  // A system may have no working directory of 260 characters; 256 are too many to come back.
  std::size_t const length = In("").size();
  ASSERT_LT(length, 150U);
  fs::path const deep =
      fs::path(directory.Path()) / std::string(100, 'd') / std::string(256 - length - 101, 'e');
  fs::create_directories(deep);
  fs::current_path(deep);
  EXPECT_FALSE(MakeDirectory("a"));
  EXPECT_FALSE(fs::exists(deep / "a"));
  EXPECT_EQ(Where(), deep.string());
}

TEST_F(Directories, MakeDirectory2TakesWhatStandsBehindTheLastBackslashForAFile) {
  EXPECT_TRUE(MakeDirectory2(In("a\\b")));
  EXPECT_TRUE(IsThere("a"));
  EXPECT_FALSE(IsThere("a/b"));
  EXPECT_TRUE(MakeDirectory2(In("a\\b\\")));
  EXPECT_TRUE(IsThere("a/b"));
}

TEST_F(Directories, MakeDirectory2MakesNoAttemptAtADoubleBackslash) {
  EXPECT_TRUE(MakeDirectory2("a\\\\b"));
  EXPECT_FALSE(IsThere("a"));
  EXPECT_TRUE(MakeDirectory2(""));
}

TEST_F(Directories, MakeDirectory2IsFalseWhereADirectoryCannotBeMade) {
  directory.Write("file", "x");
  EXPECT_FALSE(MakeDirectory2(In("file\\a\\b\\")));
}

TEST_F(Directories, MakeDirectoryForFileMakesTheDirectoryOfTheFile) {
  EXPECT_TRUE(MakeDirectoryForFile("a\\b\\x.txt"));
  EXPECT_TRUE(IsThere("a/b"));
  EXPECT_FALSE(IsThere("a/b/x.txt"));
  EXPECT_FALSE(MakeDirectoryForFile(""));
  EXPECT_FALSE(MakeDirectoryForFile(nullptr));
}

TEST_F(Directories, MakeDirectoryForANameWithoutBackslashMakesThatDirectory) {
  EXPECT_TRUE(MakeDirectoryForFile("x.txt"));
  EXPECT_TRUE(IsThere("x.txt"));
}

TEST_F(Directories, PreserveDirGoesBackAndSoDoesItsCopy) {
  std::string const here = Where();
  fs::create_directory("sub");
  {
    CPreserveDir const preserve;
    fs::current_path("sub");
    {
      CPreserveDir copy(preserve);
      CPreserveDir assigned;
      assigned = preserve;
    }
    EXPECT_EQ(Where(), here);
    fs::current_path("sub");
  }
  EXPECT_EQ(Where(), here);
}

TEST_F(Directories, PreserveDirOfADirectoryThatIsGoneIsSilent) {
  RecordingApplication application;
  fs::create_directory("gone");
  fs::current_path("gone");
  {
    CPreserveDir const preserve;
    fs::current_path("..");
    fs::remove("gone");
  }
  EXPECT_TRUE(application.boxes.empty());
}

TEST(AppHelpFileDir, IsTheHelpFileUpToItsLastBackslash) {
  RecordingApplication application;
  application.helpFilePath = "C:\\Model\\Help\\model.hlp";
  EXPECT_EQ(AppHelpFileDir(), "C:\\Model\\Help\\");
  application.helpFilePath = "/opt/model/model.hlp";
  EXPECT_EQ(AppHelpFileDir(), "\\opt\\model\\");
  application.helpFilePath = "model.hlp";
  EXPECT_EQ(AppHelpFileDir(), "");
}

TEST(AppHelpFileDir, IsEmptyWithoutAnApplication) {
  EXPECT_EQ(AppHelpFileDir(), "");
}

}  // namespace
