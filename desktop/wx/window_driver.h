// Works real windows from within a test: real events of mouse and keyboard, sent to the display.
//
//   WindowDriver driver;
//   driver.scripts = {[](WindowDriver &d) { d.Click("5004"); }};   // one for each window that opens
//   EXPECT_EQ(CSpline::DoModal(table), 2U);                        // ended by the script
//
// A script runs when its window is on the screen. One that leaves it open fails the test, and the
// window is cancelled. A window opens above another while the other's script waits.

#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>
#include <wx/dialog.h>
#include <wx/modalhook.h>
#include <wx/uiaction.h>

#include <gtest/gtest.h>

#include "desktop/wx/screenshot.h"

class WindowDriver : public wxModalDialogHook {
 public:
  using Script = std::function<void(WindowDriver &)>;

  WindowDriver() { Register(); }
  ~WindowDriver() override {
    Unregister();
    EXPECT_TRUE(scripts.empty()) << scripts.size() << " windows did not open";
  }

  std::vector<Script> scripts;
  std::vector<wxString> titles;
  std::vector<wxString> messages;  // of boxes, which are dismissed at once

  /// The window in front.
  wxDialog &Window() const { return *m_open.back(); }
  wxWindow &Panel() const { return *Window().GetChildren().front(); }
  wxWindow &Control(std::string const &id) const {
    wxWindow *const window = wxWindow::FindWindowByName(id, &Window());
    if (window == nullptr) throw std::runtime_error("no control " + id);
    return *window;
  }
  template <class Kind>
  Kind &As(std::string const &id) const {
    return dynamic_cast<Kind &>(Control(id));
  }

  /// Lets the window work until nothing has come for a while.
  void Settle(int milliseconds = 60) {
    auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::chrono::steady_clock::now() < end) {
      wxYield();
      wxMilliSleep(2);
    }
  }
  void MoveTo(wxPoint inPanel) { m_mouse.MouseMove(Panel().ClientToScreen(inPanel)); }
  void Press(wxPoint inPanel) {
    GoTo(Panel().ClientToScreen(inPanel));
    m_mouse.MouseDown();
    Settle();
  }
  void Release() {
    m_mouse.MouseUp();
    Settle();
  }
  void Drag(wxPoint from, wxPoint to, int steps = 10) {
    Press(from);
    for (int i = 1; i <= steps; ++i) {
      MoveTo({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
      Settle(20);
    }
    Release();
  }
  void DoubleClick(wxPoint inPanel) {
    GoTo(Panel().ClientToScreen(inPanel));
    m_mouse.MouseDblClick();
    Settle();
  }
  void RightClick(wxPoint inPanel) {
    GoTo(Panel().ClientToScreen(inPanel));
    m_mouse.MouseClick(wxMOUSE_BTN_RIGHT);
    Settle();
  }
  void Click(std::string const &id) {
    wxRect const place = Control(id).GetScreenRect();
    GoTo({place.x + place.width / 2, place.y + place.height / 2});
    m_mouse.MouseClick();
    Settle();
  }
  /// Without a window manager nobody hands out the focus: the window takes it.
  void Focus(std::string const &id) {
    Window().Raise();
    Control(id).SetFocus();
    Settle();
  }
  void Key(int key, int modifiers = wxMOD_NONE) {
    m_mouse.Char(key, modifiers);
    Settle();
  }
  /// Writes over the text of an edit.
  void Write(std::string const &id, std::string const &text) {
    Click(id);
    Focus(id);
    Key('A', wxMOD_CONTROL);
    m_mouse.Text(text.c_str());
    Settle();
  }
  wxString TextOf(std::string const &id) const;
  /// Writes a picture of the window in front.
  Screenshot Photograph(std::string const &file);

 protected:
  int Enter(wxDialog *dialog) override;
  void Exit(wxDialog *dialog) override;

 private:
  void Run(wxDialog *dialog, Script const &script);

  /// Goes to a place to press a button there. Two clicks in one place in less than the time of a
  /// double click would be one: this waits for the second.
  void GoTo(wxPoint onScreen) {
    wxPoint const away = onScreen - m_pressed;
    if (away.x * away.x + away.y * away.y < 400) Settle(500);
    m_pressed = onScreen;
    m_mouse.MouseMove(onScreen);
    Settle();
  }

  wxUIActionSimulator m_mouse;
  wxPoint m_pressed{-1000, -1000};  // where a button was pressed last, on the screen
  std::vector<wxDialog *> m_open;
};
