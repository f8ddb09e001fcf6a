#include <clocale>
#include <locale.h>
#include <string>

#include <quillaven/platform/number_locale_internal.h>

// The C runtime keeps one numeric locale for the process unless a thread asks for its own.
PointLocale::PointLocale() {
  _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
  m_before = new std::string(setlocale(LC_NUMERIC, nullptr));
  setlocale(LC_NUMERIC, "C");
}

PointLocale::~PointLocale() {
  auto *before = static_cast<std::string *>(m_before);
  setlocale(LC_NUMERIC, before->c_str());
  delete before;
}
