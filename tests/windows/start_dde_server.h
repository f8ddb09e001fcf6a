// Starts dde_server, which stands for a spreadsheet. It writes what happens to a file.

#pragma once

#include <string>
#include <windows.h>

#include <gtest/gtest.h>

inline HANDLE StartDdeServer(std::string const &log) {
  std::string command = "\"" DDE_SERVER "\" \"" + log + "\"";
  STARTUPINFOA start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  EXPECT_TRUE(::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &start, &process));
  ::CloseHandle(process.hThread);
  return process.hProcess;
}

/// Waits for its end, which comes after 20 seconds at the latest.
inline void ExpectEndOf(HANDLE server) {
  EXPECT_EQ(::WaitForSingleObject(server, 30000), WAIT_OBJECT_0);
  ::CloseHandle(server);
}
