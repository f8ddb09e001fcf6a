#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/files.h>

#include "tests/support/pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string ReadAll(CFile &file) {
  std::string bytes;
  char buffer[7];
  for (std::size_t count; (count = file.Read(buffer, sizeof buffer)) > 0;)
    bytes.append(buffer, count);
  return bytes;
}

int CauseOfOpening(std::string const &path, unsigned int flags) {
  CFile file;
  CFileException reason;
  EXPECT_FALSE(file.Open(path.c_str(), flags, &reason));
  return reason.m_cause;
}

TEST(File, WrittenAnewIsReadBack) {
  TemporaryDirectory directory;
  std::string const path = directory.Write("a.bin", "what stood here before");
  {
    CFile file(path.c_str(), CFile::modeWrite | CFile::modeCreate);
    file.Write("ab\r\n", 4);
    file.Write("", 0);
    file.Close();
  }
  EXPECT_EQ(directory.Read("a.bin"), "ab\r\n");
  CFile file(path.c_str(), CFile::modeRead);
  EXPECT_EQ(ReadAll(file), "ab\r\n");
}

TEST(File, OpenedForWritingWithoutCreateKeepsTheRest) {
  TemporaryDirectory directory;
  std::string const path = directory.Write("a.bin", "abcdef");
  CFile file(path.c_str(), CFile::modeWrite);
  file.Write("XY", 2);
  file.Close();
  EXPECT_EQ(directory.Read("a.bin"), "XYcdef");
}

TEST(File, OpenedForBothReadsWhatItWrote) {
  TemporaryDirectory directory;
  CFile file(directory.Path("a.bin").c_str(), CFile::modeReadWrite | CFile::modeCreate);
  file.Write("abcdef", 6);
  EXPECT_EQ(file.Seek(-2, CFile::end), 4);
  EXPECT_EQ(ReadAll(file), "ef");
  EXPECT_EQ(file.Seek(1, CFile::begin), 1);
  EXPECT_EQ(file.Seek(2, CFile::current), 3);
  EXPECT_EQ(file.GetLength(), 6);
  EXPECT_EQ(ReadAll(file), "def");
}

// Writing behind reading goes on where reading ended, and the other way round, without a seek.
TEST(File, OpenedForBothTurnsFromReadingToWritingAndBack) {
  TemporaryDirectory directory;
  for (bool const buffered : {false, true}) {
    SCOPED_TRACE(buffered);
    std::string const path = directory.Write("a.bin", "abcdefgh");
    CFile raw;
    CStdioFile stream;
    CFile &file = buffered ? stream : raw;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite | CFile::typeBinary));
    char bytes[3] = {};
    EXPECT_EQ(file.Read(bytes, 2), 2U);
    file.Write("XY", 2);
    EXPECT_EQ(file.Read(bytes, 2), 2U);
    EXPECT_STREQ(bytes, "ef");
    file.Write("Z", 1);
    file.Close();
    EXPECT_EQ(directory.Read("a.bin"), "abXYefZh");
  }
}

TEST(File, OpeningTellsTheCauseOfFailure) {
  TemporaryDirectory directory;
  EXPECT_EQ(CauseOfOpening(directory.Path("none"), CFile::modeRead), CFileException::fileNotFound);
  EXPECT_EQ(CauseOfOpening(directory.Path("none"), CFile::modeWrite), CFileException::fileNotFound);
  EXPECT_EQ(CauseOfOpening(directory.Path(), CFile::modeRead), CFileException::accessDenied);
  std::string const file = directory.Write("file", "");
  EXPECT_EQ(CauseOfOpening(file + "/below", CFile::modeRead), CFileException::badPath);
}

TEST(File, OpeningWithoutAnExceptionObjectIsJustFalse) {
  TemporaryDirectory directory;
  CStdioFile file;
  EXPECT_FALSE(file.Open(directory.Path("none").c_str(), CFile::modeRead));
  EXPECT_EQ(file.m_pStream, nullptr);
}

TEST(File, ConstructedOnAMissingFileThrowsTheCause) {
  TemporaryDirectory directory;
  try {
    CStdioFile const file(directory.Path("none").c_str(), CFile::modeRead);
    FAIL() << "nothing was thrown";
  } catch (CFileException const &reason) {
    EXPECT_EQ(reason.m_cause, CFileException::fileNotFound);
  }
}

TEST(File, ThatIsNotOpenReadsNothingAndThrowsOnWriting) {
  CFile file;
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 0U);
  EXPECT_THROW(file.Write("x", 1), CFileException);
  EXPECT_THROW(file.Seek(0, CFile::begin), CFileException);
  file.Flush();
  file.Close();
}

