// The two ways to run a program, over a system that a test can stand in for.
//
//   ProgramRunner runner;                       // this machine
//   runner.olderFamily = true;                  // through the command processor
//   RunAndReport(runner, "sim.exe", 1);

#pragma once

#include <quillaven/platform/run_program_internal.h>

struct ProgramRunner {
  bool olderFamily = IsOlderSystemFamily();
  ProgramRun (*run)(char const *commandLine, unsigned short showState) = RunProgram;
};

/// Runs a command to its end; shows and throws what fails.
void RunAndReport(ProgramRunner const &runner, char const *command, unsigned short showState);
/// The same with a file's name, quoted if it has a blank, and the show state 0.
void RunBatchFile(ProgramRunner const &runner, char const *file);
