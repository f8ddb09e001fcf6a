#include <quillaven/platform/stamp_font_internal.h>

CStampImage DrawWithBuiltInFont(char const * /*text*/) {
  return {};
}
