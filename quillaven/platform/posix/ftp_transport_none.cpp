#include <quillaven/platform/ftp_client_internal.h>

// The library was built without an FTP client: there is no connection to give.

bool HasFtpClient() {
  return false;
}

std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const * /*server*/, unsigned short /*port*/,
                                                   long /*silenceSeconds*/) {
  return nullptr;
}
