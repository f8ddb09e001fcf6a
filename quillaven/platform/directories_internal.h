// The working directory, directories and full paths, as the machine gives them.
//
// Each takes names in the system's own form (see SystemPath) and answers whether it succeeded; a
// failure leaves its code as the last error.

#pragma once

#include <cstddef>
#include <string>

/// The working directory as a C string in a buffer of `size` bytes; the buffer is left as it was
/// when that does not fit.
bool GetWorkingDirectory(char *buffer, std::size_t size);
bool ChangeWorkingDirectory(char const *path);
bool CreateOneDirectory(char const *path);
/// Deletes a file; a directory is none.
bool RemoveFile(char const *path);
/// Whether something of that name exists, whatever it is.
bool PathExists(char const *path);
/// Whether a file of that name exists and can be opened for reading.
bool CanOpenFile(char const *path);
/// Whether the machine would take the text for the name of a file. The disk is not touched.
bool IsFileName(char const *name);
/// The absolute form, with "." and ".." taken out, whether or not the file exists. False when the
/// result, with its terminating zero, needs more than `limit` bytes.
bool MakeFullPath(char const *path, std::size_t limit, std::string &full);
