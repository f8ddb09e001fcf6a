#include <algorithm>
#include <cstring>
#include <curl/curl.h>
#include <string>

#include <quillaven/platform/ftp_client_internal.h>

namespace {

CInternetException ErrorOf(CURLcode code) {
  switch (code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_COULDNT_RESOLVE_HOST:
      return CInternetException(CInternetException::nameNotResolved);
    case CURLE_COULDNT_CONNECT:
      return CInternetException(CInternetException::cannotConnect);
    case CURLE_LOGIN_DENIED:
      return CInternetException(CInternetException::loginFailure);
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_FTP_ACCEPT_TIMEOUT:
      return CInternetException(CInternetException::timeout);
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
      return CInternetException(CInternetException::connectionAborted);
    default:
      return CInternetException(CInternetException::extendedError);
  }
}

/// Whether the server is well and only does not give the file out.
bool IsRefusal(CURLcode code) {
  return code == CURLE_REMOTE_FILE_NOT_FOUND || code == CURLE_FTP_COULDNT_RETR_FILE ||
         code == CURLE_REMOTE_ACCESS_DENIED || code == CURLE_URL_MALFORMAT;
}

void Require(bool done) {
  if (!done) throw CInternetException(CInternetException::internalError);
}

template <auto Free>
struct FreeBy {
  void operator()(auto *handle) const { Free(handle); }
};
template <class T, auto Free>
using Handle = std::unique_ptr<T, FreeBy<Free>>;

// One server, and the one transfer that is under way with it. libcurl pushes what arrives; here it
// is kept until it is asked for, and the transfer goes on only when nothing is kept any more.
//
// Transfers are numbered. Opening a file ends the transfer of the one before, which must neither
// end that of its successor when it dies nor pass for a file that was read whole.
class CurlConnection : public CFtpConnection {
 public:
  CurlConnection(char const *server, unsigned short port, long silenceSeconds);
  ~CurlConnection() override { EndTransfer(); }

  std::unique_ptr<CFile> OpenFile(char const *object, bool binary) override;
  std::size_t Read(unsigned long transfer, void *buffer, std::size_t count);
  void Close(unsigned long transfer) {
    if (transfer == m_transfer) EndTransfer();
  }

 private:
  static std::size_t Arrive(char *bytes, std::size_t size, std::size_t count, void *connection);
  static std::size_t Answer(char *line, std::size_t size, std::size_t count, void *connection);
  void SetUp(long silenceSeconds);
  void BeginTransfer(std::string const &path);
  void EndTransfer();
  void Keep(char const *bytes, std::size_t count);
  void KeepHeldReturn();
  std::size_t Take(char *buffer, std::size_t count);
  template <class Enough>
  void Work(Enough enough);
  bool HasKept() const { return m_taken < m_kept.size(); }

  Handle<CURLU, curl_url_cleanup> m_url;  // what is used by the next goes after it
  // What stands in front of each transfer, binary and text. libcurl's own text mode would turn a
  // carriage return that ends no line into a line feed.
  Handle<curl_slist, curl_slist_free_all> m_typeBinary;
  Handle<curl_slist, curl_slist_free_all> m_typeText;
  Handle<CURLM, curl_multi_cleanup> m_multi;
  Handle<CURL, curl_easy_cleanup> m_easy;
  unsigned long m_transfer = 0;  // the number of the latest
  bool m_running = false;
  bool m_opened = false;  // the server has begun to send a file
  CURLcode m_result = CURLE_OK;
  bool m_isText = false;
  bool m_heldReturn = false;  // a text stops at a carriage return: a line feed may follow
  std::string m_kept;
  std::size_t m_taken = 0;  // of m_kept, from its begin
};

// The file of a connection, as long as it is read.
class CurlFile : public CFile {
 public:
  CurlFile(CurlConnection &connection, unsigned long transfer)
      : m_connection(&connection), m_transfer(transfer) {}
  ~CurlFile() override { CurlFile::Close(); }

