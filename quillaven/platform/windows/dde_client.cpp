#include <windows.h>  // with ddeml.h

#include <quillaven/platform/dde_client_internal.h>

namespace {

HDDEDATA CALLBACK IgnoreTransaction(UINT /*type*/, UINT /*format*/, HCONV /*conversation*/,
                                    HSZ /*first*/, HSZ /*second*/, HDDEDATA /*data*/,
                                    ULONG_PTR /*one*/, ULONG_PTR /*two*/) {
  return nullptr;
}

// A string handle of an instance, freed at the end of its scope.
class DdeString {
 public:
  DdeString(unsigned long instance, char const *text)
      : m_instance(instance), m_handle(::DdeCreateStringHandleA(instance, text, CP_WINANSI)) {}
  ~DdeString() {
    if (m_handle != nullptr) ::DdeFreeStringHandle(m_instance, m_handle);
  }
  DdeString(DdeString const &) = delete;
  DdeString &operator=(DdeString const &) = delete;

  HSZ Handle() const { return m_handle; }

 private:
  unsigned long m_instance;
  HSZ m_handle;
};

// The transaction takes the data handle over, which a length of -1 says.
bool Transact(unsigned long instance, HCONV conversation, HSZ item, UINT type, void const *data,
              unsigned long bytes, unsigned int timeoutMs) {
  auto *const source = static_cast<BYTE *>(const_cast<void *>(data));
  HDDEDATA const handle = ::DdeCreateDataHandle(instance, source, bytes, 0, item, CF_TEXT, 0);
  if (handle == nullptr) return false;
  DWORD result = 0;
  return ::DdeClientTransaction(reinterpret_cast<BYTE *>(handle), static_cast<DWORD>(-1),
                                conversation, item, CF_TEXT, type, timeoutMs, &result) != nullptr;
}

}  // namespace

bool DdeClient::Start() {
  DWORD instance = 0;
  if (::DdeInitializeA(&instance, IgnoreTransaction, APPCMD_CLIENTONLY, 0) != DMLERR_NO_ERROR)
    return false;
  m_instance = instance;
  return true;
}

bool DdeClient::Connect(char const *service, char const *topic) {
  DdeString const serviceHandle(m_instance, service);
  DdeString const topicHandle(m_instance, topic);
  // An empty name has no handle, and none would connect to whatever topic there is.
  if (serviceHandle.Handle() == nullptr || topicHandle.Handle() == nullptr) return false;
  m_conversation = ::DdeConnect(m_instance, serviceHandle.Handle(), topicHandle.Handle(), nullptr);
  return m_conversation != nullptr;
}

bool DdeClient::Execute(void const *data, unsigned long bytes, unsigned int timeoutMs) {
  return Transact(m_instance, static_cast<HCONV>(m_conversation), nullptr, XTYP_EXECUTE, data,
                  bytes, timeoutMs);
}

bool DdeClient::Poke(char const *item, void const *data, unsigned long bytes,
                     unsigned int timeoutMs) {
  DdeString const itemHandle(m_instance, item);
  return Transact(m_instance, static_cast<HCONV>(m_conversation), itemHandle.Handle(), XTYP_POKE,
                  data, bytes, timeoutMs);
}

void DdeClient::Disconnect() {
  if (m_conversation != nullptr) ::DdeDisconnect(static_cast<HCONV>(m_conversation));
  m_conversation = nullptr;
}

// A conversation that is open ends with its instance.
void DdeClient::Stop() {
  m_conversation = nullptr;
  if (m_instance != 0) ::DdeUninitialize(m_instance);
  m_instance = 0;
}
