#include <quillaven/foundation/paths.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/directories_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr std::size_t kPathLimit = 260;
constexpr std::size_t kLongPathLimit = 4096;
constexpr std::size_t kWorkingDirectoryLimit = 256;

bool HasDrive(CString const &path) {
  return path.GetLength() > 1 && path[1] == ':';
}

// Cuts a path at its last backslash; false, and the path as it was, if it has none.
bool CutLastComponent(CString &path) {
  int const at = path.ReverseFind('\\');
  if (at < 0) return false;
  path = path.Left(at);
  return true;
}

bool BeginsWithoutCase(CString const &text, char const *lowerCasePrefix) {
  CString start = text.Left(CString(lowerCasePrefix).GetLength());
  start.MakeLower();
  return start == lowerCasePrefix;
}

// Whether `path` lies in `directory`. With a drive the directory is searched for anywhere in the
// path, as the lengths that are cut later assume it stands at the start and no one checks; without
// a drive it must stand there, since anywhere else would name a wrong file.
bool LiesIn(CString const &path, CString const &directory) {
  int const at = path.Find((directory + "\\").c_str());
  return HasDrive(directory) ? at >= 0 : at == 0;
}

// The absolute form of a name in the library's form, empty where the system cannot give it.
CString AbsolutePath(char const *name, std::size_t limit) {
  std::string full;
  if (!MakeFullPath(SystemPath(name).c_str(), limit, full)) return {};
  return LibraryPath(full);
}

// Enters a directory, which is made where it does not exist.
bool EnterDirectory(CString const &component) {
  std::string const directory = SystemPath(component);
  if (ChangeWorkingDirectory(directory.c_str())) return true;
  return CreateOneDirectory(directory.c_str()) && ChangeWorkingDirectory(directory.c_str());
}

// Walks down a path by changing the working directory, making what is missing on the way.
bool WalkDown(CString rest) {
  while (!rest.IsEmpty()) {
    int const at = rest.Find('\\');
    if (!EnterDirectory(at < 0 ? rest : rest.Left(at + 1))) return false;
    if (at < 0) return true;
    rest = rest.Mid(at + 1);
  }
  return true;
}

}  // namespace

CString GetRelativePath(CString base, CString path) {
  if (base.IsEmpty() || path.IsEmpty()) return path;
  base.MakeLower();
  path.MakeLower();
  if (base[0] != path[0]) return path;

  if (!CutLastComponent(base)) return path;
  if (LiesIn(path, base)) return "." + path.Right(path.GetLength() - base.GetLength());

  CString result = "..";
  for (;;) {
    // A search that runs out of backslashes has no common directory to find.
    if (!CutLastComponent(base)) return path;
    if (LiesIn(path, base)) return result + path.Right(path.GetLength() - base.GetLength());
    result += "\\..";
  }
}

CString GetFullPath(CString base, CString path) {
  if (BeginsWithoutCase(path, "file:") || BeginsWithoutCase(path, "ftp:")) return path;
  if (HasDrive(path)) return path;
  if (path.Left(1) == "\\") return HasDrive(base) ? CString(base.Left(2) + path) : path;
  if (path.Left(2) == ".\\") {
    // A base that is a name alone lies in no directory that could be put in front.
    if (!CutLastComponent(base)) return path.Mid(2);
    return base + path.Mid(1);
  }
  if (path.Left(1) == ".") {
    if (!CutLastComponent(base)) return path;
    while (path.Left(3) == "..\\") {
      path = path.Mid(3);
      CutLastComponent(base);
    }
    return base + "\\" + path;
  }
  return base.Left(base.ReverseFind('\\') + 1) + path;
}

CString GetShorterPath(CString path, int maximum) {
  if (path.GetLength() <= maximum) return path;
  int const limit = maximum - 7;
  CString tail;
  CString remembered;
  while (tail.GetLength() < limit) {
    int const at = path.ReverseFind('\\');
    if (at < 0) break;  // nothing is left to put in front of the tail
    remembered = tail;
    tail = path.Mid(at) + tail;
    path = path.Left(at);
  }
  return path.Left(3) + "... " + remembered;
}

void SplitPath(CString const &path, CString *drive, CString *directory, CString *name,
               CString *extension) {
  CString const full = AbsolutePath(path, kPathLimit);
  int const behindDrive = HasDrive(full) ? 2 : 0;
  int const behindDirectory = full.ReverseFind('\\') + 1;
  int const point = full.ReverseFind('.');
  int const behindName = point >= behindDirectory ? point : full.GetLength();
  if (drive != nullptr) *drive = full.Left(behindDrive);
  if (directory != nullptr) *directory = full.Mid(behindDrive, behindDirectory - behindDrive);
  if (name != nullptr) *name = full.Mid(behindDirectory, behindName - behindDirectory);
  if (extension != nullptr) *extension = full.Mid(behindName);
}

CString AbsPathOfFile(char const *file) {
  CString path = AbsolutePath(file, kLongPathLimit);
  CutLastComponent(path);
  return path + "\\";
}

int IsValidFileName(CString name) {  // NOLINT: by value for its callers
  return IsFileName(SystemPath(name).c_str()) ? 1 : 0;
}
int FileExists(CString name) {  // NOLINT: by value for its callers
  return CanOpenFile(SystemPath(name).c_str()) ? 1 : 0;
}

bool MakeDirectory(char const *path) {
  if (path == nullptr || *path == '\0') return false;
  char saved[kWorkingDirectoryLimit] = "";
  // Without a way back nothing is entered.
  if (!GetWorkingDirectory(saved, sizeof saved)) return false;
  bool made = false;
  try {
    made = WalkDown(path);
  } catch (...) {
    made = false;
  }
  ChangeWorkingDirectory(saved);
  return made;
}

bool MakeDirectory2(CString const &path) {
  CString text;
  bool mayCreate = true;
  for (std::size_t i = 0; i < path.size(); ++i) {
    char const c = path[i];
    text += c;
    if (c == '\\' && i + 1 < path.size() && path[i + 1] == '\\') {
      mayCreate = false;  // the head of a network path, which no one can make
    } else if (mayCreate && c == '\\') {
      std::string const directory = SystemPath(text);
      if (!PathExists(directory.c_str()) && !CreateOneDirectory(directory.c_str())) return false;
    } else if (!mayCreate) {
      mayCreate = true;
    }
  }
  return true;
}

bool MakeDirectoryForFile(char const *file) {
  if (file == nullptr || *file == '\0') return false;
  CString path = file;
  CutLastComponent(path);
  return MakeDirectory(path);
}

CString AppHelpFileDir() {
  CString const file = LibraryPath(GetApplication().HelpFilePath());
  return file.Left(file.ReverseFind('\\') + 1);
}

CPreserveDir::CPreserveDir() {
  char directory[kPathLimit];
  if (GetWorkingDirectory(directory, sizeof directory)) m_strDirectory = directory;
}

CPreserveDir::~CPreserveDir() {
  ChangeWorkingDirectory(m_strDirectory.c_str());
}
