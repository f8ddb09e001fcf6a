#include <quillaven/platform/ftp.h>
#include <quillaven/platform/ftp_client_internal.h>

CFtpConnection::~CFtpConnection() = default;
CFtpTransport::~CFtpTransport() = default;

std::unique_ptr<CFtpConnection> CFtpTransport::Connect(char const *server) {
  return ConnectToFtpServer(server, m_nPort);
}

namespace {

CFtpTransport &BuiltInTransport() {
  static CFtpTransport transport;
  return transport;
}

CFtpTransport *g_transport = nullptr;  // null: the built-in one

}  // namespace

CFtpTransport *SetFtpTransport(CFtpTransport *transport) {
  CFtpTransport *before = &GetFtpTransport();
  g_transport = transport;
  return before;
}

CFtpTransport &GetFtpTransport() {
  return g_transport != nullptr ? *g_transport : BuiltInTransport();
}
