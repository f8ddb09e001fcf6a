#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include <quillaven/platform/dynamic_library_internal.h>

#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

TEST(DynamicLibraryHere, TellsWhyAFileDoesNotLoad) {
  TemporaryDirectory const directory;
  EXPECT_FALSE(DynamicLibrary(directory.Path("missing.so")).IsOpen());
  EXPECT_EQ(errno, ENOENT);
  std::string const text = directory.Write("text.so", std::string(5000, 'x'));
  EXPECT_FALSE(DynamicLibrary(text).IsOpen());
  EXPECT_EQ(errno, ENOEXEC);
}

TEST(DynamicLibraryHere, TheMainProgramIsKnownByItsFile) {
  EXPECT_EQ(ModulePath(LoadedModule(nullptr), 4096), fs::read_symlink("/proc/self/exe").string());
}

TEST(DynamicLibraryHere, TheMainProgramHasANameLikeOthers) {
  fs::path const program = fs::read_symlink("/proc/self/exe");
  void *const handle = LoadedModule(nullptr);
  EXPECT_EQ(LoadedModule(program.c_str()), handle);
  EXPECT_EQ(LoadedModule(program.filename().c_str()), handle);
  TemporaryDirectory const directory;
  fs::create_symlink(program, directory.Path("link"));
  EXPECT_EQ(LoadedModule(directory.Path("link").c_str()), handle);
  EXPECT_EQ(LoadedModule(""), nullptr);
}

// Part of every process, and of no file.
TEST(DynamicLibraryHere, AModuleWithoutAFileHasNoPath) {
  void *const module = LoadedModule("linux-vdso.so.1");
  if (module == nullptr) GTEST_SKIP() << "this system has none";
  EXPECT_EQ(ModulePath(module, 4096), "");
}

TEST(DynamicLibraryHere, APathHasToFitWithItsZeroByte) {
  std::string const path = fs::read_symlink("/proc/self/exe").string();
  EXPECT_EQ(ModulePath(LoadedModule(nullptr), path.size() + 1), path);
  EXPECT_EQ(ModulePath(LoadedModule(nullptr), path.size()), "");
}

TEST(DynamicLibraryHere, LibrariesOfThisProgramAreKnownByName) {
  void *const library = LoadedModule("libc.so.6");
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(fs::path(ModulePath(library, 4096)).filename(), "libc.so.6");
  EXPECT_EQ(LoadedModule("libquillaven-no-such.so"), nullptr);
}

// The loader would find getpid in the C library that the program uses.
TEST(DynamicLibraryHere, EntriesOfOtherLibrariesAreNotTheProgramsOwn) {
  EXPECT_FALSE(CallEntry(LoadedModule(nullptr), "getpid").has_value());
  EXPECT_TRUE(CallEntry(LoadedModule("libc.so.6"), "getpid").has_value());
}

}  // namespace
