// A real window that shows a dialog of the library: a dialog box of the system with the controls of
// the template, the dialog's picture behind them, and every event of the user told to the dialog.
//
//   DialogWindow window(dialog);
//   unsigned int const result = window.Run(owner);   // 1 OK, 2 Cancel, 0 if there can be no window

#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include <quillaven/editor/dialog.h>

#include "desktop/windows/painter.h"

using WindowHandle = struct HWND__ *;  // HWND, without the system's header

class DialogWindow {
 public:
  explicit DialogWindow(CDialog &dialog);

  /// Shows the dialog until it is closed and returns its result; throws what the dialog has thrown.
  unsigned int Run(WindowHandle owner);
  /// Null as long as there is no window.
  WindowHandle Handle() const { return m_window; }

  // What the system tells; the answer is that of a dialog procedure.

  std::intptr_t OnOpen(WindowHandle window);
  std::intptr_t OnMessage(unsigned int message, std::uintptr_t first, std::intptr_t second);

 private:
  struct Shown {
    WindowHandle window = nullptr;
    CRect place;  // by the template
    std::vector<std::string> rows;
  };

  void Guarded(std::function<void()> const &what);
  void Open();
  std::intptr_t Answer(unsigned int message, std::uintptr_t first, std::intptr_t second);
  void TellPlaces();
  void TellSize(bool minimised);
  void ChooseFocus();
  void OnCommand(int id, unsigned int notification, bool ofControl);
  void OnControl(CControl const &control, unsigned int notification);
  void OnPaint();
  void PaintOn(ContextHandle context);

  /// Tells the dialog something, and shows what has become of it.
  void Tell(std::function<void()> const &event);
  void Show();
  void ShowControl(CControl const &control, Shown &shown);
  void Close();
  WindowHandle WindowOf(int id) const;

  CDialog &m_dialog;
  DialogIcon m_icon;
  WindowHandle m_window = nullptr;
  std::vector<Shown> m_shown;  // one for each control of the dialog
  bool m_showing = false;      // controls change because the dialog says so, not the user
  std::exception_ptr m_failure;
};
