// One client of dynamic data exchange (DDE): an instance, and at most one conversation in it.
//
//   DdeClient client;
//   if (client.Start() && client.Connect("EXCEL", "system"))
//     client.Execute("[BEEP]", 7, 10000);       // the length counts the zero byte at the end
//   client.Stop();
//
// Text is of the ANSI code page. DDE is a facility of Windows: elsewhere a client starts, and no
// connect succeeds.

#pragma once

class DdeClient {
 public:
  DdeClient() = default;
  ~DdeClient() { Stop(); }
  DdeClient(DdeClient const &) = delete;
  DdeClient &operator=(DdeClient const &) = delete;

  bool Start();
  /// One try to find a server.
  bool Connect(char const *service, char const *topic);
  /// Transactions of a text, synchronous; false after the time-out or when the server refuses.
  bool Execute(void const *data, unsigned long bytes, unsigned int timeoutMs);
  bool Poke(char const *item, void const *data, unsigned long bytes, unsigned int timeoutMs);
  void Disconnect();
  /// Ends the instance, and with it a conversation that is open.
  void Stop();

 private:
  unsigned long m_instance = 0;
  void *m_conversation = nullptr;
};
