#include <quillaven/platform/modules.h>

// Programs and libraries have no version blocks here.

unsigned int CVersionSource::BlockSize(char const * /*path*/) {
  return 0;
}

bool CVersionSource::ReadBlock(char const * /*path*/, unsigned int /*bytes*/, void * /*block*/) {
  return false;
}

bool CVersionSource::Query(void const * /*block*/, char const * /*query*/, void const *& /*value*/,
                           unsigned int & /*length*/) {
  return false;
}
