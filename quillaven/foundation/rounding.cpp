#include <quillaven/foundation/rounding_internal.h>

int LeadingInteger(char const *text, char const **end) {
  auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (end != nullptr) *end = text;
  char const *at = text;
  while (*at == ' ' || (*at >= '\t' && *at <= '\r')) ++at;
  bool const negative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  if (!isDigit(*at)) return 0;

  constexpr long long kEnough = 1LL << 40;  // beyond every int; further digits change nothing
  long long number = 0;
  for (; isDigit(*at); ++at)
    if (number < kEnough) number = number * 10 + (*at - '0');
  if (end != nullptr) *end = at;
  return Truncated(static_cast<double>(negative ? -number : number));
}
