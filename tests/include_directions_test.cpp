// The library's layers: every include goes down, and nothing above platform knows the machine.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

fs::path const kRoot = QUILLAVEN_SOURCE_DIR;

// Directives alone: the words may stand in a text.
std::regex const kSystemTest(
    "^\\s*#.*(WIN32|WIN64|__linux|__unix|__APPLE__|_MSC_VER|__MINGW|__CYGWIN__|__has_include).*");

std::vector<fs::path> SourcesOf(fs::path const &folder) {
  std::vector<fs::path> sources;
  for (auto const &entry : fs::recursive_directory_iterator(kRoot / folder)) {
    std::string const extension = entry.path().extension().string();
    if (extension == ".h" || extension == ".cpp")
      sources.push_back(fs::relative(entry.path(), kRoot));
  }
  std::sort(sources.begin(), sources.end());
  return sources;
}

std::vector<std::string> LinesOf(fs::path const &source) {
  std::ifstream file(kRoot / source);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The layer number of each folder or unit that layers.txt names.
std::map<std::string, int> ReadLayers() {
  std::map<std::string, int> layers;
  int layer = 0;
  for (std::string const &line : LinesOf("tests/layers.txt")) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream names(line);
    for (std::string name; names >> name;) layers[name] = layer;
    ++layer;
  }
  return layers;
}

// A path below quillaven/ as a unit: maps/base_map.h and maps/base_map_test.cpp are maps/base_map.
std::string UnitOf(std::string path) {
  path = std::regex_replace(path, std::regex("\\.(h|cpp)$"), "");
  return std::regex_replace(path, std::regex("(_internal|_test)+$"), "");
}

int LayerOf(std::map<std::string, int> const &layers, std::string const &path) {
  if (auto unit = layers.find(UnitOf(path)); unit != layers.end()) return unit->second;
  auto folder = layers.find(path.substr(0, path.find('/')));
  return folder == layers.end() ? -1 : folder->second;
}

std::regex const kOwnInclude("^\\s*#\\s*include\\s*[<\"]quillaven/([^>\"]+)[>\"].*");
std::regex const kAnyInclude("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"].*");

TEST(IncludeDirections, NoIncludeRunsUpwards) {
  std::map<std::string, int> const layers = ReadLayers();
  int checked = 0;
  for (fs::path const &source : SourcesOf("quillaven")) {
    std::string const own = fs::relative(source, "quillaven").generic_string();
    if (own == "quillaven.h") continue;
    int const from = LayerOf(layers, own);
    ASSERT_GE(from, 0) << own << " lies in no layer of tests/layers.txt";
    for (std::string const &line : LinesOf(source)) {
      std::smatch match;
      if (!std::regex_match(line, match, kOwnInclude)) continue;
      ++checked;
      EXPECT_LE(LayerOf(layers, match[1]), from) << own << " includes " << match[1];
    }
  }
  EXPECT_GT(checked, 50);
}

// What knows the machine: the platform layer, the windows of each system with the mark of what their
// library exports, and what the program asks of a terminal and of its own file.
bool KnowsTheMachine(std::string const &source) {
  for (char const *place : {"quillaven/platform/", "desktop/wx/", "desktop/windows/",
                            "desktop/include/", "apps/terminal_", "apps/program_path_"})
    if (source.starts_with(place)) return true;
  return false;
}

// A header of this project, of the standard library, which has no extension, or of a library that is the
// same on every system.
bool IsKnownEverywhere(std::string const &header) {
  for (char const *begin :
       {"quillaven/", "tests/support/", "apps/", "benchmarks/", "fuzz/", "desktop/", "gtest/",
        "gmock/", "benchmark/", "CLI/", "stb/", "boost/", "gdal", "cpl_"})
    if (header.starts_with(begin)) return true;
  return header.find('.') == std::string::npos;
}

TEST(IncludeDirections, NothingAbovePlatformAndWindowsTestsForASystemOrNamesASystemHeader) {
  int checked = 0;
  for (char const *folder : {"quillaven", "desktop", "apps", "examples", "benchmarks", "fuzz"}) {
    for (fs::path const &source : SourcesOf(folder)) {
      std::string const name = source.generic_string();
      if (KnowsTheMachine(name)) continue;
      for (std::string const &line : LinesOf(source)) {
        EXPECT_FALSE(std::regex_match(line, kSystemTest)) << name << ": " << line;
        std::smatch match;
        if (!std::regex_match(line, match, kAnyInclude)) continue;
        ++checked;
        EXPECT_TRUE(IsKnownEverywhere(match[1])) << name << " includes " << match[1];
      }
    }
  }
  EXPECT_GT(checked, 500);
}

bool IsPublicHeader(fs::path const &source) {
  std::string const name = source.filename().string();
  return name.ends_with(".h") && !name.ends_with("_internal.h");
}

TEST(PublicHeaders, AreAllNamedByTheOneHeaderForEverything) {
  std::set<std::string> named;
  for (std::string const &line : LinesOf("quillaven/quillaven.h")) {
    std::smatch match;
    if (std::regex_match(line, match, kOwnInclude)) named.insert(match[1]);
  }
  std::set<std::string> found;
  for (fs::path const &source : SourcesOf("quillaven")) {
    std::string const own = fs::relative(source, "quillaven").generic_string();
    if (IsPublicHeader(source) && own != "quillaven.h") found.insert(own);
  }
  EXPECT_EQ(named, found);
}

TEST(PublicHeaders, AreShortAndOpenWithAComment) {
  for (fs::path const &source : SourcesOf("quillaven")) {
    if (!IsPublicHeader(source)) continue;
    std::vector<std::string> const lines = LinesOf(source);
    EXPECT_LT(lines.size(), 300U) << source;
    ASSERT_FALSE(lines.empty()) << source;
    EXPECT_TRUE(lines[0].starts_with("// ")) << source;
  }
}

}  // namespace
