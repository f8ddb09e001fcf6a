#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/random_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

// One formatter in four types. The pattern is the caller's and is not checked; only the length is.
template <class Number>
std::string Format(char const *format, Number value) {
  PointLocale const numbers;
  char buffer[4096] = "";
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
  std::snprintf(buffer, sizeof buffer, format, value);
#pragma GCC diagnostic pop
  return buffer;
}

// A uniform number strictly between 0 and 1. The guards never fire with a draw of 15 bits; they
// stand for a generator of larger range.
double UniformDraw() {
  double const u = (RandomDraw() + 1) * 3.0516646830846227e-05;
  if (u <= 0) return 3.051850947599719e-05;
  if (u >= 1) return 0.999969481490524;
  return u;
}

bool g_haveSaved = false;
double g_saved = 0.0;

}  // namespace

std::string itostr(char const *format, int value) {
  return Format(format, value);
}
std::string litostr(char const *format, long value) {
  return Format(format, value);
}
std::string ftostr(char const *format, float value) {
  return Format(format, static_cast<double>(value));
}
std::string lftostr(char const *format, double value) {
  return Format(format, value);
}

char *strNcpy(char *target, char const *source, unsigned int size) {
  if (size == 0) return target;
  // Fields of a fixed size need not end with a zero byte: nothing behind them is read.
  auto const *zero = static_cast<char const *>(std::memchr(source, 0, size));
  std::size_t const length = zero != nullptr ? static_cast<std::size_t>(zero - source) : size;
  std::memcpy(target, source, length);
  std::memset(target + length, 0, size - length);  // as strncpy pads
  target[size - 1] = '\0';
  return target;
}

int RandomDraw() {
  return std::rand() & kRandomMax;
}

double RandomNormal() {
  if (g_haveSaved) {
    g_haveSaved = false;
    return g_saved;
  }
  double const u = UniformDraw();
  double const v = UniformDraw();
  double const r = std::sqrt(-2.0 * std::log(u));
  double const a = 2.0 * std::acos(-1.0) * v;
  g_saved = r * std::sin(a);
  g_haveSaved = true;
  return r * std::cos(a);
}
