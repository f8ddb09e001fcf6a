#include <cstdio>

#include <quillaven/platform/system_box_internal.h>

int ShowSystemBox(char const *text, char const *title, unsigned int /*type*/) {
  std::fprintf(stderr, "%s\n%s\n", title, text);
  return 1;
}
