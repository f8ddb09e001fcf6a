// What a program that the library starts is told of the one that it is started from.

#include <sstream>
#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace {

// Runs start_record with a record of all that a program can be started with.
void RunWithAFullRecord(std::string command, HANDLE output) {
  BYTE noFiles[4] = {};  // the runtime's own list of open files
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES | STARTF_USEPOSITION | STARTF_TITLEISLINKNAME;
  start.hStdOutput = output;
  start.hStdError = output;
  start.cbReserved2 = sizeof noFiles;
  start.lpReserved2 = noFiles;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(::CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &start, &process));
  EXPECT_EQ(::WaitForSingleObject(process.hProcess, 30000), WAIT_OBJECT_0);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
}

TEST(StartRecord, OfAProgramThatIsLaunchedHasItsTitleAndShowStateAndNoHandleOfItsParent) {
  TemporaryDirectory const directory;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE const output = ::CreateFileA(directory.Path("output").c_str(), GENERIC_WRITE, 0,
                                      &inherited, CREATE_NEW, 0, nullptr);
  ASSERT_NE(output, INVALID_HANDLE_VALUE);
  std::string const program = START_RECORD;
  std::string const launched = program + " " + directory.Path("record");
  RunWithAFullRecord(program + " --launch \"" + launched + "\"", output);
  ::CloseHandle(output);
  std::istringstream record(directory.Read("record"));
  DWORD flags = 0;
  std::string title;
  WORD showState = 0;
  int bytes = -1;
  record >> flags;
  std::getline(record >> std::ws, title);
  record >> showState >> bytes;
  constexpr DWORD kPassedOn = STARTF_USEPOSITION | STARTF_USESHOWWINDOW;
  EXPECT_EQ(flags, kPassedOn);
  EXPECT_EQ(title, launched);
  EXPECT_EQ(showState, SW_SHOWMINNOACTIVE);
  EXPECT_EQ(bytes, 0);
}

}  // namespace
