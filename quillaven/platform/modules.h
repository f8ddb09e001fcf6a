// Version blocks of programs and libraries, and where they are read from.
//
//   class MyVersions : public CVersionSource { ... };    // answers from a table of its own
//   MyVersions versions;
//   SetVersionSource(&versions);
//   CModuleVersion version;
//   version.GetFileVersionInfoA(nullptr);
//
// Windows has version blocks in its programs and libraries, and the source in force there reads them.
// Elsewhere the built-in source knows none. The object is not owned: put null in force before it is
// destroyed.

#pragma once

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windef.h>
#include <winver.h>
#else
#include <cstdint>

/// The published fixed part of a version block: 52 bytes, signature first.
struct tagVS_FIXEDFILEINFO {
  std::uint32_t dwSignature;
  std::uint32_t dwStrucVersion;
  std::uint32_t dwFileVersionMS;
  std::uint32_t dwFileVersionLS;
  std::uint32_t dwProductVersionMS;
  std::uint32_t dwProductVersionLS;
  std::uint32_t dwFileFlagsMask;
  std::uint32_t dwFileFlags;
  std::uint32_t dwFileOS;
  std::uint32_t dwFileType;
  std::uint32_t dwFileSubtype;
  std::uint32_t dwFileDateMS;
  std::uint32_t dwFileDateLS;
};
#endif

#if defined(_MSC_VER)
struct _DllVersionInfo;  // <shlwapi.h> has it
#else
/// What a library's DllGetVersion fills in: 20 bytes, of which the first four tell that size.
struct _DllVersionInfo {  // NOLINT(bugprone-reserved-identifier): the platform's name
  unsigned int cbSize;
  unsigned int dwMajorVersion;
  unsigned int dwMinorVersion;
  unsigned int dwBuildNumber;
  unsigned int dwPlatformID;
};
#endif

#include <quillaven/platform/api.h>

/// Reads version blocks. The operations of this class are the system's; override them to answer from
/// elsewhere.
class QUILLAVEN_API CVersionSource {
 public:
  CVersionSource() = default;
  CVersionSource(CVersionSource const &) = default;
  CVersionSource &operator=(CVersionSource const &) = default;
  virtual ~CVersionSource();

  /// Bytes of the version block of the program or library at `path`; 0 if it has none.
  virtual unsigned int BlockSize(char const *path);
  /// Reads the block into `block`, which has room for `bytes`.
  virtual bool ReadBlock(char const *path, unsigned int bytes, void *block);
  /// Finds a value in a block that was read. The queries are "\\" (the fixed record),
  /// "\\VarFileInfo\\Translation" (pairs of 16-bit words, language and code page), and
  /// "\\StringFileInfo\\%04x%04x\\NAME" (a text). `value` points into the block, and `length` counts
  /// its bytes, of a text with the zero byte at its end.
  virtual bool Query(void const *block, char const *query, void const *&value,
                     unsigned int &length);
};

/// Puts a source in force and returns the one before; null brings back the built-in one.
QUILLAVEN_API CVersionSource *SetVersionSource(CVersionSource *source);
QUILLAVEN_API CVersionSource &GetVersionSource();
