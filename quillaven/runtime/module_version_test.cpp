#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/platform/dynamic_library_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/runtime/module_version.h>

#include "tests/support/temporary_directory.h"
#include "tests/support/working_directory.h"

namespace {

namespace fs = std::filesystem;

// The 13 fields of a fixed record: the signature, and 2 to 13.
std::string FixedRecord(std::uint32_t signature = 0xFEEF04BD) {
  std::uint32_t fields[13] = {signature};
  for (std::uint32_t i = 1; i < 13; ++i) fields[i] = i + 1;
  return {reinterpret_cast<char const *>(fields), sizeof fields};
}

std::string Words(std::vector<std::uint16_t> const &words) {
  return {reinterpret_cast<char const *>(words.data()), 2 * words.size()};
}

// Version blocks of a test: the values that a block answers with, by query. It is in force as long
// as it lives, and keeps what it is asked.
class TestVersions : public CVersionSource {
 public:
  TestVersions() : m_before(SetVersionSource(this)) {}
  ~TestVersions() override { SetVersionSource(m_before); }
  TestVersions(TestVersions const &) = delete;
  TestVersions &operator=(TestVersions const &) = delete;

  void Put(std::string const &query, std::string const &value) {
    m_places[query] = {m_block.size(), value.size()};
    m_block += value;
  }
  void Forget(std::string const &query) { m_places.erase(query); }

  unsigned int BlockSize(char const *path) override {
    paths.emplace_back(path);
    return static_cast<unsigned int>(m_block.size());
  }
  bool ReadBlock(char const *path, unsigned int bytes, void *block) override {
    paths.emplace_back(path);
    std::memcpy(block, m_block.data(), bytes);
    return reads;
  }
  bool Query(void const *block, char const *query, void const *&value,
             unsigned int &length) override {
    queries.emplace_back(query);
    blocks.push_back(block);
    auto const place = m_places.find(query);
    if (place == m_places.end()) return false;
    value = static_cast<char const *>(block) + place->second.first;
    length = static_cast<unsigned int>(place->second.second);
    return true;
  }

  bool reads = true;
  std::vector<std::string> paths;
  std::vector<std::string> queries;
  std::vector<void const *> blocks;

 private:
  CVersionSource *m_before;
  std::string m_block;
  std::map<std::string, std::pair<std::size_t, std::size_t>> m_places;
};

class ModuleVersion : public testing::Test {
 protected:
  // An English file of code page 1252.
  void PutUsualValues() {
    source.Put("\\", FixedRecord());
    source.Put("\\VarFileInfo\\Translation", Words({0x0409, 0x04e4}));
    source.Put("\\StringFileInfo\\040904e4\\FileVersion", std::string("4.71\0", 5));
  }
  void ExpectFieldsOf0() const {
    tagVS_FIXEDFILEINFO const zeros{};
    EXPECT_EQ(std::memcmp(static_cast<tagVS_FIXEDFILEINFO const *>(&version), &zeros, 52), 0);
  }

  TestVersions source;
  CModuleVersion version;
};

TEST_F(ModuleVersion, OnWhichNothingWasReadHasNoValues) {
  PutUsualValues();
  EXPECT_EQ(version.GetValue("FileVersion"), "");
  EXPECT_TRUE(source.queries.empty());
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, ReadsTheFixedRecordIntoItsFields) {
  PutUsualValues();
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.dwSignature, 0xFEEF04BDU);
  EXPECT_EQ(version.dwStrucVersion, 2U);
  EXPECT_EQ(version.dwFileVersionMS, 3U);
  EXPECT_EQ(version.dwFileVersionLS, 4U);
  EXPECT_EQ(version.dwProductVersionMS, 5U);
  EXPECT_EQ(version.dwProductVersionLS, 6U);
  EXPECT_EQ(version.dwFileFlagsMask, 7U);
  EXPECT_EQ(version.dwFileFlags, 8U);
  EXPECT_EQ(version.dwFileOS, 9U);
  EXPECT_EQ(version.dwFileType, 10U);
  EXPECT_EQ(version.dwFileSubtype, 11U);
  EXPECT_EQ(version.dwFileDateMS, 12U);
  EXPECT_EQ(version.dwFileDateLS, 13U);
}

TEST_F(ModuleVersion, OfNullIsThatOfTheMainProgram) {
  PutUsualValues();
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  ASSERT_EQ(source.paths.size(), 2U);
  EXPECT_TRUE(fs::equivalent(source.paths[0], ModulePath(LoadedModule(nullptr), 4096)));
  EXPECT_EQ(fs::path(source.paths[0]).stem(), "runtime_test");
  EXPECT_EQ(source.paths[1], source.paths[0]);
}

