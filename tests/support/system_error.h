// The system's errors, for tests that cause them or expect their texts.
//
//   SetLastSystemError(kMissingFileError);
//   NoSuchFile("a.txt");     // the box ends in TextOfSystemError(kMissingFileError)

#pragma once

#include <string>

extern unsigned long const kMissingFileError;       // in a directory that is there
extern unsigned long const kMissingDirectoryError;  // on the way to a file
extern unsigned long const kAccessError;
extern unsigned long const kDiskFullError;
extern unsigned long const kMissingLibraryError;
extern unsigned long const kNoLibraryError;  // a file of another kind was to be loaded

void SetLastSystemError(unsigned long code);
/// The text that the system has for a code, asked for without the library.
std::string TextOfSystemError(unsigned long code);
