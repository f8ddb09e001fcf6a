#include <cstddef>
#include <windows.h>

#include <quillaven/platform/system_errors_internal.h>

unsigned long LastSystemError() {
  return ::GetLastError();
}

// 0x3100: allocate the buffer, text from the system, arguments as an array. Inserts are not
// ignored, so that %1 takes the name; the line break at the end of the system's text stays.
std::optional<std::string> SystemErrorText(unsigned long code, char const *name) {
  constexpr DWORD kAllocateFromSystemWithArray = 0x3100;
  constexpr DWORD kUserDefaultLanguage = 0x400;
  // Some texts have more inserts than the name; they find nulls, up to the last there can be.
  constexpr std::size_t kMostInserts = 99;
  DWORD_PTR arguments[kMostInserts] = {reinterpret_cast<DWORD_PTR>(name)};
  char *buffer = nullptr;
  DWORD const length = ::FormatMessageA(kAllocateFromSystemWithArray, nullptr, code,
                                        kUserDefaultLanguage, reinterpret_cast<char *>(&buffer), 0,
                                        reinterpret_cast<va_list *>(arguments));
  if (length == 0 || buffer == nullptr) return std::nullopt;
  std::string text(buffer, length);
  ::LocalFree(buffer);
  return text;
}
