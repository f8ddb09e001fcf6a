#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include <quillaven/platform/new_file_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

// The mode of the descriptor that this process has for a file; -1 if there is none.
int ModeOf(std::string const &path) {
  for (auto const &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry.path(), gone) != path) continue;
    return ::fcntl(std::stoi(entry.path().filename()), F_GETFL) & O_ACCMODE;
  }
  return -1;
}

TEST(NewFileHere, IsOpenedForWhatItIsAskedFor) {
  TemporaryDirectory const directory;
  std::string const path = directory.Path("a.txt");
  NewFile written(path.c_str(), NewFile::Access::kWrite);
  EXPECT_EQ(ModeOf(path), O_WRONLY);
  EXPECT_TRUE(written.Close());
  NewFile const both(path.c_str(), NewFile::Access::kReadAndWrite);
  EXPECT_EQ(ModeOf(path), O_RDWR);
}

}  // namespace
