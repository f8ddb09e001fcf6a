#include <cerrno>
#include <filesystem>

#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/platform/system_paths.h>

std::ifstream OpenInputFile(std::string const &name, std::ios::openmode mode) {
  std::string const path = SystemPath(name);
  std::ifstream stream(path, mode | std::ios::in);
  std::error_code ignored;
  if (stream && std::filesystem::is_directory(path, ignored)) {
    stream.close();
    stream.setstate(std::ios::failbit);
    errno = EISDIR;
  }
  return stream;
}