TEST_F(ModuleVersion, OfALibraryIsReadByItsFullPath) {
  PutUsualValues();
  DynamicLibrary const library(COMPONENT_REGISTERING);
  EXPECT_TRUE(version.GetFileVersionInfoA(COMPONENT_REGISTERING));
  EXPECT_TRUE(fs::path(source.paths.at(0)).is_absolute());
  EXPECT_TRUE(fs::equivalent(source.paths.at(0), COMPONENT_REGISTERING));
}

TEST_F(ModuleVersion, OfAModuleThatIsNotLoadedIsFalseWithAllFields0) {
  PutUsualValues();
  version.dwFileDateLS = 7;
  EXPECT_FALSE(version.GetFileVersionInfoA("quillaven-no-such-module"));
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, OfAFileThatIsOnlyOnDiskIsFalse) {
  PutUsualValues();
  EXPECT_FALSE(version.GetFileVersionInfoA(COMPONENT_REGISTERING));
  EXPECT_TRUE(source.paths.empty());
  EXPECT_EQ(LoadedModule(COMPONENT_REGISTERING), nullptr);  // it was not loaded by the question
}

TEST_F(ModuleVersion, OfAnEmptyNameIsFalse) {
  PutUsualValues();
  EXPECT_FALSE(version.GetFileVersionInfoA(""));
  EXPECT_TRUE(source.paths.empty());
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, OfTheMainProgramIsFoundByItsPathAndFileNameToo) {
  PutUsualValues();
  std::string const program = ModulePath(LoadedModule(nullptr), 4096);
  EXPECT_TRUE(version.GetFileVersionInfoA(program.c_str()));
  EXPECT_EQ(source.paths.at(0), program);
  EXPECT_TRUE(version.GetFileVersionInfoA(LibraryPath(program).c_str()));
  EXPECT_TRUE(version.GetFileVersionInfoA(fs::path(program).filename().string().c_str()));
  EXPECT_EQ(source.paths.back(), program);
}

// A folder of that name but for case has no part in it.
TEST_F(ModuleVersion, OfALoadedNameIsNotThatOfAFileInTheWorkingDirectory) {
  PutUsualValues();
  DynamicLibrary const library(COMPONENT_REGISTERING);
  fs::path const file = fs::absolute(COMPONENT_REGISTERING);
  std::string const name = fs::path(COMPONENT_REGISTERING).filename().string();
  std::string other = name;
  other[0] = 'L';
  TemporaryDirectory const directory;
  fs::create_directory(directory.Path(other));
  WorkingDirectory const inside(directory.Path());
  EXPECT_TRUE(version.GetFileVersionInfoA(name.c_str()));
  EXPECT_TRUE(fs::equivalent(source.paths.at(0), file));
}

void ExpectFullPath(fs::path const &path, fs::path const &file) {
  EXPECT_TRUE(path.is_absolute()) << path;
  EXPECT_EQ(path, path.lexically_normal());
  EXPECT_TRUE(fs::equivalent(path, file)) << path;
}

TEST_F(ModuleVersion, OfALibraryLoadedFromTheWorkingDirectoryIsReadByItsFullPathEverAfter) {
  PutUsualValues();
  TemporaryDirectory const directory;
  std::string const path = directory.Path("here.dll");
  fs::copy_file(COMPONENT_REGISTERING, path);
  for (std::string const name : {"./here.dll", "here.dll"}) {
    SCOPED_TRACE(name);
    WorkingDirectory const inside(directory.Path());
    DynamicLibrary const library(name);
    ASSERT_TRUE(library.IsOpen());
    EXPECT_TRUE(version.GetFileVersionInfoA(name.c_str()));
    ExpectFullPath(source.paths.back(), path);
    WorkingDirectory const elsewhere(fs::temp_directory_path().root_path());
    EXPECT_TRUE(version.GetFileVersionInfoA(path.c_str()));
    ExpectFullPath(source.paths.back(), path);
  }
}

// Copies a library to a path of that length.
std::string CopyToPathOf(std::size_t length, TemporaryDirectory const &directory) {
  fs::path folder = directory.Path();
  while (folder.native().size() + 102 < length) folder /= std::string(50, 'd');
  fs::create_directories(folder);
  fs::path const path = folder / std::string(length - folder.native().size() - 1, 'f');
  fs::copy_file(COMPONENT_REGISTERING, path);
  return path.string();
}

