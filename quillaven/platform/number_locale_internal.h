// Numbers with a point, whatever setlocale says.
//
//   PointLocale const numbers;
//   std::sscanf(line, "DisplayMin %lg", &minimum);
//
// While one of these lives, the C library's printf, scanf and strtod families of this thread work
// as in the "C" locale. Nothing else of the process changes, but for one case: a Windows runtime that
// keeps no locale of threads (msvcrt.dll of Wine and of old systems). There the numeric locale of the
// whole process is "C" from the first of these objects to the last one, in whatever thread they live,
// and a setlocale that another thread calls meanwhile is lost.

#pragma once

class PointLocale {
 public:
  PointLocale();
  ~PointLocale();
  PointLocale(PointLocale const &) = delete;
  PointLocale &operator=(PointLocale const &) = delete;

 private:
  void *m_before;  // what to go back to, as the system keeps it
};
