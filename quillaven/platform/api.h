// Marks what the shared library exports.
//
//   class QUILLAVEN_API CMapLegend { ... };
//   QUILLAVEN_API std::string itostr(char const *format, int value);
//
// All else is hidden: the library is built with hidden visibility, and the exported symbols are a
// committed list that a test compares. QUILLAVEN_STATIC is for programs that have the library's code
// within them, as its own unit tests do.

#pragma once

#if defined(_WIN32)
#if defined(QUILLAVEN_BUILDING)
#define QUILLAVEN_API __declspec(dllexport)
#elif defined(QUILLAVEN_STATIC)
#define QUILLAVEN_API
#else
#define QUILLAVEN_API __declspec(dllimport)
#endif
#else
#define QUILLAVEN_API __attribute__((visibility("default")))
#endif

// Declares an instance of a template that the library holds: QUILLAVEN_API_INSTANCE(CGrid<float>);
// MinGW exports no inline member of an instance. A program that is told of the instance would ask the
// library for them; one that is not makes them itself, and finds the others in the library.
#if defined(_WIN32) && !defined(QUILLAVEN_BUILDING) && !defined(QUILLAVEN_STATIC)
#define QUILLAVEN_API_INSTANCE(...) static_assert(true)
#else
#define QUILLAVEN_API_INSTANCE(...) extern template class QUILLAVEN_API __VA_ARGS__
#endif
