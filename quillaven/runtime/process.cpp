#include <cstdint>
#include <optional>
#include <string>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/errors_internal.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/platform/dynamic_library_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/runtime/process.h>
#include <quillaven/runtime/process_internal.h>

namespace {

constexpr char kRegistrationTitle[] = "QUILLAVEN RegSvr32";
constexpr unsigned int kWarning = 48;

// A failure of the launchers is both shown and thrown.
[[noreturn]] void ShowAndThrow(char const *what, char const *command) {
  std::string const text = std::string(what) + command;
  ShowMessageBox(text.c_str(), "WinExecAndWait");
  throw std::string(text);
}

void WarnOfRegistration(std::string const &text) {
  ShowMessageBox(text.c_str(), kRegistrationTitle, kWarning);
}

// The result is a 32-bit code of the system, whatever the width of a long.
std::string RegistrationFailure(char const *file, std::int32_t result) {
  return std::string("Registrating ") + file + " failed.\n" + "Error:\n\t" +
         FormatError(file, static_cast<std::uint32_t>(result)) + itostr(" (%d)", result);
}

}  // namespace

void RunAndReport(ProgramRunner const &runner, char const *command, unsigned short showState) {
  if (runner.olderFamily) {
    RunShellCommand(command);  // the show state does not reach it
    return;
  }
  ProgramRun const run = runner.run(command, showState);
  if (run == ProgramRun::kNotStarted) ShowAndThrow("Cannot execute ", command);
  if (run == ProgramRun::kWaitFailed) ShowAndThrow("Wait for single object failed ", command);
}

void RunBatchFile(ProgramRunner const &runner, char const *file) {
  RunAndReport(runner, QuoteIfBlank(file).c_str(), 0);
}

void WinExecAndWait(char const *command, unsigned short showState) {
  RunAndReport({}, command, showState);
}

void ExecBatchFile(char const *file) {
  RunBatchFile({}, file);
}

bool CallDllRegisterServer(char const *file) {
  DynamicLibrary const library(SystemPath(file));
  if (!library.IsOpen()) {
    FileError(file, kRegistrationTitle);
    return false;
  }
  std::optional<std::int32_t> const result = CallEntry(library.Module(), "DllRegisterServer");
  if (!result) {
    WarnOfRegistration(std::string(file) +
                       " was loaded, but the DllRegisterServer entry point was not found.");
    return false;
  }
  if (*result == 0) return true;
  WarnOfRegistration(RegistrationFailure(file, *result));  // a positive result is a failure too
  return false;
}
