// A directory of its own for a test, removed with all it holds.
//
//   TemporaryDirectory directory;
//   directory.Write("Legends/a.txt", "Version 2\n");
//   EXPECT_EQ(directory.Read("Legends/a.txt"), "Version 2\n");

#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::random_device random;
    do {
      m_path = std::filesystem::temp_directory_path() /
               ("quillaven-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryDirectory(TemporaryDirectory const &) = delete;
  TemporaryDirectory &operator=(TemporaryDirectory const &) = delete;

  /// The full path of a file in it, in the system's form.
  std::string Path(std::string const &name = {}) const {
    return name.empty() ? m_path.string() : (m_path / name).string();
  }
  /// Writes bytes to a file, with the directories on its way, and returns its full path.
  std::string Write(std::string const &name, std::string const &bytes) const {
    std::filesystem::create_directories((m_path / name).parent_path());
    std::ofstream file(m_path / name, std::ios::binary);
    file << bytes;
    return Path(name);
  }
  std::string Read(std::string const &name) const { return Content(name, std::ios::binary); }
  /// A text file, each line with a line feed alone at its end, as the system's text mode gives it.
  std::string ReadText(std::string const &name) const { return Content(name, std::ios::in); }
  bool Has(std::string const &name) const { return std::filesystem::exists(m_path / name); }

 private:
  std::string Content(std::string const &name, std::ios::openmode mode) const {
    std::ifstream file(m_path / name, mode);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::filesystem::path m_path;
};
