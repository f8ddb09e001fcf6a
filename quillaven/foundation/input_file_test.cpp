#include <string>

#include <gtest/gtest.h>

#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>

#include "tests/support/system_error.h"
#include "tests/support/temporary_directory.h"

namespace {

TEST(OpenInputFile, ReadsAFileByItsStoredName) {
  TemporaryDirectory directory;
  directory.Write("Legends/a.txt", "text");
  std::ifstream stream = OpenInputFile(directory.Path() + "\\legends\\A.txt");
  std::string word;
  stream >> word;
  EXPECT_EQ(word, "text");
}

TEST(OpenInputFile, FailsForADirectoryAsForAMissingFile) {
  TemporaryDirectory directory;
  EXPECT_FALSE(OpenInputFile(directory.Path()));
  EXPECT_FALSE(OpenInputFile(directory.Path("none"), std::ios::binary));
}

TEST(OpenInputFile, LeavesAReasonForTheReportOnADirectory) {
  TemporaryDirectory directory;
  SetLastSystemError(0);
  EXPECT_FALSE(OpenInputFile(directory.Path()));
  EXPECT_NE(LastSystemError(), 0UL);
}

}  // namespace
