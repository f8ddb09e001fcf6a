#include <windows.h>

#include "apps/program_path.h"

std::string ProgramPath() {
  std::string path(32768, '\0');
  path.resize(::GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}
