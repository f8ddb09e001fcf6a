#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <unistd.h>

#include <quillaven/platform/dynamic_library_internal.h>

namespace {

// The loader looks for a bare name along its own path alone; the working directory comes first here,
// as it does where such names come from.
std::string WithDirectory(std::string const &path) {
  std::error_code ignored;
  bool const bare = path.find('/') == std::string::npos;
  return bare && std::filesystem::exists(path, ignored) ? "./" + path : path;
}

// The loader leaves no error number: the reason is why the file cannot be read, or that what can be
// read is no library for this process.
void *Load(std::string const &path) {
  std::string const file = WithDirectory(path);
  void *module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr && ::access(file.c_str(), R_OK) == 0) errno = ENOEXEC;
  return module;
}

link_map *MapOf(void *module) {
  link_map *map = nullptr;
  return ::dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

// The loader also searches what the module was linked with; only an entry of its own is taken.
void *EntryOf(void *module, char const *name) {
  void *entry = ::dlsym(module, name);
  if (entry == nullptr) return nullptr;
  Dl_info info{};
  void *owner = nullptr;
  if (::dladdr1(entry, &info, &owner, RTLD_DL_LINKMAP) == 0) return nullptr;
  return owner == MapOf(module) ? entry : nullptr;
}

// The handle stays valid after this reference is given back, for as long as the module is loaded.
void *ModuleInMemory(char const *file) {
  void *module = ::dlopen(file, RTLD_LAZY | RTLD_NOLOAD);
  if (module != nullptr) ::dlclose(module);
  return module;
}

}  // namespace

DynamicLibrary::DynamicLibrary(std::string const &path) : m_module(Load(path)) {}

DynamicLibrary::~DynamicLibrary() {
  if (m_module != nullptr) ::dlclose(m_module);
}

// A module that is loaded under the name itself comes before a file of that name.
void *LoadedModule(char const *name) {
  if (name == nullptr) return ModuleInMemory(nullptr);
  void *const module = ModuleInMemory(name);
  return module != nullptr ? module : ModuleInMemory(WithDirectory(name).c_str());
}

std::string ModulePath(void *module, std::size_t limit) {
  link_map const *map = MapOf(module);
  if (map == nullptr) return {};
  std::error_code failed;
  bool const isMainProgram = map->l_name[0] == '\0';
  std::filesystem::path const path = isMainProgram
                                         ? std::filesystem::read_symlink("/proc/self/exe", failed)
                                         : std::filesystem::absolute(map->l_name, failed);
  return failed || path.native().size() >= limit ? std::string() : path.string();
}

std::optional<std::int32_t> CallEntry(void *module, char const *name) {
  void *entry = EntryOf(module, name);
  if (entry == nullptr) return std::nullopt;
  return reinterpret_cast<std::int32_t (*)()>(entry)();
}

std::optional<std::int32_t> CallEntry(void *module, char const *name, void *argument) {
  void *entry = EntryOf(module, name);
  if (entry == nullptr) return std::nullopt;
  return reinterpret_cast<std::int32_t (*)(void *)>(entry)(argument);
}
