// What a running application with a screen supplies to the library.
//
//   class MyApplication : public CApplication {
//     std::string HelpFilePath() const override { return "C:\\MyModel\\Help\\model.hlp"; }
//     void OnMainWindowMessage(unsigned int message) override { if (message == 32771) Redraw(); }
//   };
//   SetApplication(&myApplication);
//
// The object is not owned. One that is destroyed while it is in force leaves the built-in one there,
// but a pointer to it that SetApplication has returned is no good any more. Every default works
// without a screen. All calls come on the caller's thread.

#pragma once

#include <string>
#include <vector>

#include <quillaven/platform/api.h>

class CDialog;

/// A text as pixels: row by row from the top, 1 for a letter pixel, 0 for background.
struct CStampImage {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> letters;  // width x height
};

class QUILLAVEN_API CApplication {
 public:
  CApplication() = default;
  CApplication(CApplication const &) = default;
  CApplication &operator=(CApplication const &) = default;
  virtual ~CApplication();

  /// Shows a modal box; returns when it is dismissed. `type` is 0 for plain OK, 16 for an error, 48
  /// for an exclamation. Default: title and text on standard error (the system's box on Windows).
  /// All boxes of the library end here.
  virtual int DoMessageBox(char const *text, char const *title, unsigned int type,
                           unsigned int helpId);
  /// A message for the main window, delivered synchronously (32771: cells have changed). Default:
  /// nothing.
  virtual void OnMainWindowMessage(unsigned int message);
  virtual void BeginWaitCursor();
  virtual void EndWaitCursor();
  /// Path of the application's help file; its directory holds "Legends" and "Palettes". Default:
  /// empty.
  virtual std::string HelpFilePath() const;
  /// Draws a text for the corner of a bitmap. Default: the built-in fixed font (the system's default
  /// font on Windows).
  virtual CStampImage MakeStamp(char const *text);
  /// Runs a dialog to its end and returns 1 for OK, 2 for Cancel. Default: 2, as nobody can press
  /// OK.
  virtual unsigned int RunModal(CDialog &dialog);
  /// Title of boxes that have no title of their own. Default: "Quillaven".
  virtual std::string Name() const;
};

/// Puts an application in force and returns the one before; null brings back the built-in one.
QUILLAVEN_API CApplication *SetApplication(CApplication *application);
QUILLAVEN_API CApplication &GetApplication();
