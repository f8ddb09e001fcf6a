#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <unistd.h>

#include <quillaven/platform/dynamic_library_internal.h>

namespace {

namespace fs = std::filesystem;

constexpr char kMainProgram[] = "/proc/self/exe";

bool IsBare(std::string const &name) {
  return name.find('/') == std::string::npos;
}

// The loader looks for a bare name along its own path alone; the working directory comes first here,
// as it does where such names come from.
std::string WithDirectory(std::string const &path) {
  std::error_code ignored;
  return IsBare(path) && fs::exists(path, ignored) ? "./" + path : path;
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

bool IsMainProgram(std::string const &name) {
  std::error_code failed;
  if (IsBare(name)) return fs::read_symlink(kMainProgram, failed).filename() == name;
  return fs::equivalent(name, kMainProgram, failed);
}

// The file that is mapped at an address. Each line of the list is "begin-end", four fields and the
// path.
fs::path MappedFile(void const *address) {
  auto const wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream list("/proc/self/maps");
  for (std::string line; std::getline(list, line);) {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR, &begin, &end);
    if (wanted < begin || wanted >= end) continue;
    std::size_t const path = line.find('/');
    return path != std::string::npos ? line.substr(path) : std::string();
  }
  return {};
}

// The loader keeps the name that it was given. One that counts from the working directory of that
// time says nothing now, so that the file is looked up by its place in memory.
fs::path FileOf(link_map const &map) {
  std::error_code failed;
  if (map.l_name[0] == '\0') return fs::read_symlink(kMainProgram, failed);
  fs::path const path = map.l_name;
  bool const isFull = path.is_absolute() && path == path.lexically_normal();
  return isFull ? path : MappedFile(map.l_ld);
}

}  // namespace

DynamicLibrary::DynamicLibrary(std::string const &path) : m_module(Load(path)) {}

DynamicLibrary::~DynamicLibrary() {
  if (m_module != nullptr) ::dlclose(m_module);
}

// A module that is loaded under the name itself comes before a file of that name. To the loader the
// main program has no name, and what has no name is the main program.
void *LoadedModule(char const *name) {
  if (name == nullptr) return ModuleInMemory(nullptr);
  if (*name == '\0') return nullptr;
  if (void *const module = ModuleInMemory(name)) return module;
  if (IsMainProgram(name)) return ModuleInMemory(nullptr);
  return ModuleInMemory(WithDirectory(name).c_str());
}

std::string ModulePath(void *module, std::size_t limit) {
  link_map const *map = MapOf(module);
  if (map == nullptr) return {};
  fs::path const path = FileOf(*map);
  return path.native().size() < limit ? path.string() : std::string();
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
