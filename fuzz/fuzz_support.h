// What every fuzz target needs: an application that shows nothing, and a folder of its own.

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <quillaven/platform/application.h>

class SilentApplication : public CApplication {
 public:
  SilentApplication()
      : m_folder(std::filesystem::temp_directory_path() /
                 ("quillaven-fuzz-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(m_folder / "Legends");
    SetApplication(this);
  }
  ~SilentApplication() override {
    SetApplication(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  SilentApplication(SilentApplication const &) = delete;
  SilentApplication &operator=(SilentApplication const &) = delete;

  int DoMessageBox(char const *, char const *, unsigned int, unsigned int) override { return 1; }
  std::string HelpFilePath() const override { return (m_folder / "fuzz.hlp").string(); }

  std::string Write(std::string const &name, std::uint8_t const *data, std::size_t size) const {
    std::string const path = (m_folder / name).string();
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<char const *>(data), static_cast<std::streamsize>(size));
    return path;
  }

 private:
  std::filesystem::path m_folder;
};
