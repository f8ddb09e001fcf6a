// A real FTP server on the loopback address, as long as the object lives (see ftp_server.py).
//
//   if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
//   FtpServer server(FtpServer::anonymous);
//   server.directory.Write("a.txt", "text");
//   CFtpTransport transport(server.Port());
//
// Under Wine the server is a program of the machine around it.

#pragma once

#include <cstdio>
#include <string>

#include "tests/support/temporary_directory.h"

class FtpServer {
 public:
  enum Users { anonymous, nobody, silent };

  static bool IsInstalled();

  explicit FtpServer(Users users);
  ~FtpServer() { Stop(); }
  FtpServer(FtpServer const &) = delete;
  FtpServer &operator=(FtpServer const &) = delete;

  unsigned short Port() const { return m_port; }
  /// The commands that have arrived, one a line.
  std::string Log() const { return m_notes.Read("log"); }
  /// Returns when nobody listens any more.
  void Stop();

  TemporaryDirectory directory;  // what is served

 private:
  void Start(Users users);
  static char const *Word(Users users) {
    return users == anonymous ? "yes" : users == nobody ? "no" : "silent";
  }

  TemporaryDirectory m_notes;
  std::FILE *m_input = nullptr;  // the server ends with its input, where it has one
  unsigned short m_port = 0;
};
