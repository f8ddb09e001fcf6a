// Works real dialog boxes from within a test, by the messages that the system would send.
//
//   WindowDriver driver;
//   driver.scripts = {[](WindowDriver &d) { d.Click(5004); }};   // one for each dialog that opens
//   EXPECT_EQ(CSpline::DoModal(table), 2U);                      // ended by the script
//
// A script runs when its dialog is open. One that leaves it open fails the test, and the dialog is
// cancelled. A dialog opens above another while the other's script waits. Boxes are answered at once.

#pragma once

#include <functional>
#include <string>
#include <vector>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/desktop/desktop_application.h>

#include "tests/support/seen_box.h"

/// The client area of a window, painted into memory.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<unsigned long> pixels;  // 0x00BBGGRR, row by row from the top

  unsigned long At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
  long CountOf(unsigned long colour) const;
};

/// Tells the driver which windows are boxes.
class DrivenApplication : public CDesktopApplication {
 public:
  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int helpId) override;
};

class WindowDriver {
 public:
  using Script = std::function<void(WindowDriver &)>;

  WindowDriver();
  ~WindowDriver();
  WindowDriver(WindowDriver const &) = delete;
  WindowDriver &operator=(WindowDriver const &) = delete;

  std::vector<Script> scripts;
  std::vector<SeenBox> boxes;

  /// The dialog in front.
  HWND Window() const { return m_open.back(); }
  HWND Control(int id) const;
  /// Where a control lies in its dialog.
  RECT PlaceOf(int id) const;
  std::string TextOf(int id) const;
  std::string Title() const;
  std::vector<std::string> RowsOf(int id) const;
  bool IsShown(int id) const;
  bool IsChecked(int id) const;
  bool HasStyle(int id, LONG_PTR style) const;

  void Mouse(UINT message, POINT point) const;
  void Drag(POINT from, POINT to, int steps = 10) const;
  void DoubleClick(POINT point) const;
  void RightClick(POINT point) const { Mouse(WM_RBUTTONDOWN, point); }
  void Click(int id) const { ::SendMessageA(Control(id), BM_CLICK, 0, 0); }
  /// As the tab key gives it.
  void Focus(int id) const;
  /// Writes over the text of an edit, letter by letter.
  void Write(int id, std::string const &text) const;
  /// A key, down and up, for the window with the focus, by way of the dialog's keyboard.
  void Key(WPARAM key) const;
  /// Lets the system deliver what is waiting.
  void Settle() const;
  Picture Paint() const;

 private:
  friend class DrivenApplication;
  static LRESULT CALLBACK OnHook(int code, WPARAM window, LPARAM other);
  static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
  void OnActivate(HWND window);
  void RunScript(HWND window);

  HHOOK m_hook;
  bool m_inBox = false;
  std::vector<HWND> m_open;
};
