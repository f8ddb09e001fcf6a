#include <quillaven/platform/system_paths.h>

std::string SystemPath(std::string const &name) {
  return name;
}
std::string LibraryPath(std::string const &name) {
  return name;
}
