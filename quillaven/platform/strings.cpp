#include <cstdarg>
#include <cstdio>

#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/platform/strings.h>

void CString::MakeLower() {
  for (char &c : *this) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

void CString::Format(char const *format, ...) {
  PointLocale const numbers;
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  int const length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  std::string::operator=(std::move(text));
}
