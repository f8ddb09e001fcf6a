// What happens when memory runs out, for a stretch of code and for the whole process.
//
//   CheckMemoryAvailable(500000000, "Land use model");   // ends the process if that is not there
//   {
//     CNewHandlerInstaller quiet(AnsiCPPNewHandler);     // from here a failure is a plain exception
//     TryLargeRaster();
//   }                                                    // the handler from before is back
//
// From the moment the library is loaded a failed allocation tells the user in plain words and then
// throws: QuillavenVerboseNewHandler is in force, unless a guard was made before. At the end of the
// process the handler from before the load comes back. The load is that of the shared library; of a
// static one a program has the load action only if it uses something of this header.
//
// The handler belongs to the process: a guard on one thread changes what a failure does on all, and
// guards are not synchronised.

#pragma once

#include <new>

#include <quillaven/platform/api.h>

/// What is called when an allocation fails, with the number of bytes asked for where the machine
/// tells it, else 0. A result of 0 lets the allocation fail; with any other it is tried again. A
/// handler that throws or ends the process does not return.
using QuillavenNewHandler = int (*)(unsigned int bytes);

/// A scope guard: puts a handler in force and brings the one before back. Guards nest. A null handler
/// stands for none: a failed allocation then throws std::bad_alloc. Costs a few stores; allocates
/// nothing.
///
/// The new mode is 1 meanwhile, which stands for "malloc too". It is a number that is kept and brought
/// back: malloc gives null as ever, even on Windows, where the C library could call a handler for it.
/// Handlers throw, and compilers take malloc for a function that never does: GCC ends the program where
/// a malloc that it calls directly throws, so code that looks for a null would end with the process.
class QUILLAVEN_API CNewHandlerInstaller {
 public:
  explicit CNewHandlerInstaller(QuillavenNewHandler handler) noexcept;
  ~CNewHandlerInstaller();
  /// Copies what the other guard brings back at its end: the mode and the handler it found.
  CNewHandlerInstaller &operator=(CNewHandlerInstaller const &) = default;
  /// A copy would bring the handler back twice.
  CNewHandlerInstaller(CNewHandlerInstaller const &) = delete;

  /// Whether any guard was ever made in this process. Stays true when guards go.
  static bool IsSomethingInstalled() noexcept;

 private:
  static bool m_SomethingInstalled;

  int m_OldNewMode;
  QuillavenNewHandler m_OldNewHandler;
  std::new_handler m_OldStandardHandler;  // what the standard library called before
};

/// Shows "Out of memory\nClose some applications and try again" in a box titled "Quillaven", then
/// throws std::bad_alloc. Memory that the box itself cannot get brings no second box, and what the
/// box throws goes no further; so it is for the other boxes of this header.
[[noreturn]] QUILLAVEN_API int QuillavenVerboseNewHandler(unsigned int bytes);
/// Shows the same box, then ends the process with exit(1).
[[noreturn]] QUILLAVEN_API int QuillavenVerboseNewHandlerWithExit(unsigned int bytes);
/// Throws std::bad_alloc, with no box.
[[noreturn]] QUILLAVEN_API int AnsiCPPNewHandler(unsigned int bytes);
/// Returns 0, so that the allocation fails quietly: new (std::nothrow) gives null, and so does an
/// ordinary operator new where the platform's may. The standard one may not; it throws
/// std::bad_alloc.
QUILLAVEN_API int VCNewHandler(unsigned int bytes);

/// Tells by trying whether a run will fit: asks for `bytes` and gives them back at once. If they
/// are not there, shows "Not enough memory to run '`name`'" with the advice to try a simulation
/// that demands less, and ends the process with exit(1), box or no box. A return means that the
/// block was there at that moment, nothing more; the handler is then the one from before.
QUILLAVEN_API void CheckMemoryAvailable(unsigned int bytes, char const *name);
