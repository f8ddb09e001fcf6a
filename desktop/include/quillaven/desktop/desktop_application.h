// An application with a screen: boxes, dialogs and the wait cursor of the library in real windows.
//
//   int main() {
//     CDesktopApplication application;          // in force as long as it lives
//     if (!application.HasDisplay()) return 1;
//     CSpline table;
//     return CSpline::DoModal(table) == 1 ? 0 : 2;
//   }
//
// The component QuillavenDesktop, a library of its own: over the system's dialog boxes on Windows,
// elsewhere over wxWidgets. A program that knows nothing of wxWidgets needs no more than this object:
// it starts the toolkit when the first window is asked for, and the last such object stops it. In a
// program that has a wxApp, that one is used. Derive from it to add what it leaves to the program:
// OnMainWindowMessage, HelpFilePath and Name.
//
// Make it within main, on the thread that shall own the windows, and not as a static object. Where
// there is no display every operation works as CApplication's, and RunModal cancels.
//
// Two or more may live at a time, and be destroyed in any order, but none while a window of it is
// open. The one that was made last is in force; destroying it puts in force the last before it that
// still lives. Destroying one that is not in force changes nothing that is. An application of
// another kind that was in force before has to live longer, as nobody tells of its end.

#pragma once

#include <memory>

#include <quillaven/platform/application.h>

#if defined(_WIN32)
#if defined(QUILLAVEN_BUILDING_DESKTOP)
#define QUILLAVEN_DESKTOP_API __declspec(dllexport)
#else
#define QUILLAVEN_DESKTOP_API __declspec(dllimport)
#endif
#else
#define QUILLAVEN_DESKTOP_API __attribute__((visibility("default")))
#endif

class QUILLAVEN_DESKTOP_API CDesktopApplication : public CApplication {
 public:
  /// Puts itself in force.
  CDesktopApplication();
  /// Puts in force what was before, if this one is in force, and ends its wait cursors.
  ~CDesktopApplication() override;
  CDesktopApplication(CDesktopApplication const &) = delete;
  CDesktopApplication &operator=(CDesktopApplication const &) = delete;

  /// Whether windows can be shown; starts the toolkit to find out. Asked anew as long as it cannot.
  bool HasDisplay();

  /// A modal box over the window in front, with the sign of an error (16) or a warning (48).
  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int helpId) override;
  /// These count: the cursor is back after as many ends as begins. An end too many does nothing.
  void BeginWaitCursor() override;
  void EndWaitCursor() override;
  /// The text in the toolkit's font, or the system's; letters are what is at least half covered.
  CStampImage MakeStamp(char const *text) override;
  /// Shows a dialog and returns when it is closed. What a dialog throws while it is open closes it
  /// and is thrown on. Without a display: a box that says so, and 2.
  unsigned int RunModal(CDialog &dialog) override;

 private:
  struct Desk;
  std::unique_ptr<Desk> m_desk;
};
