// Stands for a component library: registers and tells its version with the results it is built for.

#include <cstdint>

#include <quillaven/platform/api.h>

extern "C" QUILLAVEN_API std::int32_t DllRegisterServer() {
  return static_cast<std::int32_t>(REGISTRATION_RESULT);
}

// Version 4.71, build 2008, of a platform that tells whether the record came as it should: 1 if its
// first field held its size and the others 0, else 9.
extern "C" QUILLAVEN_API std::int32_t DllGetVersion(void *record) {
  auto *fields = static_cast<std::uint32_t *>(record);
  bool const asAgreed =
      fields[0] == 20 && fields[1] == 0 && fields[2] == 0 && fields[3] == 0 && fields[4] == 0;
  fields[1] = 4;
  fields[2] = 71;
  fields[3] = 2008;
  fields[4] = asAgreed ? 1 : 9;
  return static_cast<std::int32_t>(VERSION_RESULT);
}
