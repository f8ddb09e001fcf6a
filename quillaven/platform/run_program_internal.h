// Runs a program and waits until it has ended.
//
//   if (RunProgram("sim.exe -n 3", 0) == ProgramRun::kNotStarted) Tell();

#pragma once

enum class ProgramRun { kEnded, kNotStarted, kWaitFailed };

/// Starts a program by a command line, without a shell, and waits for its end without limit. The
/// show state is the system's, where it has one. A bare program name is looked for along the
/// system's path. The program inherits nothing that is open but the standard streams; its exit
/// status is not looked at.
ProgramRun RunProgram(char const *commandLine, unsigned short showState);

/// Whether this is the older family of the operating system, where programs are run through the
/// command processor.
bool IsOlderSystemFamily();
