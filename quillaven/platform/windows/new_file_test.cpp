#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/existing_file_internal.h>
#include <quillaven/platform/new_file_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

TEST(NewFileHere, IsSharedWithNobodyWhileItIsOpen) {
  TemporaryDirectory const directory;
  std::string const path = directory.Path("a.txt");
  NewFile file(path.c_str());
  ASSERT_TRUE(file.IsOpen());
  ExistingFile const reader(path.c_str());
  EXPECT_FALSE(reader.IsOpen());
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  NewFile const second(path.c_str());
  EXPECT_FALSE(second.IsOpen());
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_TRUE(file.Write("x", 1));
  EXPECT_TRUE(file.Close());
  EXPECT_TRUE(ExistingFile(path.c_str()).IsOpen());
  EXPECT_EQ(directory.Read("a.txt"), "x");
}

TEST(NewFileHere, DoesNotEmptyAFileThatAnotherReads) {
  TemporaryDirectory const directory;
  std::string const path = directory.Write("a.txt", "kept");
  {
    ExistingFile const reader(path.c_str());
    ASSERT_TRUE(reader.IsOpen());
    NewFile const file(path.c_str());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  }
  EXPECT_EQ(directory.Read("a.txt"), "kept");
}

}  // namespace
