#include <cstdio>
#include <io.h>

#include "apps/terminal.h"

bool StandardErrorIsTerminal() {
  return ::_isatty(::_fileno(stderr)) != 0;
}
