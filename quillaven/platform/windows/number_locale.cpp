#include <clocale>
#include <locale.h>
#include <mutex>
#include <string>

#include <quillaven/platform/number_locale_internal.h>

namespace {

// What a thread that has a numeric locale of its own goes back to.
struct Before {
  int mode = 0;
  std::string locale;
};

std::string SetNumericLocale(char const *name) {
  std::string const before = setlocale(LC_NUMERIC, nullptr);
  setlocale(LC_NUMERIC, name);
  return before;
}

// The numeric locale of the process, where the runtime has none of threads: it
// is the point's from the first object that lives, in whatever thread, to the
// last one.
std::mutex g_guard;
int g_count = 0;
std::string g_before;

void EnterShared() {
  std::lock_guard const lock(g_guard);
  if (g_count++ == 0) g_before = SetNumericLocale("C");
}

void LeaveShared() {
  std::lock_guard const lock(g_guard);
  if (--g_count == 0) SetNumericLocale(g_before.c_str());
}

}  // namespace

PointLocale::PointLocale() : m_before(nullptr) {
  int const mode = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
  bool const isOfThread = mode != -1;
  if (isOfThread)
    m_before = new Before{mode, SetNumericLocale("C")};
  else
    EnterShared();
}

// A thread that had no locale of its own takes that of the process up again.
PointLocale::~PointLocale() {
  auto *const before = static_cast<Before *>(m_before);
  if (before != nullptr) {
    SetNumericLocale(before->locale.c_str());
    _configthreadlocale(before->mode);
    delete before;
  } else {
    LeaveShared();
  }
}
