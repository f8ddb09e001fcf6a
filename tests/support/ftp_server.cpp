#include "tests/support/ftp_server.h"

#include <chrono>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

namespace {

char const kScript[] = QUILLAVEN_SOURCE_DIR "/tests/support/ftp_server.py";

template <class Condition>
void WaitUntil(Condition const &condition) {
  for (int tries = 0; tries < 600 && !condition(); ++tries)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

}  // namespace

#if defined(_WIN32)

#include <filesystem>
#include <windows.h>

namespace {

// The path by which programs around Wine know a file; empty where there is no Wine.
std::string OuterPath(std::string const &path) {
  using Translate = char *(CDECL *)(WCHAR const *);
  FARPROC const entry =
      ::GetProcAddress(::GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name");
  if (entry == nullptr) return {};
  auto const translate = reinterpret_cast<Translate>(reinterpret_cast<void *>(entry));
  char *const outer = translate(std::filesystem::path(path).wstring().c_str());
  std::string const result = outer != nullptr ? outer : "";
  ::HeapFree(::GetProcessHeap(), 0, outer);
  return result;
}

}  // namespace

bool FtpServer::IsInstalled() {
  return !OuterPath("Z:/usr/bin/python3").empty() &&
         std::filesystem::exists("Z:/usr/lib/python3/dist-packages/pyftpdlib");
}

// Such a program gets no input, so it is told of its end by a file.
void FtpServer::Start(Users users) {
  std::string command = "/usr/bin/python3 -W ignore";
  for (std::string const &argument :
       {OuterPath(kScript), OuterPath(directory.Path()), OuterPath(m_notes.Path()) + "/port",
        OuterPath(m_notes.Path()) + "/log", std::string(Word(users)),
        OuterPath(m_notes.Path()) + "/stop"})
    command += " \"" + argument + "\"";
  STARTUPINFOA start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  ::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                   &process);
}

void FtpServer::Stop() {
  m_notes.Write("stop", "");
  WaitUntil([&] { return !m_notes.Has("port"); });
}

#else

bool FtpServer::IsInstalled() {
  return std::system("/usr/bin/python3 -W ignore -c 'import pyftpdlib' 2>/dev/null") == 0;
}

void FtpServer::Start(Users users) {
  std::string command = "exec /usr/bin/python3 -W ignore";
  for (std::string const &argument : {std::string(kScript), directory.Path(), m_notes.Path("port"),
                                      m_notes.Path("log"), std::string(Word(users))})
    command += " '" + argument + "'";
  m_input = ::popen((command + " 2>'" + m_notes.Path("errors") + "'").c_str(), "w");
}

void FtpServer::Stop() {
  if (m_input != nullptr) ::pclose(m_input);
  m_input = nullptr;
}

#endif

FtpServer::FtpServer(Users users) {
  Start(users);
  WaitUntil([&] { return m_notes.Has("port"); });
  m_port = static_cast<unsigned short>(std::atoi(m_notes.Read("port").c_str()));
  if (m_port == 0) ADD_FAILURE() << "no server: " << m_notes.Read("errors");
}
