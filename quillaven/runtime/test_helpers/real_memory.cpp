// Asks the allocator of the system for memory.
//
//   real_memory check BYTES    CheckMemoryAvailable
//   real_memory new BYTES      operator new
//   real_memory quiet BYTES    the nothrow form, under the handler that gives up quietly

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include <quillaven/runtime/new_handler.h>

#include "tests/support/console_application.h"

namespace {

char const *Tell(void *memory) {
  ::operator delete(memory);
  return memory != nullptr ? "there" : "null";
}

char const *Ask(std::string const &way, std::size_t bytes) {
  if (way == "check") {
    CheckMemoryAvailable(static_cast<unsigned int>(bytes), "x");
    return "there";
  }
  if (way == "new") return Tell(::operator new(bytes));
  CNewHandlerInstaller const guard(VCNewHandler);
  return Tell(::operator new(bytes, std::nothrow));
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) return 2;
  ShowBoxesOnTheConsole();
  try {
    std::puts(Ask(argv[1], std::strtoull(argv[2], nullptr, 10)));
  } catch (std::bad_alloc const &) {
    std::puts("bad_alloc");
  }
}
