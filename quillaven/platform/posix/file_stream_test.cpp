#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/files.h>

#include "tests/support/pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string ReadAll(CFile &file) {
  std::string bytes;
  for (char byte = 0; file.Read(&byte, 1) == 1;) bytes += byte;
  return bytes;
}

int CauseOfSeek(CFile &file, long long offset, unsigned int from) {
  try {
    file.Seek(offset, from);
  } catch (CFileException const &reason) {
    return reason.m_cause;
  }
  return CFileException::none;
}

// On the other side it comes from a copy, which has places.
TEST(TextFileHere, ThatComesThroughAPipeThrowsOnASeekItCannotDoAndLosesNothing) {
  Pipe const pipe("one\ntwo\n");
  CStdioFile file(pipe.Name().c_str(), CFile::modeRead);
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_EQ(CauseOfSeek(file, 0, CFile::end), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, 0, CFile::begin), CFileException::badSeek);
  EXPECT_THROW(file.GetLength(), CFileException);
  EXPECT_EQ(ReadAll(file), "ne\ntwo\n");
}

TEST(TextFileHere, PlacesThatAreNoneThrowAndThePositionStays) {
  constexpr long long kMost = std::numeric_limits<long long>::max();
  constexpr long long kLeast = std::numeric_limits<long long>::min();
  TemporaryDirectory const directory;
  CStdioFile file(directory.Write("a.txt", "a\r\nb\r\nc").c_str(), CFile::modeRead);
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_EQ(CauseOfSeek(file, kMost, CFile::end), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, kLeast, CFile::end), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, -6, CFile::end), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, kLeast, CFile::begin), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, -2, CFile::current), CFileException::badSeek);
  EXPECT_EQ(file.Seek(0, CFile::current), 1);
  EXPECT_EQ(ReadAll(file), "\nb\nc");
}

// The memory of a process begins with bytes that nobody may read.
TEST(TextFileHere, OnADeviceThatFailsThrowsHardIo) {
  for (unsigned int const type : {CFile::typeText, CFile::typeBinary}) {
    CStdioFile file("/proc/self/mem", CFile::modeRead | type);
    try {
      char byte = 0;
      file.Read(&byte, 1);
      FAIL() << "nothing was thrown";
    } catch (CFileException const &reason) {
      EXPECT_EQ(reason.m_cause, CFileException::hardIO);
    }
  }
}

TEST(FileHere, OnAFullDeviceThrowsDiskFull) {
  CStdioFile file("/dev/full", CFile::modeWrite | CFile::typeBinary);
  file.Write("x", 1);  // stays in the buffer
  try {
    file.Close();
    FAIL() << "nothing was thrown";
  } catch (CFileException const &reason) {
    EXPECT_EQ(reason.m_cause, CFileException::diskFull);
  }
  file.Close();  // closed all the same
}

TEST(FileHere, ThatCannotBeClosedWholeFailsToOpenAnotherAndTellsWhy) {
  TemporaryDirectory directory;
  std::string const other = directory.Write("a", "abc");
  CStdioFile file("/dev/full", CFile::modeWrite | CFile::typeBinary);
  file.Write("x", 1);  // stays in the buffer
  CFileException reason;
  EXPECT_FALSE(file.Open(other.c_str(), CFile::modeRead, &reason));
  EXPECT_EQ(reason.m_cause, CFileException::diskFull);
  EXPECT_EQ(file.m_pStream, nullptr);
  EXPECT_TRUE(file.Open(other.c_str(), CFile::modeRead));
}

}  // namespace
