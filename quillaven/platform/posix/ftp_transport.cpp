#include <algorithm>
#include <cstring>
#include <curl/curl.h>
#include <string>

#include <quillaven/platform/ftp_client_internal.h>

namespace {

constexpr long kSilenceSeconds = 60;  // how long a server may say nothing

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
class CurlConnection : public CFtpConnection {
 public:
  CurlConnection(char const *server, unsigned short port);
  ~CurlConnection() override { EndTransfer(); }

  std::unique_ptr<CFile> OpenFile(char const *object, bool binary) override;
  std::size_t Read(void *buffer, std::size_t count);
  void EndTransfer();

 private:
  static std::size_t Arrive(char *bytes, std::size_t size, std::size_t count, void *connection);
  static std::size_t Answer(char *line, std::size_t size, std::size_t count, void *connection);
  void SetUp();
  void BeginTransfer(std::string const &path);
  template <class Enough>
  void Work(Enough enough);
  bool HasKept() const { return m_taken < m_kept.size(); }

  Handle<CURLU, curl_url_cleanup> m_url;  // what is used by the next goes after it
  Handle<CURLM, curl_multi_cleanup> m_multi;
  Handle<CURL, curl_easy_cleanup> m_easy;
  bool m_running = false;
  bool m_opened = false;  // the server has begun to send a file
  CURLcode m_result = CURLE_OK;
  std::string m_kept;
  std::size_t m_taken = 0;  // of m_kept, from its begin
};

// The file of a connection, as long as it is read.
class CurlFile : public CFile {
 public:
  explicit CurlFile(CurlConnection &connection) : m_connection(&connection) {}
  ~CurlFile() override { CurlFile::Close(); }

  std::size_t Read(void *buffer, std::size_t count) override {
    return m_connection == nullptr ? 0 : m_connection->Read(buffer, count);
  }
  void Close() override {
    if (m_connection != nullptr) m_connection->EndTransfer();
    m_connection = nullptr;
  }

 private:
  CurlConnection *m_connection;
};

// A look at the server without a transfer tells whether it is there and lets us in.
CurlConnection::CurlConnection(char const *server, unsigned short port)
    : m_url(::curl_url()), m_multi(::curl_multi_init()), m_easy(::curl_easy_init()) {
  Require(m_url != nullptr && m_multi != nullptr && m_easy != nullptr);
  ::curl_url_set(m_url.get(), CURLUPART_SCHEME, "ftp", 0);
  ::curl_url_set(m_url.get(), CURLUPART_PORT, std::to_string(port).c_str(), 0);
  if (::curl_url_set(m_url.get(), CURLUPART_HOST, server, 0) != CURLUE_OK)
    throw ErrorOf(CURLE_URL_MALFORMAT);
  SetUp();
  ::curl_easy_setopt(m_easy.get(), CURLOPT_NOBODY, 1L);
  BeginTransfer("/");
  Work([] { return false; });
  EndTransfer();
  if (m_result != CURLE_OK) throw ErrorOf(m_result);
}

void CurlConnection::SetUp() {
  CURL *const easy = m_easy.get();
  ::curl_easy_setopt(easy, CURLOPT_CURLU, m_url.get());
  ::curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  ::curl_easy_setopt(easy, CURLOPT_PROXY, "");  // nothing in the environment matters
  ::curl_easy_setopt(easy, CURLOPT_FTPPORT, "-");
  ::curl_easy_setopt(easy, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  ::curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, kSilenceSeconds);
  ::curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, kSilenceSeconds);
  ::curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
  ::curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, kSilenceSeconds);
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
    static_cast<CurlConnection *>(connection)->m_kept.append(bytes, size * count);
  } catch (...) {
    return 0;
  }
  return size * count;
}

// 125 and 150 say that a file's data comes now.
std::size_t CurlConnection::Answer(char *line, std::size_t size, std::size_t count,
                                   void *connection) {
  bool const begins =
      size * count >= 3 && (std::memcmp(line, "125", 3) == 0 || std::memcmp(line, "150", 3) == 0);
  if (begins) static_cast<CurlConnection *>(connection)->m_opened = true;
  return size * count;
}

void CurlConnection::BeginTransfer(std::string const &path) {
  m_opened = false;
  m_kept.clear();
  m_taken = 0;
  m_result = CURLE_OK;
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
  ::curl_easy_setopt(m_easy.get(), CURLOPT_TRANSFERTEXT, binary ? 0L : 1L);
  BeginTransfer("/" + std::string(escaped.get()));
  Work([this] { return m_opened; });
  if (!m_opened) {
    EndTransfer();
    if (IsRefusal(m_result)) return nullptr;
    throw ErrorOf(m_result);
  }
  return std::make_unique<CurlFile>(*this);
}

// A transfer that broke off gives what had arrived, and then its error.
std::size_t CurlConnection::Read(void *buffer, std::size_t count) {
  if (!HasKept()) {
    m_kept.clear();
    m_taken = 0;
    Work([this] { return HasKept(); });
  }
  if (!HasKept() && m_result != CURLE_OK) throw ErrorOf(m_result);
  std::size_t const given = std::min(count, m_kept.size() - m_taken);
  std::memcpy(buffer, m_kept.data() + m_taken, given);
  m_taken += given;
  return given;
}

}  // namespace

bool HasFtpClient() {
  return true;
}

std::unique_ptr<CFtpConnection> ConnectToFtpServer(char const *server, unsigned short port) {
  static CURLcode const ready = ::curl_global_init(CURL_GLOBAL_DEFAULT);
  if (ready != CURLE_OK) throw ErrorOf(ready);
  return std::make_unique<CurlConnection>(server, port);
}
