#include <windows.h>

#include <quillaven/platform/modules.h>

unsigned int CVersionSource::BlockSize(char const *path) {
  DWORD unused = 0;
  return ::GetFileVersionInfoSizeA(path, &unused);
}

bool CVersionSource::ReadBlock(char const *path, unsigned int bytes, void *block) {
  return ::GetFileVersionInfoA(path, 0, bytes, block) != 0;
}

bool CVersionSource::Query(void const *block, char const *query, void const *&value,
                           unsigned int &length) {
  void *found = nullptr;
  UINT size = 0;
  if (!::VerQueryValueA(block, query, &found, &size) || found == nullptr) return false;
  value = found;
  length = size;
  return true;
}
