// Tells how a program finds the process when the library is loaded, and leaves it at the end.
//
//   load_action         the state at the start of main and at the end of the process, a line each
//   load_action ask     asks for memory that is not there
//   load_action guard   tells the state within a guard and behind it as well
//   load_action check   has CheckMemoryAvailable ask for it

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include <quillaven/runtime/new_handler.h>

#include "tests/support/allocation_count.h"
#include "tests/support/console_application.h"

namespace {

// Objects of this kind are made before those without a priority, of which the load action is one,
// and destroyed after them.
constexpr int kBeforeLoad = 200;

char const *StateOfProcess() {
  return std::get_new_handler() != nullptr ? "a handler" : "no handler";
}

struct TellerAtEnd {
  ~TellerAtEnd() { std::printf("at the end %s\n", StateOfProcess()); }
};
[[gnu::init_priority(kBeforeLoad)]] TellerAtEnd teller;

#if defined(GUARD_BEFORE_LOAD)
[[gnu::init_priority(kBeforeLoad)]] std::unique_ptr<CNewHandlerInstaller> guard =
    std::make_unique<CNewHandlerInstaller>(AnsiCPPNewHandler);
#else
std::unique_ptr<CNewHandlerInstaller> guard;
#endif

#if defined(NO_MEMORY_AT_LOAD)
struct MemoryShortage {
  MemoryShortage() { RefuseAllocationsFrom(sizeof(CNewHandlerInstaller)); }
};
[[gnu::init_priority(kBeforeLoad)]] MemoryShortage shortage;
#endif

void Tell(char const *when) {
  std::printf(
      "%s %s, %s\n", when, StateOfProcess(),
      CNewHandlerInstaller::IsSomethingInstalled() ? "something installed" : "nothing installed");
}

int Ask() {
  try {
    ::operator delete(::operator new(std::numeric_limits<std::ptrdiff_t>::max()));
  } catch (std::bad_alloc const &) {
    std::printf("bad_alloc\n");
    return 4;
  }
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  RefuseAllocationsFrom(0);
  ShowBoxesOnTheConsole();
  if (argc > 1 && std::strcmp(argv[1], "ask") == 0) return Ask();
  if (argc > 1 && std::strcmp(argv[1], "check") == 0) {
    RefuseAllocationsFrom(1000);
    CheckMemoryAvailable(1000, "a model");
  }
  Tell("at the start");
  if (argc > 1 && std::strcmp(argv[1], "guard") == 0) {
    {
      CNewHandlerInstaller const inner(AnsiCPPNewHandler);
      Tell("within a guard");
    }
    Tell("behind it");
  }
}
