// Files that do not stay, and files that are fetched from elsewhere.
//
//   CTempFiles garbage;                                             // deletes them at its end
//   garbage.Add("C:\\temp\\grid.asc");
//   if (!CopyRemoteFileToLocalFile("ftp://ftp.example.org/maps/grid.asc", "C:\\temp\\grid.asc", false))
//     return false;
//
// One thread at a time may use a list. A copy blocks until it is done.

#pragma once

#include <string>
#include <vector>

#include <quillaven/platform/api.h>

/// A list of file names; the files are deleted when the list dies.
///
/// The files are deleted from first to last, and whether that succeeds is not looked at: a file that
/// is not there is no error, nor is a name that stands in the list twice. A copy of a list deletes
/// the same names again. No name is taken off a list; an assignment replaces the names, and the
/// files that were named before stay.
class QUILLAVEN_API CTempFiles {
 public:
  CTempFiles() = default;
  CTempFiles(CTempFiles const &other) = default;
  CTempFiles &operator=(CTempFiles const &other) = default;
  ~CTempFiles();

  /// Adds a name, as it is: a relative one is looked for in the working directory of the time of
  /// deletion. Only files are deleted, never directories, and where case tells files apart only the
  /// one of exactly that last component.
  void Add(std::string const &name);

 private:
  std::vector<std::string> m_names;
};

/// Copies the file at a URL to a local file, which is made anew. `binary` takes the bytes as they
/// are; without it the file is a text, whose CR LF arrive as the line ends of this machine.
///
/// - "ftp://server/object" is read through the transport in force (see ftp.h), as the anonymous
///   user. User, password and port of the URL are not looked at, and nothing of the object is
///   decoded: "%20" stands for itself.
/// - "file:" opens the file whose name is the whole text, "file:" with it. That is meant: only a
///   system that takes such a name finds a file there.
///
/// False, with nothing shown, if one of the two files cannot be opened, or the source is no such
/// URL, or null stands in place of a name; the target is not touched unless the source is open. Throws a CInternetException if the
/// server cannot be reached or the transfer breaks off, and a CFileException if the target cannot
/// be written; what was written by then stays. Moves 4096 bytes a step.
QUILLAVEN_API bool CopyRemoteFileToLocalFile(char const *source, char const *target, bool binary);