TEST(File, SeekBeforeTheBeginThrowsBadSeek) {
  TemporaryDirectory directory;
  CFile file(directory.Write("a", "abc").c_str(), CFile::modeRead);
  try {
    file.Seek(-1, CFile::begin);
    FAIL() << "nothing was thrown";
  } catch (CFileException const &reason) {
    EXPECT_EQ(reason.m_cause, CFileException::badSeek);
  }
}

TEST(File, WithABackslashInItsNameOpensBehindADirectory) {
  TemporaryDirectory directory;
  directory.Write("Tables/a.txt", "text");
  CFile file((directory.Path() + "\\tables\\A.TXT").c_str(), CFile::modeRead);
  EXPECT_EQ(ReadAll(file), "text");
}

TEST(TextFile, DeliversCrLfAsLfAndKeepsALoneCr) {
  TemporaryDirectory directory;
  std::string const path = directory.Write("a.txt", "a\r\nb\rc\r\r\nd\n\r");
  CStdioFile file(path.c_str(), CFile::modeRead | CFile::typeText);
  EXPECT_EQ(ReadAll(file), "a\nb\rc\r\nd\n\r");
}

TEST(TextFile, IsTextWithoutATypeFlag) {
  TemporaryDirectory directory;
  CStdioFile file(directory.Write("a.txt", "a\r\nb").c_str(), CFile::modeRead);
  EXPECT_EQ(ReadAll(file), "a\nb");
}

TEST(TextFile, AsBinaryKeepsItsBytes) {
  TemporaryDirectory directory;
  CStdioFile file(directory.Write("a.txt", "a\r\nb").c_str(), CFile::modeRead | CFile::typeBinary);
  EXPECT_EQ(ReadAll(file), "a\r\nb");
}

// The first CR lies behind what a buffer holds.
TEST(TextFile, ThatComesThroughAPipeIsReadWhole) {
  std::string const line(100000, 'x');
  Pipe const pipe(line + "\r\n" + line + "\n");
  CStdioFile file(pipe.Name().c_str(), CFile::modeRead);
  EXPECT_EQ(ReadAll(file), line + "\n" + line + "\n");
}

TEST(File, ThatIsAPipeThrowsOnASeekItCannotDoAndLosesNothing) {
  Pipe const pipe("one\r\ntwo\n");
  CStdioFile file(pipe.Name().c_str(), CFile::modeRead | CFile::typeBinary);
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_THROW(file.Seek(0, CFile::end), CFileException);
  EXPECT_THROW(file.Seek(0, CFile::begin), CFileException);
  EXPECT_THROW(file.GetLength(), CFileException);
  EXPECT_EQ(ReadAll(file), "ne\r\ntwo\n");
}

TEST(TextFile, SharesItsPositionWithFscanf) {
  TemporaryDirectory directory;
  CStdioFile file(directory.Write("a.txt", "12\r\n34x56").c_str(), CFile::modeRead);
  int number = 0;
  ASSERT_EQ(std::fscanf(file.m_pStream, " %d", &number), 1);
  EXPECT_EQ(number, 12);
  char byte = 0;
  ASSERT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_EQ(byte, '\n');
  ASSERT_EQ(std::fscanf(file.m_pStream, " %d", &number), 1);
  EXPECT_EQ(number, 34);
  EXPECT_EQ(ReadAll(file), "x56");
}

TEST(TextFile, CountsPlacesInTheTextAsItIsRead) {
  TemporaryDirectory directory;
  CStdioFile file(directory.Write("a.txt", "a\r\nb\r\nc").c_str(), CFile::modeRead);
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_EQ(file.GetLength(), 5);
  EXPECT_EQ(ReadAll(file), "\nb\nc");
  EXPECT_EQ(file.Seek(2, CFile::begin), 2);
  EXPECT_EQ(ReadAll(file), "b\nc");
  EXPECT_EQ(file.Seek(-1, CFile::end), 4);
  EXPECT_EQ(ReadAll(file), "c");
}

TEST(TextFile, LongerThanTheBuffersOfItsStreamsIsReadWhole) {
  TemporaryDirectory directory;
  std::string text;
  std::string expected;
  for (int line = 0; line < 5000; ++line) {
    text += std::to_string(line) + "\r\n";
    expected += std::to_string(line) + "\n";
  }
  CStdioFile file(directory.Write("a.txt", text).c_str(), CFile::modeRead);
  EXPECT_EQ(ReadAll(file), expected);
}

}  // namespace
