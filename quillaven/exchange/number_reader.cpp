#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>

#include <quillaven/exchange/number_reader_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}

constexpr std::array<double, 16> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::ptrdiff_t kExactDigits = 15;  // so many decimal digits fit a double exactly

}  // namespace

std::string TextReader::Line(std::size_t longest) {
  char const *limit = m_at + std::min(longest, Left());
  char const *end = std::find(m_at, limit, '\n');
  std::string line(m_at, end);
  m_at = end;
  if (m_end - m_at > 1 && m_at[0] == '\r' && m_at[1] == '\n') ++m_at;
  bool const ended = m_at == m_end || *m_at == '\n';
  if (m_at == m_end) {
    m_metEnd = true;
  } else if (ended) {
    ++m_at;
  }
  if (ended && !line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

bool TextReader::Stop(bool metEnd) {
  m_stopped = true;
  m_metEnd = m_metEnd || metEnd;
  return false;
}

// Short decimal numbers, as nearly all are, come from an integer and one exact power of ten: a
// single division that rounds as it must. All others go the slow way.
bool TextReader::Number(double &value) {
  if (m_stopped) return false;
  while (m_at != m_end && IsBlank(*m_at)) ++m_at;
  if (m_at == m_end) return Stop(true);

  char const *at = m_at;
  bool const negative = *at == '-';
  if (negative) ++at;
  char const *const digits = at;
  std::uint64_t number = 0;
  while (at != m_end && IsDigit(*at))
    number = number * 10 + static_cast<std::uint64_t>(*at++ - '0');
  std::ptrdiff_t count = at - digits;
  std::ptrdiff_t decimals = 0;
  if (at != m_end && *at == '.') {
    char const *const point = at++;
    while (at != m_end && IsDigit(*at))
      number = number * 10 + static_cast<std::uint64_t>(*at++ - '0');
    decimals = at - point - 1;
    count += decimals;
  }
  if (count == 0 || count > kExactDigits || at == m_end || !IsBlank(*at)) return SlowNumber(value);
  double const magnitude =
      static_cast<double>(number) / kPowersOfTen[static_cast<std::size_t>(decimals)];
  value = negative ? -magnitude : magnitude;
  m_at = at;
  return true;
}

bool TextReader::SlowNumber(double &value) {
  char const *at = m_at;
  bool const negative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  // A number begins with a digit or a point; names such as "inf" and "nan" are words.
  if (at == m_end) return Stop(true);
  if (!IsDigit(*at) && *at != '.') return Stop(false);
  double magnitude = 0;
  auto const [end, error] = std::from_chars(at, m_end, magnitude);
  if (error == std::errc::invalid_argument) return Stop(at + 1 == m_end);
  if (error == std::errc::result_out_of_range) {
    PointLocale const numbers;
    magnitude = std::strtod(std::string(at, end).c_str(), nullptr);  // infinite, or next to 0
  }
  value = negative ? -magnitude : magnitude;
  m_at = end;
  if (m_at == m_end) m_metEnd = true;
  return true;
}

bool LeadingNumber(std::string const &text, double &value) {
  return TextReader(text).Number(value);
}
