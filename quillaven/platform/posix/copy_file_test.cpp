// Files that the system opens but cannot read or fill.

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/copy_file_internal.h>
#include <quillaven/platform/existing_file_internal.h>
#include <quillaven/platform/new_file_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

// The memory of this process as a file: nothing lies at its start.
constexpr char kUnreadable[] = "/proc/self/mem";

TEST(ExistingFile, TellsAFailureToReadFromItsEnd) {
  ExistingFile file(kUnreadable);
  ASSERT_TRUE(file.IsOpen());
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 0U);
  EXPECT_TRUE(file.Failed());
}

TEST(ExistingFile, DoesNotBelieveThatAFileOfTheSystemIsEmpty) {
  ExistingFile file("/proc/self/status");
  ASSERT_TRUE(file.IsOpen());
  EXPECT_FALSE(file.Left().has_value());
  char byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 1U);
  EXPECT_FALSE(file.Left().has_value());
}

TEST(NewFile, TellsThatADiskIsFull) {
  NewFile file("/dev/full");
  ASSERT_TRUE(file.IsOpen());
  EXPECT_FALSE(file.Write("abc", 3));
  EXPECT_EQ(errno, ENOSPC);
}

TEST(CopyOneFile, FailsWhenItsSourceCannotBeReadToItsEnd) {
  TemporaryDirectory directory;
  errno = 0;
  EXPECT_FALSE(CopyOneFile(kUnreadable, directory.Path("to.bin").c_str()));
  EXPECT_EQ(errno, EIO);
}

TEST(CopyOneFile, FailsWhenTheDiskIsFull) {
  TemporaryDirectory directory;
  EXPECT_FALSE(CopyOneFile(directory.Write("from.bin", "bytes").c_str(), "/dev/full"));
  EXPECT_EQ(errno, ENOSPC);
}

}  // namespace
