#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/copy_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(CopyOneFile, CopiesEachByteOverWhatIsThere) {
  TemporaryDirectory directory;
  // Around the size of the pieces that copies are made in.
  for (std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200000U}) {
    SCOPED_TRACE(size);
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i % 251);
    std::string const from = directory.Write("from.bin", bytes);
    std::string const to = directory.Write("to.bin", std::string(300000, 'x'));
    ASSERT_TRUE(CopyOneFile(from.c_str(), to.c_str()));
    EXPECT_EQ(directory.Read("to.bin"), bytes);
    EXPECT_EQ(directory.Read("from.bin"), bytes);
  }
}

TEST(CopyOneFile, FailsWithoutASourceAndLeavesTheTarget) {
  TemporaryDirectory directory;
  std::string const to = directory.Write("to.bin", "kept");
  EXPECT_FALSE(CopyOneFile(directory.Path("none").c_str(), to.c_str()));
  EXPECT_NE(LastSystemError(), 0U);
  EXPECT_FALSE(CopyOneFile(directory.Path().c_str(), to.c_str()));  // a directory
  EXPECT_EQ(directory.Read("to.bin"), "kept");
}

TEST(CopyOneFile, FailsWhereNoTargetCanBeMade) {
  TemporaryDirectory directory;
  std::string const from = directory.Write("from.bin", "bytes");
  EXPECT_FALSE(CopyOneFile(from.c_str(), directory.Path("none/to.bin").c_str()));
  EXPECT_NE(LastSystemError(), 0U);
}

}  // namespace
