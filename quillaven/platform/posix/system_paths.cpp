#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <sys/stat.h>

#include <quillaven/platform/system_paths.h>

namespace {

bool Exists(std::string const &path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualWithoutCase(std::string const &a, std::string const &b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

// The entry of `directory` that equals `name` but for case; the first in byte order if there are
// several, so that the answer does not depend on the order of the directory. `name` if there is
// none.
std::string MatchInDirectory(std::string const &directory, std::string const &name) {
  DIR *open = ::opendir(directory.empty() ? "." : directory.c_str());
  if (open == nullptr) return name;
  std::string found;
  while (dirent const *entry = ::readdir(open)) {
    std::string const candidate = entry->d_name;
    if (EqualWithoutCase(candidate, name) && (found.empty() || candidate < found))
      found = candidate;
  }
  ::closedir(open);
  return found.empty() ? name : found;
}

}  // namespace

std::string SystemPath(std::string const &name) {
  int const lastError = errno;
  std::string result;
  if (Exists(name)) {
    result = name;
  } else {
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');
    for (std::size_t at = 0; at < path.size();) {
      std::size_t const end = std::min(path.find('/', at), path.size());
      std::string const component = path.substr(at, end - at);
      if (!component.empty() && !Exists(result + component))
        result += MatchInDirectory(result, component);
      else
        result += component;
      if (end < path.size()) result += '/';
      at = end + 1;
    }
  }
  errno = lastError;  // a look at a name is no failure of the operation that the name is for
  return result;
}

std::string LibraryPath(std::string const &name) {
  std::string path = name;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}