TEST_F(ModuleVersion, OfAPathOf260CharactersIsFalse) {
  PutUsualValues();
  TemporaryDirectory const directory;
  std::string const fits = CopyToPathOf(259, directory);
  std::string const tooLong = CopyToPathOf(260, directory);
  DynamicLibrary const one(fits);
  DynamicLibrary const other(tooLong);
  ASSERT_TRUE(one.IsOpen() && other.IsOpen());
  EXPECT_TRUE(version.GetFileVersionInfoA(fits.c_str()));
  source.paths.clear();
  EXPECT_FALSE(version.GetFileVersionInfoA(tooLong.c_str()));
  EXPECT_TRUE(source.paths.empty());
}

TEST_F(ModuleVersion, OfAFileWithoutABlockIsFalse) {
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(source.paths.size(), 1U);  // the size was asked for, nothing was read
  EXPECT_EQ(version.GetValue("FileVersion"), "");
}

TEST_F(ModuleVersion, OfABlockThatCannotBeReadIsFalse) {
  PutUsualValues();
  source.reads = false;
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_TRUE(source.queries.empty());
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, OfABlockWithoutAFixedRecordIsFalse) {
  PutUsualValues();
  source.Forget("\\");
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(source.queries, (std::vector<std::string>{"\\"}));
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, OfARecordThatIsTooShortIsFalse) {
  source.Put("\\", FixedRecord().substr(0, 51));
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  ExpectFieldsOf0();
}

TEST_F(ModuleVersion, OfAnotherSignatureIsFalseThoughAllIsRead) {
  source.Put("\\", FixedRecord(0xFEEF04BC));
  source.Put("\\VarFileInfo\\Translation", Words({0x0409, 0x04e4}));
  source.Put("\\StringFileInfo\\040904e4\\FileVersion", "4.71");
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.dwFileDateLS, 13U);
  EXPECT_EQ(version.GetValue("FileVersion"), "4.71");
}

TEST_F(ModuleVersion, AsksForTextsInLowerCaseHexadecimalOfFourDigits) {
  PutUsualValues();
  ASSERT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("FileVersion"), "4.71");
  EXPECT_EQ(source.queries, (std::vector<std::string>{"\\", "\\VarFileInfo\\Translation",
                                                      "\\StringFileInfo\\040904e4\\FileVersion"}));
}

TEST_F(ModuleVersion, HasNoTextForAKeyThatTheBlockDoesNotHold) {
  PutUsualValues();
  ASSERT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("CompanyName"), "");
  EXPECT_EQ(version.GetValue(""), "");
  EXPECT_EQ(version.GetValue(nullptr), "");
  EXPECT_EQ(version.GetValue(std::string(10000, 'k').c_str()), "");
}

TEST_F(ModuleVersion, TakesATextToItsZeroByteAndNoFurtherThanItIsLong) {
  PutUsualValues();
  source.Put("\\StringFileInfo\\040904e4\\Zero", std::string("one\0two\0", 8));
  source.Put("\\StringFileInfo\\040904e4\\Open", "three");
  source.Put("\\StringFileInfo\\040904e4\\Next", "four");
  source.Put("\\StringFileInfo\\040904e4\\Empty", "");
  ASSERT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("Zero"), "one");
  EXPECT_EQ(version.GetValue("Open"), "three");
  EXPECT_EQ(version.GetValue("Empty"), "");
}

TEST_F(ModuleVersion, OfAFileWithoutTranslationsHasTheCodePage1252) {
  source.Put("\\", FixedRecord());
  source.Put("\\StringFileInfo\\000004e4\\FileVersion", "1.0");
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("FileVersion"), "1.0");
}

TEST_F(ModuleVersion, TakesATableOfLessThanFourBytesForNone) {
  source.Put("\\", FixedRecord());
  source.Put("\\VarFileInfo\\Translation", Words({0x0409, 0x04b0}).substr(0, 3));
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  version.GetValue("x");
  EXPECT_EQ(source.queries.back(), "\\StringFileInfo\\000004e4\\x");
}

TEST_F(ModuleVersion, UsesTheFirstTranslationOnly) {
  source.Put("\\", FixedRecord());
  source.Put("\\VarFileInfo\\Translation", Words({0x0413, 0x04b0, 0x0409, 0x04e4}));
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  version.GetValue("x");
  EXPECT_EQ(source.queries.back(), "\\StringFileInfo\\041304b0\\x");
}

// That the language outlives its file looks odd and is meant; the code page does not.
TEST_F(ModuleVersion, KeepsTheLanguageOfAnEarlierFileWhereTheNextHasNone) {
  source.Put("\\", FixedRecord());
  source.Put("\\VarFileInfo\\Translation", Words({0x0413, 0x04b0}));
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  source.Forget("\\VarFileInfo\\Translation");
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  version.GetValue("x");
  EXPECT_EQ(source.queries.back(), "\\StringFileInfo\\041304e4\\x");
}

