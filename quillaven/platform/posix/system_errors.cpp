#include <cerrno>
#include <climits>
#include <cstring>

#include <quillaven/platform/system_errors_internal.h>

unsigned long LastSystemError() {
  return static_cast<unsigned long>(errno);
}

std::optional<std::string> SystemErrorText(unsigned long code, char const *name) {
  if (code > INT_MAX) return std::nullopt;
  int const number = static_cast<int>(code);
  if (strerrordesc_np(number) == nullptr) return std::nullopt;
  std::string text = std::strerror(number);
  for (std::size_t at = 0; (at = text.find("%1", at)) != std::string::npos;) {
    text.replace(at, 2, name);
    at += std::strlen(name);
  }
  return text;
}
