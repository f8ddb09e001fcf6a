#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
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

[[noreturn]] void ThrowLastError() {
  throw CInternetException(::GetLastError());
}

// A session whose servers may be silent for so long. Without a session the options would be those of
// the process.
HINTERNET OpenSession(long silenceSeconds) {
  HINTERNET const session =
      ::InternetOpenA(nullptr, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  if (session == nullptr) ThrowLastError();
  DWORD milliseconds = static_cast<DWORD>(silenceSeconds) * 1000;
  // FTP has a wait of its own for each of its two connections.
  for (DWORD const option :
       {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_CONTROL_RECEIVE_TIMEOUT,
        INTERNET_OPTION_DATA_RECEIVE_TIMEOUT})
    ::InternetSetOptionA(session, option, &milliseconds, sizeof milliseconds);
  return session;
}

// The server's last answer to this thread, however long.
std::string LastAnswer() {
  std::string answer(256, '\0');
  DWORD number = 0;
  DWORD length = static_cast<DWORD>(answer.size());
  if (::InternetGetLastResponseInfoA(&number, answer.data(), &length)) return answer.c_str();
  if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER) return {};
  answer.assign(static_cast<std::size_t>(length) + 1, '\0');
  length = static_cast<DWORD>(answer.size());
  if (!::InternetGetLastResponseInfoA(&number, answer.data(), &length)) return {};
  return answer.c_str();
}

// What a file shares with its connection, which gives a transfer up for the next one.
struct Transfer {
  explicit Transfer(HINTERNET opened) : handle(opened) {}

  InternetHandle handle;
  bool givenUp = false;
};

// A file of a connection. In ASCII mode the system delivers CR LF, which is LF to the reader; a CR
// at the end of what was read waits for the byte behind it.
class WinInetFile : public CFile {
 public:
  WinInetFile(std::shared_ptr<Transfer> transfer, bool binary)
      : m_transfer(std::move(transfer)),
        m_binary(binary),
        m_size(::FtpGetFileSize(m_transfer->handle.Get(), nullptr)) {}
  WinInetFile(WinInetFile const &) = delete;
  WinInetFile &operator=(WinInetFile const &) = delete;
  ~WinInetFile() override { m_transfer->handle.Close(); }

  std::size_t Read(void *buffer, std::size_t count) override {
    if (count == 0) return 0;
    if (m_binary) return ReadRaw(buffer, count);
    return ReadText(static_cast<char *>(buffer), count);
  }
  void Close() override { m_transfer->handle.Close(); }

 private:
  // A text that breaks off gives what had arrived, and the next time its error.
  std::size_t ReadText(char *text, std::size_t count) {
    std::size_t given = 0;
    try {
      for (char byte = 0; given < count && Next(byte);) {
        text[given++] = byte;
        if (byte == '\r' && IsNextLf()) text[given - 1] = '\n';
      }
    } catch (CInternetException const &) {
      if (given == 0) throw;
    }
    return given;
  }
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
    if (m_transfer->givenUp) throw CInternetException(CInternetException::connectionAborted);
    InternetHandle const &handle = m_transfer->handle;
    if (handle.IsOpen() && !::InternetReadFile(handle.Get(), buffer, wanted, &got))
      ThrowLastError();
    m_arrived += got;
    // The end of a broken connection looks like the end of the file, but for the size that the
    // server told; that is its low half, all bits set or none where it told none. A text has
    // another length on its way than at the server.
    bool const knowsSize = m_size != INVALID_FILE_SIZE && m_size != 0;
    if (m_binary && got == 0 && handle.IsOpen() && knowsSize && m_arrived != m_size)
      throw CInternetException(CInternetException::connectionAborted);
    return got;
  }
  bool Next(char &byte) {
    if (m_taken == m_end) {
      m_taken = m_end = 0;  // also if this throws
      m_end = ReadRaw(m_text, sizeof m_text);
    }
    if (m_taken == m_end) return false;
    byte = m_text[m_taken++];
    return true;
  }
  // Takes the byte behind a CR if it is LF.
  bool IsNextLf() {
    char behind = 0;
    if (!Next(behind)) return false;
    if (behind != '\n') --m_taken;
    return behind == '\n';
  }

  std::shared_ptr<Transfer> m_transfer;
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

  // A connection has one transfer at a time: who opens a file gives up the one before.
  std::unique_ptr<CFile> OpenFile(char const *object, bool binary) override {
    if (*object == '\0' || std::strpbrk(object, "\r\n") != nullptr) return nullptr;
    GiveUpTransfer();
    HINTERNET const file =
        ::FtpOpenFileA(m_connection.Get(), object, GENERIC_READ,
                       binary ? FTP_TRANSFER_TYPE_BINARY : FTP_TRANSFER_TYPE_ASCII, kContext);
    if (file == nullptr) return RefusedOrThrow();
    auto transfer = std::make_shared<Transfer>(file);
    m_last = transfer;
    return std::make_unique<WinInetFile>(std::move(transfer), binary);
  }

 private:
  static constexpr DWORD_PTR kContext = 1;

  void GiveUpTransfer() {
    auto const transfer = m_last.lock();
    if (transfer == nullptr || !transfer->handle.IsOpen()) return;
    transfer->handle.Close();
    transfer->givenUp = true;
  }
  // An extended error is the server's answer to the name. So is one whose number is 425, which the
  // system tells as if there were no server. Everything else is a fault.
  static std::unique_ptr<CFile> RefusedOrThrow() {
    DWORD const error = ::GetLastError();
    bool const refused =
        error == ERROR_INTERNET_EXTENDED_ERROR ||
        (error == ERROR_INTERNET_CANNOT_CONNECT && LastAnswer().starts_with("425"));
    if (!refused) throw CInternetException(error);
    return nullptr;
  }

  InternetHandle m_session;
  InternetHandle m_connection;
  std::weak_ptr<Transfer> m_last;
};

}  // namespace

bool HasFtpClient() {
  return true;
}

std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const *server, unsigned short port,
                                                   long silenceSeconds) {
  return std::make_unique<WinInetConnection>(server, port, silenceSeconds);
}
