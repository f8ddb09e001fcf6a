#include <quillaven/platform/dde_client_internal.h>

// There are no servers here: a client starts, and nobody answers it.

bool DdeClient::Start() {
  return true;
}

bool DdeClient::Connect(char const * /*service*/, char const * /*topic*/) {
  return false;
}

bool DdeClient::Execute(void const * /*data*/, unsigned long /*bytes*/,
                        unsigned int /*timeoutMs*/) {
  return false;
}

bool DdeClient::Poke(char const * /*item*/, void const * /*data*/, unsigned long /*bytes*/,
                     unsigned int /*timeoutMs*/) {
  return false;
}

void DdeClient::Disconnect() {
  m_conversation = nullptr;
}

void DdeClient::Stop() {
  Disconnect();
  m_instance = 0;
}
