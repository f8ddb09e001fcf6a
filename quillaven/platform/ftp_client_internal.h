// The FTP client of the machine, which the built-in transport hands out.
//
//   if (HasFtpClient()) std::unique_ptr<CFtpConnection> c = ConnectToFtpServer("127.0.0.1", 2121);

#pragma once

#include <memory>

#include <quillaven/platform/ftp.h>

/// Whether the library was built with a client.
bool HasFtpClient();

/// How long a server may say nothing before it counts as one that is not there.
inline constexpr long kFtpSilenceSeconds = 60;

/// As CFtpTransport::Connect.
std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const *server, unsigned short port,
                                                   long silenceSeconds = kFtpSilenceSeconds);
