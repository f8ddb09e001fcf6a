// A library without the entries that are asked for; another one that it uses has them.

#include <cstdint>

#include <quillaven/platform/api.h>

extern "C" std::int32_t DllRegisterServer();

extern "C" QUILLAVEN_API std::int32_t CallTheOther() {
  return DllRegisterServer();
}
