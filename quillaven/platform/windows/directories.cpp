#include <cstdlib>
#include <direct.h>
#include <io.h>
#include <vector>
#include <windows.h>

#include <quillaven/platform/directories_internal.h>

bool GetWorkingDirectory(char *buffer, std::size_t size) {
  return ::_getcwd(buffer, static_cast<int>(size)) != nullptr;
}

bool ChangeWorkingDirectory(char const *path) {
  return ::_chdir(path) == 0;
}
bool CreateOneDirectory(char const *path) {
  return ::_mkdir(path) == 0;
}
bool RemoveFile(char const *path) {
  return ::_unlink(path) == 0;
}
bool PathExists(char const *path) {
  return ::_access(path, 0) == 0;
}

bool CanOpenFile(char const *path) {
  OFSTRUCT opened{};
  return ::OpenFile(path, &opened, OF_EXIST) != HFILE_ERROR;
}

bool IsFileName(char const *name) {
  OFSTRUCT opened{};
  return ::OpenFile(name, &opened, OF_PARSE) != HFILE_ERROR;
}

bool MakeFullPath(char const *path, std::size_t limit, std::string &full) {
  std::vector<char> buffer(limit);
  if (::_fullpath(buffer.data(), path, limit) == nullptr) return false;
  full = buffer.data();
  return true;
}
