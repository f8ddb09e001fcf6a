// Where names with backslashes meet the file system of this machine.
//
//   std::ifstream file(SystemPath("Legends\\Landuse.txt"));   // Legends/landuse.txt is found too
//   CString base = LibraryPath("/data/maps/net.txt").c_str();  // \data\maps\net.txt
//
// Stored names keep the backslash on every machine. On Windows both functions change nothing.

#pragma once

#include <string>

#include <quillaven/platform/api.h>

/// The name as this machine opens it. On a machine with slashes: a name that exists as it stands is
/// taken as it stands; otherwise backslashes become slashes, and each component that does not exist
/// is matched without regard to case against what its directory holds, so that documents made on
/// Windows open. Components that match nothing stay as written. Costs a look at each directory that
/// has no exact match.
QUILLAVEN_API std::string SystemPath(std::string const &name);

/// A name that came from the system, in the library's form: each slash becomes a backslash.
QUILLAVEN_API std::string LibraryPath(std::string const &name);
