#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <quillaven/platform/directories_internal.h>

bool GetWorkingDirectory(char *buffer, std::size_t size) {
  // getcwd may scribble on a buffer that is too small, so it gets one of its own.
  char *directory = ::getcwd(nullptr, 0);
  if (directory == nullptr) return false;
  std::size_t const needed = std::strlen(directory) + 1;
  bool const fits = needed <= size;
  if (fits) std::memcpy(buffer, directory, needed);
  std::free(directory);
  if (!fits) errno = ERANGE;
  return fits;
}

bool ChangeWorkingDirectory(char const *path) {
  return ::chdir(path) == 0;
}
bool CreateOneDirectory(char const *path) {
  return ::mkdir(path, 0777) == 0;
}
bool RemoveFile(char const *path) {
  return ::unlink(path) == 0;
}
bool PathExists(char const *path) {
  return ::access(path, F_OK) == 0;
}

bool CanOpenFile(char const *path) {
  struct stat status {};
  return ::stat(path, &status) == 0 && !S_ISDIR(status.st_mode) && ::access(path, R_OK) == 0;
}

bool IsFileName(char const *name) {
  std::string const text = name;
  if (text.empty() || text.size() >= PATH_MAX) return false;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    std::size_t const end = text.find('/', begin);
    std::size_t const length = (end == std::string::npos ? text.size() : end) - begin;
    if (length > NAME_MAX) return false;
    if (end == std::string::npos) return length > 0;  // a closing slash names no file
    begin = end + 1;
  }
  return false;
}

bool MakeFullPath(char const *path, std::size_t limit, std::string &full) {
  std::string absolute = path;
  if (absolute.empty() || absolute[0] != '/') {
    std::vector<char> directory(PATH_MAX);
    if (!GetWorkingDirectory(directory.data(), directory.size())) return false;
    absolute = std::string(directory.data()) + "/" + absolute;
  }
  std::string result;
  for (std::size_t begin = 1; begin <= absolute.size();) {
    std::size_t const end = std::min(absolute.find('/', begin), absolute.size());
    std::string const component = absolute.substr(begin, end - begin);
    if (component == "..") {
      result.erase(result.empty() ? 0 : result.rfind('/'));
    } else if (!component.empty() && component != ".") {
      result += "/" + component;
    }
    begin = end + 1;
  }
  bool const closed = !*path ? false : absolute.back() == '/';
  if (result.empty() || closed) result += "/";
  if (result.size() + 1 > limit) {
    errno = ERANGE;
    return false;
  }
  full = result;
  return true;
}
