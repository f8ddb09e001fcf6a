// Files opened for reading, by stored name.
//
//   std::ifstream stream = OpenInputFile(name);
//   if (!stream) return NoSuchFile(name), false;

#pragma once

#include <fstream>
#include <string>

/// Opens a file for reading. A directory, which some systems open too, is a failure like any other.
std::ifstream OpenInputFile(std::string const &name,
                            std::ios::openmode mode = std::ios::openmode{});
