#include <clocale>
#include <locale.h>

#include <quillaven/platform/number_locale_internal.h>

PointLocale::PointLocale() {
  static locale_t const point = newlocale(LC_ALL_MASK, "C", locale_t{});
  m_before = uselocale(point);
}

PointLocale::~PointLocale() {
  uselocale(static_cast<locale_t>(m_before));
}
