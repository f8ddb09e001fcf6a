#include <memory>
#include <utility>
#include <vector>

#include <quillaven/platform/dde_client_internal.h>
#include <quillaven/spreadsheet/transport.h>

namespace {

// Each thread has clients of its own: a conversation belongs to the thread that began it. While one
// waits or shows a box the system works off messages, and the application may use the link again from
// there; so each Start has a client, and the last one that has not been stopped is the one at work.
std::vector<std::unique_ptr<DdeClient>> &Clients() {
  static thread_local std::vector<std::unique_ptr<DdeClient>> clients;
  return clients;
}

CSpreadsheetTransport &BuiltInTransport() {
  static CSpreadsheetTransport transport;
  return transport;
}

CSpreadsheetTransport *g_transport = nullptr;  // null: the built-in one

}  // namespace

CSpreadsheetTransport::~CSpreadsheetTransport() = default;

bool CSpreadsheetTransport::Start() {
  auto client = std::make_unique<DdeClient>();
  bool const started = client->Start();
  if (started) Clients().push_back(std::move(client));
  return started;
}
bool CSpreadsheetTransport::Connect(char const *service, char const *topic) {
  return !Clients().empty() && Clients().back()->Connect(service, topic);
}
bool CSpreadsheetTransport::Execute(void const *data, unsigned long bytes, unsigned int timeoutMs) {
  return !Clients().empty() && Clients().back()->Execute(data, bytes, timeoutMs);
}
bool CSpreadsheetTransport::Poke(char const *item, void const *data, unsigned long bytes,
                                 unsigned int timeoutMs) {
  return !Clients().empty() && Clients().back()->Poke(item, data, bytes, timeoutMs);
}
void CSpreadsheetTransport::Disconnect() {
  if (!Clients().empty()) Clients().back()->Disconnect();
}
void CSpreadsheetTransport::Stop() {
  if (!Clients().empty()) Clients().pop_back();
}

CSpreadsheetTransport *SetSpreadsheetTransport(CSpreadsheetTransport *transport) {
  CSpreadsheetTransport *before = &GetSpreadsheetTransport();
  g_transport = transport;
  return before;
}

CSpreadsheetTransport &GetSpreadsheetTransport() {
  return g_transport != nullptr ? *g_transport : BuiltInTransport();
}
