#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include <quillaven/platform/dynamic_library_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/runtime/module_version.h>

namespace {

constexpr std::uint16_t kDefaultCodePage = 1252;
constexpr std::uint32_t kSignature = 0xFEEF04BD;
constexpr std::size_t kPathLimit = 260;

static_assert(sizeof(tagVS_FIXEDFILEINFO) == 52);
static_assert(sizeof(_DllVersionInfo) == 20);

// A value within a block; no bytes if the block does not hold it.
struct FoundValue {
  char const *bytes = nullptr;
  std::size_t length = 0;
};

// What is loaded under the name itself comes before a file that the name is matched with.
void *FindModule(char const *module) {
  void *const loaded = LoadedModule(module);
  return loaded != nullptr || module == nullptr ? loaded : LoadedModule(SystemPath(module).c_str());
}

FoundValue Find(std::vector<unsigned char> const &block, char const *query) {
  void const *value = nullptr;
  unsigned int length = 0;
  if (!GetVersionSource().Query(block.data(), query, value, length) || value == nullptr) return {};
  return {static_cast<char const *>(value), length};
}

}  // namespace

CModuleVersion::~CModuleVersion() = default;

int CModuleVersion::GetFileVersionInfoA(char const *module) {
  m_CodePage = kDefaultCodePage;
  static_cast<tagVS_FIXEDFILEINFO &>(*this) = {};
  void *const loaded = FindModule(module);
  if (loaded == nullptr) return false;
  std::string const path = ModulePath(loaded, kPathLimit);
  if (path.empty()) return false;
  CVersionSource &source = GetVersionSource();
  unsigned int const size = source.BlockSize(path.c_str());
  if (size == 0) return false;
  m_VersionData.assign(size, 0);
  if (!source.ReadBlock(path.c_str(), size, m_VersionData.data())) return false;
  if (!ReadFixedRecord()) return false;
  ReadTranslation();
  return dwSignature == kSignature;
}

bool CModuleVersion::ReadFixedRecord() {
  FoundValue const record = Find(m_VersionData, "\\");
  if (record.length < sizeof(tagVS_FIXEDFILEINFO)) return false;
  std::memcpy(static_cast<tagVS_FIXEDFILEINFO *>(this), record.bytes, sizeof(tagVS_FIXEDFILEINFO));
  return true;
}

// Only the first translation of the table is ever used. Without one the language stays what an
// earlier file had, while the code page is the default: that is meant.
void CModuleVersion::ReadTranslation() {
  FoundValue const table = Find(m_VersionData, "\\VarFileInfo\\Translation");
  if (table.length < 4) return;
  std::memcpy(&m_Language, table.bytes, 2);
  std::memcpy(&m_CodePage, table.bytes + 2, 2);
}

CString CModuleVersion::GetValue(char const *key) const {
  if (m_VersionData.empty()) return {};
  CString query;
  query.Format("\\StringFileInfo\\%04x%04x\\%s", m_Language, m_CodePage, key != nullptr ? key : "");
  FoundValue const text = Find(m_VersionData, query);
  return std::string(text.bytes, std::find(text.bytes, text.bytes + text.length, '\0'));
}

int CModuleVersion::DllGetVersion(char const *module, _DllVersionInfo &info) {
  void *const loaded = FindModule(module);
  if (loaded == nullptr) return false;
  _DllVersionInfo record{};
  record.cbSize = sizeof record;
  std::optional<std::int32_t> const result = CallEntry(loaded, "DllGetVersion", &record);
  if (!result) return false;
  info = record;
  return *result >= 0;
}
