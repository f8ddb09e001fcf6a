// Stands for a spreadsheet: a DDE server of the service EXCEL with the topics "system", "Sheet1" and a
// sheet whose name is 255 times the letter S.
//
//   dde_server LOG
//
// Each event goes to LOG, a line each. It refuses the command "[REFUSE]" and data for the cell "REFUSE".
// It gives no answer to "[WAIT]" and to data for the cell "WAIT", and ends when those who wait have
// left; else on "[QUIT()]". In any case it ends after 20 seconds.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <windows.h>  // with ddeml.h

namespace {

DWORD g_instance = 0;
HSZ g_service = nullptr;
HSZ g_system = nullptr;
HSZ g_sheet = nullptr;
HSZ g_longSheet = nullptr;
int g_waiting = 0;
std::FILE *g_log = nullptr;

std::string TextOf(HSZ handle) {
  char text[256] = "";
  ::DdeQueryStringA(g_instance, handle, text, sizeof text, CP_WINANSI);
  return text;
}

// All bytes, with each zero byte to be seen.
std::string BytesOf(HDDEDATA data) {
  std::string bytes(::DdeGetData(data, nullptr, 0, 0), '\0');
  ::DdeGetData(data, reinterpret_cast<BYTE *>(bytes.data()), static_cast<DWORD>(bytes.size()), 0);
  std::string shown;
  for (char const byte : bytes) byte == '\0' ? shown += "<0>" : shown += byte;
  return shown;
}

void Log(std::string const &line) {
  std::fprintf(g_log, "%s\n", line.c_str());
  std::fflush(g_log);
}

HDDEDATA Answer(bool yes) {
  return reinterpret_cast<HDDEDATA>(static_cast<ULONG_PTR>(yes ? DDE_FACK : DDE_FNOTPROCESSED));
}

bool HasTopic(HSZ topic) {
  for (HSZ const known : {g_system, g_sheet, g_longSheet})
    if (::DdeCmpStringHandles(topic, known) == 0) return true;
  return false;
}

// Whoever asks for any topic gets the sheet.
HDDEDATA AnyTopic() {
  HSZPAIR pairs[2] = {{g_service, g_sheet}, {nullptr, nullptr}};
  return ::DdeCreateDataHandle(g_instance, reinterpret_cast<BYTE *>(pairs), sizeof pairs, 0,
                               nullptr, 0, 0);
}

// Takes the next message, and says whether the server is to go on.
bool GoOn() {
  MSG message;
  if (::GetMessageA(&message, nullptr, 0, 0) <= 0) return false;
  if (message.message == WM_TIMER && message.hwnd == nullptr) return false;  // its time is over
  ::DispatchMessageA(&message);
  return true;
}

// Serves the other conversations until none waits, and ends: no one is left to answer.
[[noreturn]] void GiveNoAnswer() {
  ++g_waiting;
  while (g_waiting > 0 && GoOn()) {
  }
  std::_Exit(0);
}

HDDEDATA CALLBACK Serve(UINT type, UINT format, HCONV /*conversation*/, HSZ first, HSZ second,
                        HDDEDATA data, ULONG_PTR /*one*/, ULONG_PTR /*two*/) {
  if (type == XTYP_CONNECT) {
    bool const known = ::DdeCmpStringHandles(second, g_service) == 0 && HasTopic(first);
    Log("connect " + TextOf(second) + "|" + TextOf(first) + (known ? "" : " unknown"));
    return reinterpret_cast<HDDEDATA>(static_cast<ULONG_PTR>(known));
  }
  if (type == XTYP_WILDCONNECT) {
    Log("wildcard");
    return AnyTopic();
  }
  if (type == XTYP_EXECUTE) {
    std::string const command = BytesOf(data);
    Log("execute " + TextOf(first) + " " + command);
    if (command == "[QUIT()]<0>") ::PostQuitMessage(0);
    if (command == "[WAIT]<0>") GiveNoAnswer();
    return Answer(command != "[REFUSE]<0>");
  }
  if (type == XTYP_POKE) {
    std::string const item = TextOf(second);
    Log("poke " + TextOf(first) + "!" + item + " " + std::to_string(format) + " " + BytesOf(data));
    if (item == "WAIT") GiveNoAnswer();
    return Answer(item != "REFUSE");
  }
  if (type == XTYP_DISCONNECT) {
    Log("disconnect");
    if (g_waiting > 0) --g_waiting;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) return 2;
  g_log = std::fopen(argv[1], "wb");
  if (g_log == nullptr) return 2;
  if (::DdeInitializeA(&g_instance, Serve, APPCLASS_STANDARD, 0) != DMLERR_NO_ERROR) return 3;
  g_service = ::DdeCreateStringHandleA(g_instance, "EXCEL", CP_WINANSI);
  g_system = ::DdeCreateStringHandleA(g_instance, "system", CP_WINANSI);
  g_sheet = ::DdeCreateStringHandleA(g_instance, "Sheet1", CP_WINANSI);
  g_longSheet = ::DdeCreateStringHandleA(g_instance, std::string(255, 'S').c_str(), CP_WINANSI);
  ::DdeNameService(g_instance, g_service, nullptr, DNS_REGISTER);
  Log("ready");
  constexpr UINT kLongestLife = 20000;
  ::SetTimer(nullptr, 0, kLongestLife, nullptr);
  while (GoOn()) {
  }
  ::DdeNameService(g_instance, nullptr, nullptr, DNS_UNREGISTER);
  ::DdeUninitialize(g_instance);
  std::fclose(g_log);
}
