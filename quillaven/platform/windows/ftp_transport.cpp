#include <algorithm>
#include <cstring>
#include <windows.h>
#include <wininet.h>

#include <quillaven/platform/ftp_client_internal.h>

namespace {

// A handle of WinINet, closed at the end of its scope.
class InternetHandle {
 public:
  explicit InternetHandle(HINTERNET handle) : m_handle(handle) {}
  ~InternetHandle() { Close(); }
  InternetHandle(InternetHandle const &) = delete;
  InternetHandle &operator=(InternetHandle const &) = delete;

  HINTERNET Get() const { return m_handle; }
  bool IsOpen() const { return m_handle != nullptr; }
  void Close() {
    if (m_handle != nullptr) ::InternetCloseHandle(m_handle);
    m_handle = nullptr;
  }

 private:
  HINTERNET m_handle;
};

// A session whose servers may be silent for so long.
HINTERNET OpenSession(long silenceSeconds) {
  HINTERNET const session =
      ::InternetOpenA(nullptr, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  DWORD milliseconds = static_cast<DWORD>(silenceSeconds) * 1000;
  for (DWORD const option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
    ::InternetSetOptionA(session, option, &milliseconds, sizeof milliseconds);
  return session;
}

[[noreturn]] void ThrowLastError() {
  throw CInternetException(::GetLastError());
}

// A file of a connection. In ASCII mode the system delivers CR LF, which is LF to the reader; a CR
// at the end of what was read waits for the byte behind it.
class WinInetFile : public CFile {
 public:
  WinInetFile(HINTERNET handle, bool binary)
      : m_handle(handle), m_binary(binary), m_size(::FtpGetFileSize(handle, nullptr)) {}

  std::size_t Read(void *buffer, std::size_t count) override {
    if (count == 0) return 0;
    if (m_binary) return ReadRaw(buffer, count);
    char *const text = static_cast<char *>(buffer);
    std::size_t given = 0;
    for (char byte = 0; given < count && Next(byte); ++given) {
      text[given] = byte;
      char behind = 0;
      if (byte == '\r' && Next(behind)) {
        if (behind == '\n')
          text[given] = '\n';
        else
          --m_taken;
      }
    }
    return given;
  }
  void Close() override { m_handle.Close(); }

 private:
  // A connection that breaks gives what had arrived, and the next time its error.
  std::size_t ReadRaw(void *buffer, std::size_t count) {
    auto *const to = static_cast<char *>(buffer);
    std::size_t done = 0;
    try {
      while (done < count) {
        std::size_t const got = ReadPiece(to + done, count - done);
        if (got == 0) break;
        done += got;
      }
    } catch (CInternetException const &) {
      if (done == 0) throw;
    }
    return done;
  }
  // What has arrived, up to `count` bytes; none at the end alone.
  std::size_t ReadPiece(char *buffer, std::size_t count) {
    DWORD got = 0;
    DWORD const wanted = static_cast<DWORD>(std::min<std::size_t>(count, 0x40000000));
    if (m_handle.IsOpen() && !::InternetReadFile(m_handle.Get(), buffer, wanted, &got))
      ThrowLastError();
    m_arrived += got;
    // The end of a broken connection looks like the end of the file, but for the size that the
    // server told; that is its low half, all bits set or none where it told none. A text has
    // another length on its way than at the server.
    bool const knowsSize = m_size != INVALID_FILE_SIZE && m_size != 0;
    if (m_binary && got == 0 && m_handle.IsOpen() && knowsSize && m_arrived != m_size)
      throw CInternetException(CInternetException::connectionAborted);
    return got;
  }
  bool Next(char &byte) {
    if (m_taken == m_end) {
      m_taken = 0;
      m_end = ReadRaw(m_text, sizeof m_text);
    }
    if (m_taken == m_end) return false;
    byte = m_text[m_taken++];
    return true;
  }

  InternetHandle m_handle;
  bool m_binary;
  DWORD m_size;
  DWORD m_arrived = 0;
  char m_text[4096];
  std::size_t m_taken = 0;  // of m_text, from its begin
  std::size_t m_end = 0;
};

class WinInetConnection : public CFtpConnection {
 public:
  // Neither flag of passive mode nor user nor password: active mode, anonymous.
  WinInetConnection(char const *server, unsigned short port, long silenceSeconds)
      : m_session(OpenSession(silenceSeconds)),
        m_connection(::InternetConnectA(m_session.Get(), server, port, nullptr, nullptr,
                                        INTERNET_SERVICE_FTP, 0, kContext)) {
    if (!m_connection.IsOpen()) ThrowLastError();
  }

  // An extended error is the server's answer to the name, and everything else is a fault.
  std::unique_ptr<CFile> OpenFile(char const *object, bool binary) override {
    if (*object == '\0' || std::strpbrk(object, "\r\n") != nullptr) return nullptr;
    HINTERNET const file =
        ::FtpOpenFileA(m_connection.Get(), object, GENERIC_READ,
                       binary ? FTP_TRANSFER_TYPE_BINARY : FTP_TRANSFER_TYPE_ASCII, kContext);
    if (file != nullptr) return std::make_unique<WinInetFile>(file, binary);
    if (::GetLastError() != ERROR_INTERNET_EXTENDED_ERROR) ThrowLastError();
    return nullptr;
  }

 private:
  static constexpr DWORD_PTR kContext = 1;

  InternetHandle m_session;
  InternetHandle m_connection;
};

}  // namespace

bool HasFtpClient() {
  return true;
}

std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const *server, unsigned short port,
                                                   long silenceSeconds) {
  return std::make_unique<WinInetConnection>(server, port, silenceSeconds);
}
