// A copy of a file, as the system makes one.
//
//   if (!CopyOneFile(SystemPath(from).c_str(), SystemPath(to).c_str())) FileError(to, "Copy failed");

#pragma once

/// Copies a file, overwriting what is there. False if that fails, be it while the source is read;
/// the last error of the system is then the reason, and what stands at the target may be part of a
/// copy. The names must not mean one file.
bool CopyOneFile(char const *from, char const *to);
