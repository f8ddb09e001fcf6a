// Names of files: relative, full and short forms, checks, and directories.
//
//   CString stored = GetRelativePath("C:\\Data\\map.txt", "C:\\Data\\Sub\\x.img");  // .\sub\x.img
//   CString opened = GetFullPath("C:\\Data\\map.txt", stored);  // C:\Data\sub\x.img
//
// The only separator is the backslash; a slash means nothing here. A drive is the first two
// characters. Bases are paths of files, not of directories. Names meet the file system through
// SystemPath, and come back from it through LibraryPath.

#pragma once

#include <string>

#include <quillaven/platform/api.h>
#include <quillaven/platform/strings.h>

/// `path`, relative to the directory of the file `base`, in lower case. Unchanged if either is
/// empty; in lower case but otherwise unchanged without a common drive or a common directory.
QUILLAVEN_API CString GetRelativePath(CString base, CString path);

/// The inverse of GetRelativePath. Locations that begin with "file:" or "ftp:" (in any case) and
/// paths with a drive come back unchanged.
QUILLAVEN_API CString GetFullPath(CString base, CString path);

/// A form for display of at most `maximum` characters: drive, dots and the last components.
QUILLAVEN_API CString GetShorterPath(CString path, int maximum);

/// The parts of the absolute form of a path: the drive with its colon, the directory with its
/// closing backslash, the name, the extension with its dot. A null pointer skips that part.
QUILLAVEN_API void SplitPath(CString const &path, CString *drive, CString *directory, CString *name,
                             CString *extension);

/// The directory of a file, absolute, with a closing backslash.
QUILLAVEN_API CString AbsPathOfFile(char const *file);

/// Non-zero if the text can name a file; the disk is not touched.
QUILLAVEN_API int IsValidFileName(CString name);
/// Non-zero if the file exists.
QUILLAVEN_API int FileExists(CString name);

/// Creates a directory with all its parents. The working directory is the same afterwards, whatever
/// the result.
QUILLAVEN_API bool MakeDirectory(char const *path);
/// Creates each directory that ends in a backslash within the path; what stands behind the last
/// backslash is taken for a file's name. The working directory is not touched.
QUILLAVEN_API bool MakeDirectory2(CString const &path);
/// Creates the directory of a file, with all its parents. A name without a backslash is taken for
/// the directory itself.
QUILLAVEN_API bool MakeDirectoryForFile(char const *file);

/// The directory of the application's help file, with its closing backslash; empty when it has
/// none.
QUILLAVEN_API CString AppHelpFileDir();

/// Goes back, when it is destroyed, to the working directory that was in force when it was made.
class QUILLAVEN_API CPreserveDir {
 public:
  CPreserveDir();
  CPreserveDir(CPreserveDir const &) = default;
  CPreserveDir &operator=(CPreserveDir const &) = default;
  ~CPreserveDir();

 private:
  std::string m_strDirectory;
};