  std::size_t Read(void *buffer, std::size_t count) override {
    return m_connection == nullptr ? 0 : m_connection->Read(m_transfer, buffer, count);
  }
  void Close() override {
    if (m_connection != nullptr) m_connection->Close(m_transfer);
    m_connection = nullptr;
  }

 private:
  CurlConnection *m_connection;
  unsigned long m_transfer;
};

// A look at the server without a transfer tells whether it is there and lets us in.
CurlConnection::CurlConnection(char const *server, unsigned short port, long silenceSeconds)
    : m_url(::curl_url()),
      m_typeBinary(::curl_slist_append(nullptr, "TYPE I")),
      m_typeText(::curl_slist_append(nullptr, "TYPE A")),
      m_multi(::curl_multi_init()),
      m_easy(::curl_easy_init()) {
  Require(m_url != nullptr && m_typeBinary != nullptr && m_typeText != nullptr);
  Require(m_multi != nullptr && m_easy != nullptr);
  ::curl_url_set(m_url.get(), CURLUPART_SCHEME, "ftp", 0);
  ::curl_url_set(m_url.get(), CURLUPART_PORT, std::to_string(port).c_str(), 0);
  if (::curl_url_set(m_url.get(), CURLUPART_HOST, server, 0) != CURLUE_OK)
    throw ErrorOf(CURLE_URL_MALFORMAT);
  SetUp(silenceSeconds);
  ::curl_easy_setopt(m_easy.get(), CURLOPT_NOBODY, 1L);
  BeginTransfer("/");
  Work([] { return false; });
  EndTransfer();
  if (m_result != CURLE_OK) throw ErrorOf(m_result);
}

void CurlConnection::SetUp(long silenceSeconds) {
  CURL *const easy = m_easy.get();
  ::curl_easy_setopt(easy, CURLOPT_CURLU, m_url.get());
  ::curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  ::curl_easy_setopt(easy, CURLOPT_PROXY, "");  // nothing in the environment matters
  ::curl_easy_setopt(easy, CURLOPT_FTPPORT, "-");
  ::curl_easy_setopt(easy, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  ::curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, silenceSeconds);
  ::curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, silenceSeconds);
  ::curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
  ::curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, silenceSeconds);
  ::curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, Arrive);
  ::curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
  ::curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, Answer);
  ::curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
}

// Called by libcurl, which knows no exceptions: any other number than that of the bytes ends the
// transfer.
std::size_t CurlConnection::Arrive(char *bytes, std::size_t size, std::size_t count,
                                   void *connection) {
  try {
    static_cast<CurlConnection *>(connection)->Keep(bytes, size * count);
  } catch (...) {
    return 0;
  }
  return size * count;
}

// Of a text, CR LF is LF and every other byte is itself.
void CurlConnection::Keep(char const *bytes, std::size_t count) {
  if (!m_isText) {
    m_kept.append(bytes, count);
    return;
  }
  for (char const *byte = bytes; byte != bytes + count; ++byte) {
    if (*byte != '\n') KeepHeldReturn();
    m_heldReturn = *byte == '\r';
    if (!m_heldReturn) m_kept += *byte;
  }
}

void CurlConnection::KeepHeldReturn() {
  if (m_heldReturn) m_kept += '\r';
  m_heldReturn = false;
}

// 125 and 150 say that a file's data comes now.
std::size_t CurlConnection::Answer(char *line, std::size_t size, std::size_t count,
                                   void *connection) {
  bool const begins =
      size * count >= 3 && (std::memcmp(line, "125", 3) == 0 || std::memcmp(line, "150", 3) == 0);
  if (begins) static_cast<CurlConnection *>(connection)->m_opened = true;
  return size * count;
}

