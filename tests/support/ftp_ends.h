// The two transports that the same tests run over: the built-in one with a real server on the
// loopback address, and the fake one.
//
//   class MyTest : public FtpEndTest {};
//   TEST_P(MyTest, ...) { Serve("a.txt", "text"); Transport().Connect("127.0.0.1"); }
//   INSTANTIATE_TEST_SUITE_P(Ends, MyTest, FtpEnds(), FtpEndName);

#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/ftp_client_internal.h>

#include "tests/support/fake_ftp.h"
#include "tests/support/ftp_server.h"

enum class FtpEnd { builtIn, fake };

class FtpEndTest : public testing::TestWithParam<FtpEnd> {
 protected:
  void SetUp() override {
    if (GetParam() == FtpEnd::fake) return;
    if (!HasFtpClient()) GTEST_SKIP() << "the library was built without libcurl";
    if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
    Start(FtpServer::anonymous);
  }

  CFtpTransport &Transport() { return m_builtIn != nullptr ? *m_builtIn : m_fake; }

  /// Puts a file on the server; its object is "/" and the name.
  void Serve(std::string const &name, std::string const &bytes) {
    if (m_server != nullptr) m_server->directory.Write(name, bytes);
    m_fake.files["/" + name] = bytes;
  }
  /// From here on nobody answers, or no anonymous user is let in.
  void GoDown() {
    if (m_server != nullptr) m_server->Stop();
    m_fake.isUp = false;
  }
  void LockOut() {
    if (m_server != nullptr) Start(FtpServer::nobody);
    m_fake.letsAnonymousIn = false;
  }

 private:
  void Start(FtpServer::Users users) {
    m_server = std::make_unique<FtpServer>(users);
    m_builtIn = std::make_unique<CFtpTransport>(m_server->Port());
  }

  FakeFtpTransport m_fake;
  std::unique_ptr<FtpServer> m_server;
  std::unique_ptr<CFtpTransport> m_builtIn;
};

inline auto FtpEnds() {
  return testing::Values(FtpEnd::builtIn, FtpEnd::fake);
}

inline std::string FtpEndName(testing::TestParamInfo<FtpEnd> const &end) {
  return end.param == FtpEnd::builtIn ? "BuiltInClientAndRealServer" : "Fake";
}