TEST_F(ModuleVersion, KeepsTheBlockUntilAnotherTakesItsPlace) {
  PutUsualValues();
  ASSERT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_FALSE(version.GetFileVersionInfoA("quillaven-no-such-module"));
  ExpectFieldsOf0();
  EXPECT_EQ(version.GetValue("FileVersion"), "4.71");
  EXPECT_TRUE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("FileVersion"), "4.71");
}

TEST_F(ModuleVersion, CopiedHasABlockOfItsOwn) {
  PutUsualValues();
  CModuleVersion assigned;
  std::vector<void const *> blocks;
  {
    CModuleVersion original;
    ASSERT_TRUE(original.GetFileVersionInfoA(nullptr));
    CModuleVersion const copied(original);
    assigned = copied;
    for (CModuleVersion const *each :
         {&std::as_const(original), &copied, &std::as_const(assigned)}) {
      EXPECT_EQ(each->GetValue("FileVersion"), "4.71");
      EXPECT_EQ(each->dwFileDateLS, 13U);
      blocks.push_back(source.blocks.back());
    }
  }
  EXPECT_NE(blocks[0], blocks[1]);
  EXPECT_NE(blocks[1], blocks[2]);
  EXPECT_EQ(assigned.GetValue("FileVersion"), "4.71");  // the others are gone
  assigned = *&assigned;
  EXPECT_EQ(assigned.GetValue("FileVersion"), "4.71");
}

TEST(ModuleVersionOfThisMachine, KnowsNoBlockOfThisProgram) {
  CModuleVersion version;
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("FileVersion"), "");
}

class VersionEntry : public testing::Test {
 protected:
  int Ask(char const *module) { return CModuleVersion::DllGetVersion(module, info); }
  void ExpectUntouched() const {
    EXPECT_EQ(info.cbSize, 1U);
    EXPECT_EQ(info.dwPlatformID, 5U);
  }
  _DllVersionInfo info = {1, 2, 3, 4, 5};
};

TEST_F(VersionEntry, IsGivenAnEmptyRecordOf20BytesAndFillsIt) {
  DynamicLibrary const library(COMPONENT_REGISTERING);
  EXPECT_TRUE(Ask(COMPONENT_REGISTERING));
  EXPECT_EQ(info.cbSize, 20U);
  EXPECT_EQ(info.dwMajorVersion, 4U);
  EXPECT_EQ(info.dwMinorVersion, 71U);
  EXPECT_EQ(info.dwBuildNumber, 2008U);
  EXPECT_EQ(info.dwPlatformID, 1U);  // the record came as agreed
}

TEST_F(VersionEntry, IsFoundByTheNameOfALoadedLibrary) {
  DynamicLibrary const library(COMPONENT_REGISTERING);
  EXPECT_TRUE(Ask(fs::path(COMPONENT_REGISTERING).filename().string().c_str()));
}

TEST_F(VersionEntry, IsFoundByAPathWithBackslashes) {
  DynamicLibrary const library(COMPONENT_REGISTERING);
  EXPECT_TRUE(Ask(LibraryPath(COMPONENT_REGISTERING).c_str()));
}

TEST_F(VersionEntry, ThatGivesAPositiveResultHasAnswered) {
  DynamicLibrary const library(COMPONENT_REFUSING);
  EXPECT_TRUE(Ask(COMPONENT_REFUSING));
  EXPECT_EQ(info.dwBuildNumber, 2008U);
}

TEST_F(VersionEntry, ThatGivesANegativeResultHasNot) {
  DynamicLibrary const library(COMPONENT_FAILING);
  EXPECT_FALSE(Ask(COMPONENT_FAILING));
  EXPECT_EQ(info.dwBuildNumber, 2008U);  // it was asked
}

TEST_F(VersionEntry, OfALibraryThatIsNotLoadedIsNotAsked) {
  EXPECT_FALSE(Ask(COMPONENT_REGISTERING));
  ExpectUntouched();
  EXPECT_EQ(LoadedModule(COMPONENT_REGISTERING), nullptr);
}

// A library that it uses has the entry; that does not count.
TEST_F(VersionEntry, IsTheLibrarysOwn) {
  DynamicLibrary const library(COMPONENT_WITHOUT_ENTRY);
  ASSERT_TRUE(library.IsOpen());
  EXPECT_FALSE(Ask(COMPONENT_WITHOUT_ENTRY));
  ExpectUntouched();
}

TEST_F(VersionEntry, OfTheMainProgramIsMissing) {
  EXPECT_FALSE(Ask(nullptr));
  ExpectUntouched();
}

}  // namespace
