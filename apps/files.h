// Files as the program takes them from its command line.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Throws a Failure that names the file and the system's reason unless it is a plain file that can be
/// read: commands look at a file more than once, which a pipe does not bear.
void RequireReadable(std::string const &file);

/// Whether a raster of such sizes, which files tell as they like, has cells.
inline bool HasCells(int rows, int cols) {
  return rows > 0 && cols > 0;
}

/// The same for a file that is read more than once, which no pipe can be.
void RequirePlainFile(std::string const &file);

/// Throws BadArguments if what is to be written is the file that is read, under whatever name: a file
/// is lost when its own reader writes over it and fails.
void RequireOtherFile(std::string const &in, std::string const &out);

/// Whether a file begins as an ASCII grid.
bool IsGrid(std::string const &file);

/// Throws a Failure unless the file can be read and begins as an ASCII grid.
void RequireGrid(std::string const &file);

/// Whether a grid file holds as many numbers behind its six header lines as it has cells. A file
/// whose last number ends it without a line feed is as good as any other, and only a count tells it
/// from one that was cut.
bool GridIsComplete(std::string const &file, long long cells);

/// Throws a Failure if a grid at that place could not be looked at again.
void RequireCheckableTarget(std::string const &file);

/// Throws a Failure unless a grid file that was just written has all its cells and the end of its
/// last line: the library does not look at errors of writing a grid.
void RequireWrittenGrid(std::string const &file, long long cells);

/// A file in a folder of its own that no one else may write to; both are gone at the end of its life.
class ScratchFile {
 public:
  ScratchFile();
  ~ScratchFile();
  ScratchFile(ScratchFile const &) = delete;
  ScratchFile &operator=(ScratchFile const &) = delete;

  std::string Path() const { return (m_folder / "file").string(); }
  /// Throws a Failure if the disk had no room for all that was written to the file.
  void RequireRoom() const;
  /// Writes it as another file, of any kind. Throws a Failure with the system's reason if not all of
  /// it arrives there.
  void WriteTo(std::string const &file) const;

 private:
  std::filesystem::path m_folder;
};

/// Prints colours, one a line: number, red, green, blue.
void PrintColors(std::vector<unsigned long> const &colors);

/// The folder of Legends and of the demo's data: the one told, or else the one beside the program's
/// folder, the one of the prefix it was built for, or the working directory.
std::string HelpDirectory(std::string const &told);
