#include <windows.h>

#include <quillaven/platform/system_box_internal.h>

int ShowSystemBox(char const *text, char const *title, unsigned int type) {
  return ::MessageBoxA(nullptr, text, title, type);
}
