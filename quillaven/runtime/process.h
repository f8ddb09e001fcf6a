// Runs programs and batch files to their end, and has component libraries register themselves.
//
//   WinExecAndWait("\"C:\\Program Files\\Sim\\sim.exe\" -n 3", 1);
//   ExecBatchFile("C:\\My data\\prepare.bat");                       // quoted as needed, no window
//   if (!CallDllRegisterServer("component.dll")) return false;      // a box has told why
//
// All three block: the caller's thread stands still until the other program has ended. A command
// line is one text, split by the rules of Windows programs on every machine: blanks part words,
// double quotes hold them together, backslashes before a quote are halved. No shell sees it.

#pragma once

#include <quillaven/platform/api.h>

/// Runs a program and waits for its end. The command is used as it stands: quotes are the caller's
/// task, and a program whose path has a blank must be quoted, as its first word ends at the blank.
/// A bare program name is looked for along the system's path. `showState` is the window's
/// (0: hidden) where the system has one. A program that ran and failed is no failure. What the
/// process has open does not reach the program, except for the standard streams.
///
/// A start that fails shows "Cannot execute " and the command in a box titled "WinExecAndWait" and
/// throws the same text as a std::string; so does a wait that fails, with "Wait for single object
/// failed ". Costs a process.
QUILLAVEN_API void WinExecAndWait(char const *command, unsigned short showState);

/// WinExecAndWait of a file alone, with no window to be seen; the name is put in quotes if it has a
/// blank and none. A file that names no interpreter is run by the command processor. A bare name is
/// looked for along the system's path, and the working directory need not be part of that: give a
/// file that lies there with its directory.
QUILLAVEN_API void ExecBatchFile(char const *file);

/// Loads a component library, calls its entry DllRegisterServer and unloads it. True if that
/// returned exactly 0; a positive result is a failure too. Each failure is shown in a box titled
/// "QUILLAVEN RegSvr32": the file report if the library cannot be loaded, that the entry was not
/// found, or the system's text for the entry's result and the number.
QUILLAVEN_API bool CallDllRegisterServer(char const *file);
