#include <quillaven/platform/dde_client_internal.h>
#include <quillaven/spreadsheet/transport.h>

namespace {

// Each thread has a client of its own: a conversation belongs to the thread that began it.
DdeClient &Client() {
  static thread_local DdeClient client;
  return client;
}

CSpreadsheetTransport &BuiltInTransport() {
  static CSpreadsheetTransport transport;
  return transport;
}

CSpreadsheetTransport *g_transport = nullptr;  // null: the built-in one

}  // namespace

CSpreadsheetTransport::~CSpreadsheetTransport() = default;

bool CSpreadsheetTransport::Start() {
  return Client().Start();
}
bool CSpreadsheetTransport::Connect(char const *service, char const *topic) {
  return Client().Connect(service, topic);
}
bool CSpreadsheetTransport::Execute(void const *data, unsigned long bytes, unsigned int timeoutMs) {
  return Client().Execute(data, bytes, timeoutMs);
}
bool CSpreadsheetTransport::Poke(char const *item, void const *data, unsigned long bytes,
                                 unsigned int timeoutMs) {
  return Client().Poke(item, data, bytes, timeoutMs);
}
void CSpreadsheetTransport::Disconnect() {
  Client().Disconnect();
}
void CSpreadsheetTransport::Stop() {
  Client().Stop();
}

CSpreadsheetTransport *SetSpreadsheetTransport(CSpreadsheetTransport *transport) {
  CSpreadsheetTransport *before = &GetSpreadsheetTransport();
  g_transport = transport;
  return before;
}

CSpreadsheetTransport &GetSpreadsheetTransport() {
  return g_transport != nullptr ? *g_transport : BuiltInTransport();
}
