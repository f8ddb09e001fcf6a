// Numbers as text, a bounded copy of a string, and a normal random number.
//
//   std::string label = ftostr("%.1f m", 307.4f);     // 307.4 m
//   double step = RandomNormal();                     // mean 0, deviation 1

#pragma once

#include <string>

#include <quillaven/platform/api.h>

/// One number through a printf pattern. The pattern may hold text around its one conversion, which
/// must match the type (a float comes as a double). Numbers have a point, whatever the locale is.
/// The text is cut at 4095 bytes.
QUILLAVEN_API std::string itostr(char const *format, int value);
QUILLAVEN_API std::string litostr(char const *format, long value);
QUILLAVEN_API std::string ftostr(char const *format, float value);
QUILLAVEN_API std::string lftostr(char const *format, double value);

/// strncpy, but always terminated: a zero byte stands at index size - 1 afterwards. Returns the
/// target. With size 0 nothing is written.
QUILLAVEN_API char *strNcpy(char *target, char const *source, unsigned int size);

/// A draw from the standard normal distribution by the Box-Muller transform. Two draws of rand()
/// give two numbers; the second is kept for the next call, for all callers together.
QUILLAVEN_API double RandomNormal();
