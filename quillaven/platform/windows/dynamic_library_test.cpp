#include <filesystem>
#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/dynamic_library_internal.h>

namespace {

TEST(DynamicLibraryHere, ANullNameIsTheMainProgram) {
  EXPECT_NE(LoadedModule(nullptr), nullptr);
  EXPECT_EQ(LoadedModule(nullptr), ::GetModuleHandleA(nullptr));
  std::string const path = ModulePath(LoadedModule(nullptr), MAX_PATH);
  EXPECT_TRUE(std::filesystem::exists(path)) << path;
  EXPECT_EQ(LoadedModule(path.c_str()), LoadedModule(nullptr));
}

TEST(DynamicLibraryHere, AnEmptyNameOrOneThatIsNotLoadedIsNone) {
  EXPECT_EQ(LoadedModule(""), nullptr);
  EXPECT_EQ(LoadedModule("quillaven-no-such-library.dll"), nullptr);
}

TEST(DynamicLibraryHere, LoadedLibrariesAreKnownByNameWithoutRegardToCase) {
  EXPECT_NE(LoadedModule("kernel32.dll"), nullptr);
  EXPECT_EQ(LoadedModule("KERNEL32"), LoadedModule("kernel32.dll"));
}

TEST(DynamicLibraryHere, APathHasToFitWithItsZeroByte) {
  void *const module = LoadedModule("kernel32.dll");
  std::string const path = ModulePath(module, 1000);
  ASSERT_FALSE(path.empty());
  EXPECT_EQ(ModulePath(module, path.size() + 1), path);
  EXPECT_EQ(ModulePath(module, path.size()), "");
  EXPECT_EQ(ModulePath(module, 1), "");
  EXPECT_EQ(ModulePath(module, 0), "");
}

TEST(DynamicLibraryHere, TellsWhyAFileDoesNotLoad) {
  DynamicLibrary const library("quillaven-no-such-library.dll");
  EXPECT_FALSE(library.IsOpen());
  EXPECT_EQ(::GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

}  // namespace
