// A real FTP server on the loopback address, as long as the object lives (see ftp_server.py).
//
//   if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
//   FtpServer server(FtpServer::anonymous);
//   server.directory.Write("a.txt", "text");
//   CFtpTransport transport(server.Port());

#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

#if defined(_WIN32)
#define popen _popen
#define pclose _pclose
#endif

class FtpServer {
 public:
  enum Users { anonymous, nobody, silent };

  static bool IsInstalled() {
    return std::system("/usr/bin/python3 -W ignore -c 'import pyftpdlib' 2>/dev/null") == 0;
  }

  explicit FtpServer(Users users) {
    std::string const script = QUILLAVEN_SOURCE_DIR "/tests/support/ftp_server.py";
    std::string command = "exec /usr/bin/python3 -W ignore";
    for (std::string const &argument : {script, directory.Path(), m_notes.Path("port"),
                                        m_notes.Path("log"), std::string(Word(users))})
      command += " '" + argument + "'";
    m_input = popen((command + " 2>'" + m_notes.Path("errors") + "'").c_str(), "w");
    for (int tenths = 0; tenths < 300 && !m_notes.Has("port"); ++tenths)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    m_port = static_cast<unsigned short>(std::atoi(m_notes.Read("port").c_str()));
    if (m_port == 0) ADD_FAILURE() << "no server: " << m_notes.Read("errors");
  }
  ~FtpServer() { Stop(); }
  FtpServer(FtpServer const &) = delete;
  FtpServer &operator=(FtpServer const &) = delete;

  unsigned short Port() const { return m_port; }
  /// The commands that have arrived, one a line.
  std::string Log() const { return m_notes.Read("log"); }
  /// The server ends with its input.
  void Stop() {
    if (m_input != nullptr) pclose(m_input);
    m_input = nullptr;
  }

  TemporaryDirectory directory;  // what is served

 private:
  static char const *Word(Users users) {
    return users == anonymous ? "yes" : users == nobody ? "no" : "silent";
  }

  TemporaryDirectory m_notes;
  std::FILE *m_input = nullptr;
  unsigned short m_port = 0;
};
