#include <filesystem>
#include <system_error>

#include "apps/program_path.h"

std::string ProgramPath() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).string();
}
