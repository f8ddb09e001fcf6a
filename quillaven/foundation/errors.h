// How a failure leaves a function: a box with the file report, or the same report thrown.
//
//   std::ifstream file(SystemPath(name));
//   if (!file) {
//     NoSuchFile(name);      // a box: "Error: Cannot open file", the file, the directory, the reason
//     return false;
//   }
//
// A thrown failure is a plain std::string, by value, whose text is the whole message. The report
// reads the last error of the system when it is built, so call these straight after the failing
// operation, on the thread that failed.

#pragma once

#include <string>

#include <quillaven/platform/api.h>

/// The system's text for an error code, with each %1 in it replaced by `name`; `name` itself where
/// the system has no text. A trailing line break of the system's stays.
QUILLAVEN_API std::string FormatError(char const *name, unsigned long code);

/// Shows the report on `file` in a modal box titled `title`, and returns.
///
/// The report is the six lines "File:", the name, "Current working directory:", the directory,
/// "Error:", the system's text of the last error; names and text stand behind a tab.
QUILLAVEN_API void FileError(char const *file, char const *title);

/// Throws `text`, a line feed and the report on `file`, as a std::string.
[[noreturn]] QUILLAVEN_API void ThrowFileErrorException(char const *file, char const *text);

/// FileError with the title "Error: Cannot open file".
QUILLAVEN_API void NoSuchFile(char const *file);

/// ThrowFileErrorException with the text "Error: Cannot open file".
[[noreturn]] QUILLAVEN_API void ThrowNoSuchFileException(char const *file);

/// FileError with the title "Error: Cannot create file".
QUILLAVEN_API void CannotCreateFile(char const *file);
