#include <cstring>
#include <string>

#include <quillaven/platform/message_box_internal.h>
#include <quillaven/spreadsheet/transport.h>
#include <quillaven/spreadsheet/xllink.h>

namespace {

constexpr char kService[] = "EXCEL";
constexpr char kLinkTitle[] = "Link to Excel";
constexpr char kErrorTitle[] = "ERROR";
constexpr unsigned int kErrorBox = 16;
constexpr unsigned int kTimeoutMs = 10000;
constexpr int kConnectTries = 10;
constexpr std::size_t kNameLimit = 255;

void ShowError(char const *text, char const *title) {
  ShowMessageBox(text, title, kErrorBox);
}

bool IsNameTooLong(char const *name, char const *message) {
  if (std::strlen(name) <= kNameLimit) return false;
  ShowError(message, kLinkTitle);
  return true;
}

bool IsSheetNameTooLong(char const *sheet) {
  return IsNameTooLong(sheet, "sheet-name buffer to big (>255)");
}

bool IsCellNameTooLong(char const *cell) {
  return IsNameTooLong(cell, "cell-name buffer to big (>255)");
}

// The length of a text as it is sent: the zero byte is part of the data.
unsigned long SentLength(char const *text) {
  return static_cast<unsigned long>(std::strlen(text)) + 1;
}

// An open conversation, ended at the end of its scope.
class Conversation {
 public:
  explicit Conversation(CSpreadsheetTransport &transport) : m_transport(transport) {}
  ~Conversation() { m_transport.Disconnect(); }
  Conversation(Conversation const &) = delete;
  Conversation &operator=(Conversation const &) = delete;

 private:
  CSpreadsheetTransport &m_transport;
};

void TellFailedTransaction() {
  ShowError("DdeClientTransaction failure", kLinkTitle);
}

// An instance of the link, stopped at the end of its scope.
class Link {
 public:
  Link() : m_transport(GetSpreadsheetTransport()), m_started(m_transport.Start()) {
    if (!m_started) ShowError("Can't initialize communication with DDE Manager", kErrorTitle);
  }
  ~Link() {
    if (m_started) m_transport.Stop();
  }
  Link(Link const &) = delete;
  Link &operator=(Link const &) = delete;

  bool IsStarted() const { return m_started; }

  bool Connect(char const *topic) {
    for (int tries = 0; tries < kConnectTries; ++tries)
      if (m_transport.Connect(kService, topic)) return true;
    return false;
  }

  void Execute(char const *command) {
    Conversation const open(m_transport);
    if (!m_transport.Execute(command, SentLength(command), kTimeoutMs)) TellFailedTransaction();
  }

  void Poke(char const *cell, char const *data) {
    Conversation const open(m_transport);
    if (!m_transport.Poke(cell, data, SentLength(data), kTimeoutMs)) TellFailedTransaction();
  }

 private:
  CSpreadsheetTransport &m_transport;
  bool m_started;
};

}  // namespace

// True says only that the link could be started. Callers know excel_command and excel_data so.

bool XLLINK::excel_command(char const *command) {
  Link link;
  if (!link.IsStarted()) return false;
  if (link.Connect("system")) {
    link.Execute(command);
  } else {
    ShowError("Can't connect to Excel", kErrorTitle);
  }
  return true;
}

bool XLLINK::excel_data(char const *sheet, char const *cell, char const *data) {
  if (IsSheetNameTooLong(sheet) || IsCellNameTooLong(cell)) return false;
  Link link;
  if (!link.IsStarted()) return false;
  if (link.Connect(sheet)) {
    link.Poke(cell, data);
  } else {
    ShowError((std::string("Can't connect to Excel sheet : ") + sheet).c_str(), kErrorTitle);
  }
  return true;
}

// The conversation is not disconnected: it ends with the link.
bool XLLINK::is_sheet_open(char const *sheet) {
  if (IsSheetNameTooLong(sheet)) return false;
  Link link;
  return link.IsStarted() && link.Connect(sheet);
}
