#include <cstdlib>
#include <cstring>

#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/legends/line_scanner_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

void LineScanner::SkipBlanks() {
  while (IsBlank(*m_at)) ++m_at;
}

bool LineScanner::Matched(char const *end) {
  if (end == m_at) return false;
  m_at = end;
  ++m_fields;
  return true;
}

bool LineScanner::Keyword(char const *text) {
  std::size_t const length = std::strlen(text);
  if (std::strncmp(m_at, text, length) != 0) return false;
  m_at += length;
  return true;
}

bool LineScanner::Integer(int &value) {
  char const *end = nullptr;
  int const number = LeadingInteger(m_at, &end);
  if (end != m_at) value = number;
  return Matched(end);
}

bool LineScanner::Float(float &value) {
  SkipBlanks();
  PointLocale const numbers;
  char *end = nullptr;
  float const number = std::strtof(m_at, &end);
  if (end != m_at) value = number;
  return Matched(end);
}

bool LineScanner::Double(double &value) {
  SkipBlanks();
  PointLocale const numbers;
  char *end = nullptr;
  double const number = std::strtod(m_at, &end);
  if (end != m_at) value = number;
  return Matched(end);
}

bool LineScanner::Name(std::string &name) {
  SkipBlanks();
  std::size_t const length = std::strcspn(m_at, "\\");
  name.assign(m_at, length);
  return Matched(m_at + length);
}
