#include <algorithm>

#include <quillaven/platform/system_paths.h>

// Backslashes, and names without regard to case, are the system's own way.
std::string SystemPath(std::string const &name) {
  return name;
}

// The system takes either kind of slash, and no name holds one.
std::string LibraryPath(std::string const &name) {
  std::string path = name;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}
