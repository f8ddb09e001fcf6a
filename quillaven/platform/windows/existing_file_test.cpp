#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/existing_file_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

DWORD ErrorOfOpening(std::string const &path, DWORD access, DWORD sharing) {
  HANDLE const file =
      ::CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return ::GetLastError();
  ::CloseHandle(file);
  return ERROR_SUCCESS;
}

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

TEST(ExistingFileHere, IsSharedWithNobodyWhileItIsOpen) {
  TemporaryDirectory const directory;
  std::string const path = directory.Write("a.txt", "x");
  {
    ExistingFile const file(path.c_str());
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(ErrorOfOpening(path, GENERIC_READ, kShareAll), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(ErrorOfOpening(path, GENERIC_WRITE, kShareAll), DWORD{ERROR_SHARING_VIOLATION});
    ExistingFile const second(path.c_str());
    EXPECT_FALSE(second.IsOpen());
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  }
  EXPECT_EQ(ErrorOfOpening(path, GENERIC_READ, 0), DWORD{ERROR_SUCCESS});
}

TEST(ExistingFileHere, ThatAnotherReadsIsNotOpened) {
  TemporaryDirectory const directory;
  std::string const path = directory.Write("a.txt", "x");
  HANDLE const other =
      ::CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(other, INVALID_HANDLE_VALUE);
  ExistingFile const file(path.c_str());
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  ::CloseHandle(other);
}

}  // namespace
