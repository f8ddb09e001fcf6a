#include "tests/support/console_application.h"

#if defined(_WIN32)

#include <cstdio>

#include <quillaven/platform/application.h>

namespace {

class ConsoleApplication : public CApplication {
 public:
  int DoMessageBox(char const *text, char const *title, unsigned int /*type*/,
                   unsigned int /*helpId*/) override {
    std::fprintf(stderr, "%s\n%s\n", title, text);
    return 1;
  }
};

}  // namespace

void ShowBoxesOnTheConsole() {
  static ConsoleApplication application;
  SetApplication(&application);
}

#else

void ShowBoxesOnTheConsole() {}

#endif
