// What carries the spreadsheet link's texts to a spreadsheet.
//
//   class MyTransport : public CSpreadsheetTransport { ... };   // a file, a socket, a test
//   MyTransport transport;
//   SetSpreadsheetTransport(&transport);
//   XLLINK::excel_data("Sheet1", "R1C1", "42");
//
// The built-in one is dynamic data exchange (DDE) on Windows; elsewhere it starts, and no connect
// succeeds. The object in force is not owned: put null in force before it is destroyed.
//
// Every operation of the link calls Start, Connect up to ten times, at most one of Execute and Poke,
// Disconnect where it has done one of those, and Stop. Nothing is kept open between operations. One
// operation may come within another, from a box or a message that the outer one waits with: its calls,
// from Start to Stop, all lie between two calls of the outer one.

#pragma once

#include <quillaven/platform/api.h>

class QUILLAVEN_API CSpreadsheetTransport {
 public:
  CSpreadsheetTransport() = default;
  CSpreadsheetTransport(CSpreadsheetTransport const &) = default;
  CSpreadsheetTransport &operator=(CSpreadsheetTransport const &) = default;
  virtual ~CSpreadsheetTransport();

  /// Makes an instance of the link; false if none could be made. Stop is then not called.
  virtual bool Start();
  /// One try to reach a service, such as "EXCEL", on a topic: "system" or the name of a sheet.
  virtual bool Connect(char const *service, char const *topic);
  /// Has the spreadsheet execute a text. `bytes` counts the zero byte at its end. False if it is not
  /// done within the time-out, in milliseconds.
  virtual bool Execute(void const *data, unsigned long bytes, unsigned int timeoutMs);
  /// Puts a text into an item of the topic, a cell. Lengths and result as in Execute.
  virtual bool Poke(char const *item, void const *data, unsigned long bytes,
                    unsigned int timeoutMs);
  /// Ends the conversation.
  virtual void Disconnect();
  /// Ends the instance, and with it a conversation that is still open.
  virtual void Stop();
};

/// Puts a transport in force and returns the one before; null brings back the built-in one.
QUILLAVEN_API CSpreadsheetTransport *SetSpreadsheetTransport(CSpreadsheetTransport *transport);
QUILLAVEN_API CSpreadsheetTransport &GetSpreadsheetTransport();
