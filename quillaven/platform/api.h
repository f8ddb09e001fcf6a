// Marks what the shared library exports.
//
//   class QUILLAVEN_API CMapLegend { ... };
//   QUILLAVEN_API std::string itostr(char const *format, int value);
//
// All else is hidden: the library is built with hidden visibility, and the exported symbols are a
// committed list that a test compares.

#pragma once

#if defined(_WIN32)
#if defined(QUILLAVEN_BUILDING)
#define QUILLAVEN_API __declspec(dllexport)
#else
#define QUILLAVEN_API __declspec(dllimport)
#endif
#else
#define QUILLAVEN_API __attribute__((visibility("default")))
#endif
