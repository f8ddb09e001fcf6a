#include <quillaven/platform/stamp_font.h>
#include <quillaven/platform/system_stamp_internal.h>

CStampImage DrawSystemStamp(char const *text) {
  return DrawWithBuiltInFont(text);
}
