#include <cstdio>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

#include <quillaven/platform/files.h>

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

// A pipe with a name, which can be read as a file but not gone back in.
class NamedPipe : public testing::TestWithParam<unsigned int> {
 protected:
  // Opens a pipe through which this text comes.
  void Open(std::string const &text) {
    std::string const path = directory.Path("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    writer = std::thread([path, text] {
      std::FILE *pipe = std::fopen(path.c_str(), "wb");
      std::fputs(text.c_str(), pipe);
      std::fclose(pipe);
    });
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeRead | GetParam()));
  }
  void TearDown() override {
    if (writer.joinable()) writer.join();
  }

  TemporaryDirectory directory;
  CStdioFile file;
  std::thread writer;
};

TEST_P(NamedPipe, ThrowsOnASeekItCannotDoAndLosesNothing) {
  Open("one\ntwo\n");
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_EQ(CauseOfSeek(file, 0, CFile::end), CFileException::badSeek);
  EXPECT_EQ(CauseOfSeek(file, 0, CFile::begin), CFileException::badSeek);
  EXPECT_THROW(file.GetLength(), CFileException);
  EXPECT_EQ(ReadAll(file), "ne\ntwo\n");
}

INSTANTIATE_TEST_SUITE_P(Types, NamedPipe, testing::Values(CFile::typeText, CFile::typeBinary),
                         [](auto const &type) {
                           return type.param == CFile::typeText ? "Text" : "Binary";
                         });

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

}  // namespace
