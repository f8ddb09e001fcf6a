#include <quillaven/platform/modules.h>

CVersionSource::~CVersionSource() = default;

namespace {

CVersionSource &BuiltInSource() {
  static CVersionSource source;
  return source;
}

CVersionSource *g_source = nullptr;  // null: the built-in one

}  // namespace

CVersionSource *SetVersionSource(CVersionSource *source) {
  CVersionSource *before = &GetVersionSource();
  g_source = source;
  return before;
}

CVersionSource &GetVersionSource() {
  return g_source != nullptr ? *g_source : BuiltInSource();
}
