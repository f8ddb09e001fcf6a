// Where the running program lies.

#pragma once

#include <string>

/// The full path of the program's file, of which no link is left; empty where the system does not tell.
std::string ProgramPath();
