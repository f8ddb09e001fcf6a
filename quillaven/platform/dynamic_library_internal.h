// Libraries that are loaded while the program runs, and entries that are called by name.
//
//   DynamicLibrary library(SystemPath(name));
//   if (!library.IsOpen()) return FileError(name, "Cannot load");    // the last error is the reason
//   std::optional<std::int32_t> result = CallEntry(library.Module(), "DllRegisterServer");
//
// A module is named by an opaque handle. One that was asked for by LoadedModule is not kept loaded.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

class DynamicLibrary {
 public:
  /// Loads a library; IsOpen tells whether that succeeded. A name without a directory is looked for
  /// in the working directory too.
  explicit DynamicLibrary(std::string const &path);
  ~DynamicLibrary();
  DynamicLibrary(DynamicLibrary const &) = delete;
  DynamicLibrary &operator=(DynamicLibrary const &) = delete;

  bool IsOpen() const { return m_module != nullptr; }
  void *Module() const { return m_module; }

 private:
  void *m_module;
};

/// The module of that name if it is loaded already, else null; nothing is loaded. A null name is the
/// main program, as its path or its bare file name are; an empty name is none.
void *LoadedModule(char const *name);

/// The full path of a loaded module, whatever the working directory is now; empty if that cannot be
/// told within `limit` bytes, of which one is the zero byte at its end.
std::string ModulePath(void *module, std::size_t limit);

/// Calls an entry that the module itself has; nothing if it has none. Entries of other libraries
/// that it uses do not count.
std::optional<std::int32_t> CallEntry(void *module, char const *name);
std::optional<std::int32_t> CallEntry(void *module, char const *name, void *argument);
