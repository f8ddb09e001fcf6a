// Numbers as printf's "%g" writes them, fast and with a point whatever the locale is.
//
//   char text[kNumberTextSize];
//   char *end = WriteG(text, raster.At(row, col));
//   file.write(text, end - text);

#pragma once

#include <string>

constexpr int kNumberTextSize = 32;

/// Writes a number with six significant digits and returns the end of the text; no zero byte
/// follows. The text is exactly printf's for every number, infinities and NaN included. `out` has
/// room for kNumberTextSize bytes.
char *WriteG(char *out, double value);

/// The same as a string.
std::string TextOfNumber(double value);
