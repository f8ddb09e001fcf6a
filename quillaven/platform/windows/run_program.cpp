#include <string>
#include <windows.h>

#include <quillaven/platform/run_program_internal.h>

namespace {

// The start record of this process, with the show state put in force. What of it means handles and
// data of this process, the shortcut that it was started by or its hot key, is not passed on: the
// program would take the handles for its own, and the name for a shortcut.
STARTUPINFOA StartRecord(char *title, unsigned short showState) {
  constexpr DWORD kOfThisProcess =
      STARTF_USESTDHANDLES | STARTF_TITLEISLINKNAME | STARTF_TITLEISAPPID | STARTF_USEHOTKEY;
  STARTUPINFOA start{};
  ::GetStartupInfoA(&start);
  start.dwFlags &= ~kOfThisProcess;
  start.dwFlags |= STARTF_USESHOWWINDOW;
  start.lpTitle = title;
  start.wShowWindow = showState;
  start.lpReserved = nullptr;
  start.cbReserved2 = 0;
  start.lpReserved2 = nullptr;
  start.hStdInput = nullptr;
  start.hStdOutput = nullptr;
  start.hStdError = nullptr;
  return start;
}

}  // namespace

// CreateProcessA may write into the command line, so it has one of its own.
ProgramRun RunProgram(char const *commandLine, unsigned short showState) {
  std::string command = commandLine;
  std::string title = commandLine;
  STARTUPINFOA start = StartRecord(title.data(), showState);
  PROCESS_INFORMATION process{};
  if (!::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &start, &process))
    return ProgramRun::kNotStarted;
  DWORD const waited = ::WaitForSingleObject(process.hProcess, INFINITE);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  return waited != WAIT_FAILED ? ProgramRun::kEnded : ProgramRun::kWaitFailed;
}

bool IsOlderSystemFamily() {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
  return ::GetVersionExA(&version) && version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
}
