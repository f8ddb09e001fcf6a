#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/files.h>

#include "tests/support/pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

std::ptrdiff_t FilesIn(fs::path const &folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

// The folder of temporary files, for as long as this lives.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(std::string const &folder) {
    if (char const *before = std::getenv("TMP")) m_before = before;
    ::_putenv_s("TMP", folder.c_str());
  }
  ~TemporaryFolder() { ::_putenv_s("TMP", m_before.c_str()); }  // an empty text takes it away
  TemporaryFolder(TemporaryFolder const &) = delete;
  TemporaryFolder &operator=(TemporaryFolder const &) = delete;

 private:
  std::string m_before;
};

TEST(TextFileHere, IsWrittenWithCrLf) {
  TemporaryDirectory directory;
  CStdioFile file(directory.Path("a.txt").c_str(), CFile::modeWrite | CFile::modeCreate);
  file.Write("a\nb\n", 4);
  file.Close();
  EXPECT_EQ(directory.Read("a.txt"), "a\r\nb\r\n");
}

// The runtime's text mode would end the file there.
TEST(TextFileHere, GoesOnBehindTheByte26) {
  TemporaryDirectory directory;
  for (std::string const text : {"a\x1A\nb", "a\x1A\r\nb"}) {
    CStdioFile file(directory.Write("a.txt", text).c_str(), CFile::modeRead);
    char bytes[8] = "";
    EXPECT_EQ(file.Read(bytes, sizeof bytes), 4U);
    EXPECT_STREQ(bytes, "a\x1A\nb");
  }
}

TEST(TextFileHere, LeavesNoCopyBehind) {
  TemporaryDirectory directory;
  TemporaryDirectory copies;
  TemporaryFolder const folder(copies.Path());
  {
    CStdioFile const file(directory.Write("a.txt", "a\r\nb").c_str(), CFile::modeRead);
    EXPECT_NE(file.m_pStream, nullptr);
    EXPECT_EQ(FilesIn(copies.Path("")), 1);
  }
  EXPECT_EQ(FilesIn(copies.Path("")), 0);
}

TEST(TextFileHere, ThatHasNoRoomForItsCopyTellsWhy) {
  TemporaryDirectory const directory;
  std::string const path = directory.Write("a.txt", "a\r\nb");
  TemporaryFolder const folder(directory.Path("missing"));
  CStdioFile file;
  CFileException reason;
  errno = 0;
  EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &reason));
  EXPECT_EQ(reason.m_cause, CFileException::badPath);
}

TEST(TextFileHere, ThatHasNoRoomForItsCopyInALongFolderTellsWhy) {
  TemporaryDirectory const directory;
  std::string const path = directory.Write("a.txt", "a\r\nb");
  TemporaryFolder const folder(directory.Path(std::string(300, 'x')));
  CStdioFile file;
  CFileException reason;
  errno = 0;
  EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &reason));
  EXPECT_EQ(reason.m_cause, CFileException::badPath);
}

// It comes from a copy, which has places and holds all of it.
TEST(TextFileHere, ThatComesThroughAPipeHasPlaces) {
  Pipe const pipe("one\r\ntwo\n");
  CStdioFile file(pipe.Name().c_str(), CFile::modeRead);
  EXPECT_EQ(file.GetLength(), 8);
  file.Seek(4, CFile::begin);
  char bytes[8] = "";
  EXPECT_EQ(file.Read(bytes, sizeof bytes), 4U);
  EXPECT_STREQ(bytes, "two\n");
}

}  // namespace
