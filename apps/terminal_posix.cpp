#include <unistd.h>

#include "apps/terminal.h"

bool StandardErrorIsTerminal() {
  return ::isatty(STDERR_FILENO) != 0;
}