// Until libcurl tells the result, a transfer counts as one that broke off.
void CurlConnection::BeginTransfer(std::string const &path) {
  ++m_transfer;
  m_opened = false;
  m_heldReturn = false;
  m_kept.clear();
  m_taken = 0;
  m_result = CURLE_RECV_ERROR;
  Require(::curl_url_set(m_url.get(), CURLUPART_PATH, path.c_str(), 0) == CURLUE_OK);
  Require(::curl_multi_add_handle(m_multi.get(), m_easy.get()) == CURLM_OK);
  m_running = true;
}

// A transfer that is not at its end takes its connection with it.
void CurlConnection::EndTransfer() {
  ::curl_multi_remove_handle(m_multi.get(), m_easy.get());
  m_running = false;
}

// Lets the transfer go on until there is enough or it has ended.
template <class Enough>
void CurlConnection::Work(Enough enough) {
  while (m_running && !enough()) {
    int transfers = 0;
    Require(::curl_multi_perform(m_multi.get(), &transfers) == CURLM_OK);
    int messages = 0;
    if (CURLMsg const *message = ::curl_multi_info_read(m_multi.get(), &messages)) {
      m_result = message->data.result;
      m_running = false;
      KeepHeldReturn();
    }
    if (m_running && !enough()) ::curl_multi_poll(m_multi.get(), nullptr, 0, 1000, nullptr);
  }
}

std::unique_ptr<CFile> CurlConnection::OpenFile(char const *object, bool binary) {
  // libcurl lists a directory when the name ends in a slash.
  std::string const name = object;
  if (name.empty() || name.back() == '/') return nullptr;
  Handle<char, curl_free> const escaped(
      ::curl_easy_escape(m_easy.get(), name.c_str(), static_cast<int>(name.size())));
  Require(escaped != nullptr);
  EndTransfer();
  ::curl_easy_setopt(m_easy.get(), CURLOPT_NOBODY, 0L);
  // A text has another length on its way than at the server.
  ::curl_easy_setopt(m_easy.get(), CURLOPT_IGNORE_CONTENT_LENGTH, binary ? 0L : 1L);
  ::curl_easy_setopt(m_easy.get(), CURLOPT_PREQUOTE, (binary ? m_typeBinary : m_typeText).get());
  m_isText = !binary;
  BeginTransfer("/" + std::string(escaped.get()));
  Work([this] { return m_opened; });
  if (!m_opened) {
    EndTransfer();
    if (IsRefusal(m_result)) return nullptr;
    throw ErrorOf(m_result);
  }
  return std::make_unique<CurlFile>(*this, m_transfer);
}

// What is kept, up to `count` bytes.
std::size_t CurlConnection::Take(char *buffer, std::size_t count) {
  std::size_t const given = std::min(count, m_kept.size() - m_taken);
  std::memcpy(buffer, m_kept.data() + m_taken, given);
  m_taken += given;
  if (HasKept()) return given;
  m_kept.clear();
  m_taken = 0;
  return given;
}

// A transfer that broke off gives what had arrived, and the next time its error. Only one that
// libcurl has told to be whole has an end.
std::size_t CurlConnection::Read(unsigned long transfer, void *buffer, std::size_t count) {
  if (transfer != m_transfer) throw CInternetException(CInternetException::connectionAborted);
  auto *const to = static_cast<char *>(buffer);
  std::size_t done = 0;
  while (done < count) {
    Work([this] { return HasKept(); });
    if (!HasKept()) break;
    done += Take(to + done, count - done);
  }
  if (done == 0 && count != 0 && m_result != CURLE_OK) throw ErrorOf(m_result);
  return done;
}

}  // namespace

bool HasFtpClient() {
  return true;
}

std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const *server, unsigned short port,
                                                   long silenceSeconds) {
  static CURLcode const ready = ::curl_global_init(CURL_GLOBAL_DEFAULT);
  if (ready != CURLE_OK) throw ErrorOf(ready);
  return std::make_unique<CurlConnection>(server, port, silenceSeconds);
}
