#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include <quillaven/foundation/tempfiles.h>
#include <quillaven/platform/directories_internal.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/ftp.h>
#include <quillaven/platform/system_paths.h>

namespace {

std::string LastComponent(std::string const &path) {
  return path.substr(path.find_last_of("\\/") + 1);
}

// Where a URL leads. The object is all that stands behind the server, with its slash.
struct Location {
  enum Service { none, ftp, file };
  Service service = none;
  std::string server;
  std::string object;
};

bool BeginsWithoutCase(std::string const &text, char const *lowerCase) {
  std::size_t i = 0;
  for (; lowerCase[i] != '\0' && i < text.size(); ++i) {
    char const c = text[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lowerCase[i]) return false;
  }
  return lowerCase[i] == '\0';
}

// The server of "user:password@server:port"; an address of version 6 keeps its brackets.
std::string ServerOf(std::string const &authority) {
  std::string const place = authority.substr(authority.rfind('@') + 1);
  std::size_t const bracket = place.find(']');
  return place.substr(0, place.find(':', bracket == std::string::npos ? 0 : bracket));
}

Location ParseUrl(std::string const &url) {
  if (BeginsWithoutCase(url, "file:")) return {Location::file, "", url.substr(5)};
  if (!BeginsWithoutCase(url, "ftp://")) return {};
  std::size_t const begin = 6;
  std::size_t const end = std::min(url.find('/', begin), url.size());
  std::string const server = ServerOf(url.substr(begin, end - begin));
  if (server.empty()) return {};
  return {Location::ftp, server, url.substr(end)};
}

// The source of a copy. The file goes before its connection.
class CRemoteFile {
 public:
  bool Open(char const *url, bool binary) {
    Location const location = ParseUrl(url);
    switch (location.service) {
      case Location::ftp:
        return OpenAtServer(location, binary);
      case Location::file:
        return OpenHere(url, binary);
      default:
        return false;
    }
  }
  std::size_t Read(void *buffer, std::size_t count) { return m_file->Read(buffer, count); }
  void Close() { m_file->Close(); }

 private:
  bool OpenAtServer(Location const &location, bool binary) {
    m_connection = GetFtpTransport().Connect(location.server.c_str());
    if (m_connection != nullptr) m_file = m_connection->OpenFile(location.object.c_str(), binary);
    return m_file != nullptr;
  }

  // The whole text is the name, not the part behind "file:": callers know these URLs so.
  bool OpenHere(char const *name, bool binary) {
    m_file = std::make_unique<CStdioFile>();
    CFileException dropped;
    return m_file->Open(name, CFile::modeRead | (binary ? CFile::typeBinary : CFile::typeText),
                        &dropped);
  }

  std::unique_ptr<CFtpConnection> m_connection;
  std::unique_ptr<CFile> m_file;
};

}  // namespace

// A name that differs from a file's in case alone does not delete it: SystemPath would find that
// file as soon as the named one is gone. A name that memory does not suffice for keeps its file, and
// the others go all the same.
CTempFiles::~CTempFiles() {
  for (std::string const &name : m_names) {
    try {
      std::string const path = SystemPath(name);
      if (LastComponent(path) == LastComponent(name)) RemoveFile(path.c_str());
    } catch (std::bad_alloc const &) {  // whether a deletion succeeds is not looked at
    }
  }
}

void CTempFiles::Add(std::string const &name) {
  m_names.push_back(name);
}

bool CopyRemoteFileToLocalFile(char const *source, char const *target, bool binary) {
  if (source == nullptr || target == nullptr) return false;
  CRemoteFile from;
  CStdioFile to;
  if (!from.Open(source, binary)) return false;
  unsigned int const type = binary ? CFile::typeBinary : CFile::typeText;
  if (!to.Open(target, CFile::modeCreate | CFile::modeWrite | type)) return false;

  char buffer[4096];
  while (std::size_t const count = from.Read(buffer, sizeof buffer)) to.Write(buffer, count);
  from.Close();
  to.Close();
  return true;
}
