#include <vector>
#include <windows.h>

#include <quillaven/platform/dynamic_library_internal.h>

namespace {

FARPROC EntryOf(void *module, char const *name) {
  return ::GetProcAddress(static_cast<HMODULE>(module), name);
}

// By way of void *: the entry is of another type than the one that it is looked up as.
template <typename Entry>
Entry As(FARPROC entry) {
  return reinterpret_cast<Entry>(reinterpret_cast<void *>(entry));
}

}  // namespace

DynamicLibrary::DynamicLibrary(std::string const &path) : m_module(::LoadLibraryA(path.c_str())) {}

DynamicLibrary::~DynamicLibrary() {
  if (m_module != nullptr) ::FreeLibrary(static_cast<HMODULE>(m_module));
}

void *LoadedModule(char const *name) {
  return ::GetModuleHandleA(name);
}

// A path that fills the buffer to its end was cut.
std::string ModulePath(void *module, std::size_t limit) {
  std::vector<char> path(limit, '\0');
  DWORD const length =
      ::GetModuleFileNameA(static_cast<HMODULE>(module), path.data(), static_cast<DWORD>(limit));
  return length < limit ? std::string(path.data(), length) : std::string();
}

std::optional<std::int32_t> CallEntry(void *module, char const *name) {
  FARPROC const entry = EntryOf(module, name);
  if (entry == nullptr) return std::nullopt;
  return static_cast<std::int32_t>(As<HRESULT(STDAPICALLTYPE *)()>(entry)());
}

std::optional<std::int32_t> CallEntry(void *module, char const *name, void *argument) {
  FARPROC const entry = EntryOf(module, name);
  if (entry == nullptr) return std::nullopt;
  return static_cast<std::int32_t>(As<HRESULT(STDAPICALLTYPE *)(void *)>(entry)(argument));
}
