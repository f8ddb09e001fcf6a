// Commands for the system's command processor.
//
//   int status = RunShellCommand(("regsvr32 " + QuoteIfBlank(file)).c_str());

#pragma once

#include <string>

/// Runs a command through the command processor and returns its result, whatever it is. A failure
/// to start is shown in a box titled "WinExecAndWait" and thrown as a std::string.
int RunShellCommand(char const *command);
/// The same through another processor, which returns -1 and sets errno when it cannot start.
int RunShellCommand(char const *command, int (*processor)(char const *));

/// The text, in double quotes if it holds a blank and does not begin with a quote.
std::string QuoteIfBlank(char const *text);
