// What brings files from FTP servers: connect, open a file for reading, read it by blocks.
//
//   class MyTransport : public CFtpTransport { ... };    // a cache, another client, a test
//   MyTransport transport;
//   SetFtpTransport(&transport);
//   CopyRemoteFileToLocalFile("ftp://ftp.example.org/maps/a.asc", "a.asc", false);
//
// The built-in one is the system's client on Windows; elsewhere it is libcurl where the library was
// built with it, and a client that has no connections to give where it was not. The object in force
// is not owned: put null in force before it is destroyed. All calls block, on the caller's thread.

#pragma once

#include <memory>

#include <quillaven/platform/api.h>
#include <quillaven/platform/exceptions.h>
#include <quillaven/platform/files.h>

/// A server that has let an anonymous user in.
class QUILLAVEN_API CFtpConnection {
 public:
  CFtpConnection() = default;
  CFtpConnection(CFtpConnection const &) = delete;
  CFtpConnection &operator=(CFtpConnection const &) = delete;
  /// Ends the connection.
  virtual ~CFtpConnection();

  /// Opens a file of the server for reading; null if the server does not give it out, because it is
  /// missing, a directory, in use or not for everybody. Throws a CInternetException if the
  /// connection fails.
  ///
  /// `object` is the name as the server is to see it, "/maps/a.asc". Of a binary file the bytes
  /// arrive as they are; of a text (ASCII mode) each CR LF arrives as LF, on every machine, and a CR
  /// alone as itself.
  ///
  /// The file is for reading from its begin to its end: of its operations Read and Close do their
  /// work. Read gives as many bytes as it is asked for, up to the end; where the transfer breaks off
  /// it gives what had arrived, and throws a CInternetException the next time. One file is open at a
  /// time: to open another gives up the one before, whose next Read throws. A file is destroyed before
  /// its connection.
  virtual std::unique_ptr<CFile> OpenFile(char const *object, bool binary) = 0;
};

class QUILLAVEN_API CFtpTransport {
 public:
  /// The port of the control connection. The port that a URL names is not looked at, so a server on
  /// another port is reached by a transport of that port.
  explicit CFtpTransport(unsigned short port = 21) : m_nPort(port) {}
  CFtpTransport(CFtpTransport const &) = default;
  CFtpTransport &operator=(CFtpTransport const &) = default;
  virtual ~CFtpTransport();

  /// Connects to a server, by name or address, as the anonymous user, in active mode: the server
  /// opens the data connections. Throws a CInternetException if it cannot be reached or lets nobody
  /// in; a server that is silent for a minute counts as such. Null if there is no FTP client here.
  virtual std::unique_ptr<CFtpConnection> Connect(char const *server);

 private:
  unsigned short m_nPort;
};

/// Puts a transport in force and returns the one before; null brings back the built-in one.
QUILLAVEN_API CFtpTransport *SetFtpTransport(CFtpTransport *transport);
QUILLAVEN_API CFtpTransport &GetFtpTransport();
