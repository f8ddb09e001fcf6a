// Another working directory for a test; the one before is back at the end.
//
//   WorkingDirectory const inside(directory.Path());

#pragma once

#include <filesystem>

class WorkingDirectory {
 public:
  explicit WorkingDirectory(std::filesystem::path const &path)
      : m_before(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingDirectory() { std::filesystem::current_path(m_before); }
  WorkingDirectory(WorkingDirectory const &) = delete;
  WorkingDirectory &operator=(WorkingDirectory const &) = delete;

 private:
  std::filesystem::path m_before;
};
