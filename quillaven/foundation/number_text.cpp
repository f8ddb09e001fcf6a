#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include <quillaven/foundation/number_text_internal.h>

namespace {

constexpr int kDigits = 6;
constexpr std::uint32_t kSixDigits = 1000000;
constexpr std::array<double, 23> kPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The two digits of every number below 100.
constexpr std::array<char, 200> kPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

void WriteSixDigits(char *out, std::uint32_t number) {
  std::uint32_t const high = number / 10000;
  std::uint32_t const middle = number / 100 % 100;
  std::uint32_t const low = number % 100;
  std::memcpy(out, &kPairs[std::size_t{2} * high], 2);
  std::memcpy(out + 2, &kPairs[std::size_t{2} * middle], 2);
  std::memcpy(out + 4, &kPairs[std::size_t{2} * low], 2);
}

char *WriteInteger(char *out, std::uint32_t number) {
  char digits[kDigits];
  WriteSixDigits(digits, number);
  int first = 0;
  while (first < kDigits - 1 && digits[first] == '0') ++first;
  std::memcpy(out, digits + first, static_cast<std::size_t>(kDigits - first));
  return out + (kDigits - first);
}

// Six digits d.ddddd times 10^exponent in the shape of "%g": zeros at the end go, and exponents
// from -4 to 5 are written without an "e".
char *WriteDigits(char *out, std::uint32_t number, int exponent) {
  char digits[kDigits];
  WriteSixDigits(digits, number);
  int count = kDigits;
  while (count > 1 && digits[count - 1] == '0') --count;

  if (exponent >= 0) {
    for (int i = 0; i < count || i <= exponent; ++i) {
      if (i == exponent + 1) *out++ = '.';
      *out++ = i < count ? digits[i] : '0';
    }
    return out;
  }
  *out++ = '0';
  *out++ = '.';
  for (int i = -1; i > exponent; --i) *out++ = '0';
  std::memcpy(out, digits, static_cast<std::size_t>(count));
  return out + count;
}

char *WriteByLibrary(char *out, double value) {
  return std::to_chars(out, out + kNumberTextSize, value, std::chars_format::general, kDigits).ptr;
}

// The decimal exponent of a positive number of ordinary size, or one below it.
int EstimateExponent(double value) {
  int const binary = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
  return binary * 1233 >> 12;  // log10(2) is 1233 / 4096, a little rounded down
}

// Rounds value x 10^(5 - exponent) to an integer of six digits. The product is exact but for the
// last bit of a double, so the rounding is sure unless the product lies next to a half; those few
// are left to the standard library. False for them.
bool ScaleToSixDigits(double value, int &exponent, std::uint32_t &number) {
  exponent = EstimateExponent(value);
  int power = kDigits - 1 - exponent;
  double scaled = power >= 0 ? value * kPowersOfTen[static_cast<std::size_t>(power)]
                             : value / kPowersOfTen[static_cast<std::size_t>(-power)];
  if (scaled >= kSixDigits - 0.5 + 1e-8) {  // the estimate was one too low
    ++exponent;
    --power;
    scaled = power >= 0 ? value * kPowersOfTen[static_cast<std::size_t>(power)]
                        : value / kPowersOfTen[static_cast<std::size_t>(-power)];
  }
  auto const whole = static_cast<std::uint32_t>(scaled);
  double const fraction = scaled - whole;
  // An error of one in the last bit is below 1e-9 for a number below 2^20.
  if (std::fabs(fraction - 0.5) < 1e-8) return false;
  number = whole + (fraction > 0.5 ? 1 : 0);
  return number >= kSixDigits / 10 && number < kSixDigits;
}

}  // namespace

char *WriteG(char *out, double value) {
  double const magnitude = std::fabs(value);
  // The range in which no "e" is written and every power of ten above is exact.
  if (!(magnitude >= 1e-4 && magnitude < 999999.0)) {
    if (value != 0.0) return WriteByLibrary(out, value);
    if (std::signbit(value)) *out++ = '-';
    *out++ = '0';
    return out;
  }
  char *start = out;
  if (value < 0) *out++ = '-';
  auto const whole = static_cast<std::uint32_t>(magnitude);
  if (magnitude == whole) return WriteInteger(out, whole);

  int exponent = 0;
  std::uint32_t number = 0;
  if (!ScaleToSixDigits(magnitude, exponent, number)) return WriteByLibrary(start, value);
  return WriteDigits(out, number, exponent);
}

std::string TextOfNumber(double value) {
  char text[kNumberTextSize];
  return {text, WriteG(text, value)};
}
