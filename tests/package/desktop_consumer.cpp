// A program outside the tree that knows no toolkit and still has windows, where there is a display.
#include <cstdio>

#include <quillaven/desktop/desktop_application.h>
#include <quillaven/functions/spline.h>

int main() {
  CDesktopApplication application;
  if (!application.HasDisplay()) {
    std::puts("no display");
    return 0;
  }
  CSpline table;
  std::printf("%u\n", CSpline::DoModal(table));
}
