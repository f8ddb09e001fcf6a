// An FTP server that is made of a table of files, for tests of what stands on a transport.
//
//   FakeFtpTransport transport;
//   transport.files["/a.txt"] = "text";
//   SetFtpTransport(&transport);

#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <quillaven/platform/ftp.h>

#include "tests/support/memory_file.h"

class FakeFtpTransport : public CFtpTransport {
 public:
  std::unique_ptr<CFtpConnection> Connect(char const *server) override;

  std::map<std::string, std::string> files;  // by object; "/breaks-off" does after 5000 bytes
  unsigned int transfers = 0;                // so many were begun
  bool isUp = true;
  bool letsAnonymousIn = true;
  bool hasClient = true;
  std::vector<std::string> calls;
};

class FakeFtpFile : public MemoryFile {
 public:
  FakeFtpFile(FakeFtpTransport &transport, std::string bytes, bool breaksOff)
      : MemoryFile(std::move(bytes)),
        m_transport(transport),
        m_breaksOff(breaksOff),
        m_transfer(++transport.transfers) {}
  ~FakeFtpFile() override { m_transport.calls.push_back("file gone"); }

  std::size_t Read(void *buffer, std::size_t count) override {
    if (m_closed) return 0;
    m_transport.calls.push_back("read " + std::to_string(count));
    bool const givenUp = m_transfer != m_transport.transfers;  // another was opened since
    std::size_t const got = givenUp ? 0 : MemoryFile::Read(buffer, count);
    if (got == 0 && (m_breaksOff || givenUp))
      throw CInternetException(CInternetException::connectionAborted);
    return got;
  }
  void Write(void const * /*buffer*/, std::size_t /*count*/) override {
    throw CFileException(CFileException::invalidFile);
  }
  void Close() override {
    m_closed = true;
    m_transport.calls.push_back("close");
  }

 private:
  FakeFtpTransport &m_transport;
  bool m_breaksOff;
  unsigned int m_transfer;
  bool m_closed = false;
};

class FakeFtpConnection : public CFtpConnection {
 public:
  explicit FakeFtpConnection(FakeFtpTransport &transport) : m_transport(transport) {}
  ~FakeFtpConnection() override { m_transport.calls.push_back("connection gone"); }

  std::unique_ptr<CFile> OpenFile(char const *object, bool binary) override {
    m_transport.calls.push_back("open " + std::string(object) + (binary ? " binary" : " text"));
    if (!m_transport.isUp) throw CInternetException(CInternetException::cannotConnect);
    auto const found = m_transport.files.find(object);
    if (found == m_transport.files.end()) return nullptr;
    if (found->first.starts_with("/answers-")) return nullptr;
    std::string bytes = found->second;
    for (std::size_t at = 0; !binary && (at = bytes.find("\r\n", at)) != std::string::npos; ++at)
      bytes.erase(at, 1);
    bool const breaksOff = found->first == "/breaks-off";
    if (breaksOff) bytes.resize(5000);
    return std::make_unique<FakeFtpFile>(m_transport, bytes, breaksOff);
  }

 private:
  FakeFtpTransport &m_transport;
};

inline std::unique_ptr<CFtpConnection> FakeFtpTransport::Connect(char const *server) {
  calls.push_back("connect " + std::string(server));
  if (!hasClient) return nullptr;
  if (!isUp) throw CInternetException(CInternetException::cannotConnect);
  if (!letsAnonymousIn) throw CInternetException(CInternetException::loginFailure);
  return std::make_unique<FakeFtpConnection>(*this);
}
