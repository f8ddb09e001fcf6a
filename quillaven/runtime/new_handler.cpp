#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include <quillaven/platform/message_box_internal.h>
#include <quillaven/runtime/new_handler.h>
#include <quillaven/runtime/new_handler_internal.h>

namespace {

constexpr char kTitle[] = "Quillaven";

// All of this is constant before any code runs: a guard may be made before the library's load.
constinit int g_mode = 0;
constinit QuillavenNewHandler g_handler = nullptr;

// What the standard library calls: it knows no size and no result, so the size is told as 0, and
// "give up" is the exception that the plain form lets through and the nothrow form turns into null.
void CallHandler() {
  if (g_handler == nullptr || g_handler(0) == 0) throw std::bad_alloc();
}

// Shows a box in a process that has no memory. What the box itself cannot get must not bring the next
// box, and no failure of it may keep the process from what comes behind it.
template <class Show>
void Quietly(Show const &show) noexcept {
  CNewHandlerInstaller const quiet(AnsiCPPNewHandler);
  try {
    show();
  } catch (...) {
    return;
  }
}

void ShowOutOfMemoryBox() noexcept {
  Quietly([] { ShowMessageBox("Out of memory\nClose some applications and try again", kTitle); });
}

[[noreturn]] void EndForLackOfMemory(char const *name) noexcept {
  Quietly([name] {
    std::string const text = std::string("Not enough memory to run '") + name + "'\n" +
                             "Try again with a lower memory demanding simulation.";
    ShowMessageBox(text.c_str(), kTitle);
  });
  std::exit(1);
}

// Through a volatile pointer, so that no compiler leaves out a block that nobody writes to.
void AskForMemory(unsigned int bytes) {
  void *volatile block = ::operator new(bytes);
  ::operator delete(block);
}

std::unique_ptr<CNewHandlerInstaller> InstallAtLoad() noexcept {
  if (CNewHandlerInstaller::IsSomethingInstalled()) return nullptr;
  return std::unique_ptr<CNewHandlerInstaller>(
      new (std::nothrow) CNewHandlerInstaller(QuillavenVerboseNewHandler));
}

}  // namespace

constinit bool CNewHandlerInstaller::m_SomethingInstalled = false;

CNewHandlerInstaller::CNewHandlerInstaller(QuillavenNewHandler handler) noexcept
    : m_OldNewMode(std::exchange(g_mode, 1)),
      m_OldNewHandler(std::exchange(g_handler, handler)),
      m_OldStandardHandler(std::set_new_handler(handler != nullptr ? CallHandler : nullptr)) {
  m_SomethingInstalled = true;
}

CNewHandlerInstaller::~CNewHandlerInstaller() {
  std::set_new_handler(m_OldStandardHandler);
  g_handler = m_OldNewHandler;
  g_mode = m_OldNewMode;
}

bool CNewHandlerInstaller::IsSomethingInstalled() noexcept {
  return m_SomethingInstalled;
}

AllocationBehaviour CurrentAllocationBehaviour() noexcept {
  return {g_mode, g_handler, std::get_new_handler()};
}

int QuillavenVerboseNewHandler(unsigned int /*bytes*/) {
  ShowOutOfMemoryBox();
  throw std::bad_alloc();
}

int QuillavenVerboseNewHandlerWithExit(unsigned int /*bytes*/) {
  ShowOutOfMemoryBox();
  std::exit(1);
}

int AnsiCPPNewHandler(unsigned int /*bytes*/) {
  throw std::bad_alloc();
}

int VCNewHandler(unsigned int /*bytes*/) {
  return 0;
}

void CheckMemoryAvailable(unsigned int bytes, char const *name) {
  try {
    CNewHandlerInstaller const quiet(AnsiCPPNewHandler);
    AskForMemory(bytes);
  } catch (...) {
    EndForLackOfMemory(name);
  }
}

namespace {

// The load action: made when the library is loaded, gone when it is unloaded or the process ends.
std::unique_ptr<CNewHandlerInstaller> const g_installedAtLoad = InstallAtLoad();

}  // namespace
