// Numbers with a point, whatever setlocale says.
//
//   PointLocale const numbers;
//   std::sscanf(line, "DisplayMin %lg", &minimum);
//
// While one of these lives, the C library's printf, scanf and strtod families of this thread work
// as in the "C" locale. Nothing else of the process changes.

#pragma once

class PointLocale {
 public:
  PointLocale();
  ~PointLocale();
  PointLocale(PointLocale const &) = delete;
  PointLocale &operator=(PointLocale const &) = delete;

 private:
  void *m_before;  // the locale to go back to, as the system keeps it
};
