// A real window that shows a dialog of the library: the toolkit's controls in the places of the
// template, the dialog's picture behind them, and every event of the user told to the dialog.

#pragma once

#include <exception>
#include <functional>
#include <vector>
#include <wx/dialog.h>
#include <wx/panel.h>

#include <quillaven/editor/dialog.h>

class DialogWindow : public wxDialog {
 public:
  DialogWindow(wxWindow *parent, CDialog &dialog);
  ~DialogWindow() override;

  /// Shows the dialog until it is closed and returns its result; throws what the dialog has thrown.
  unsigned int Run();

 private:
  struct Shown {
    wxWindow *window = nullptr;
    std::vector<std::string> rows;
    bool checked = false;
  };

  wxRect InPixels(CRect const &units) const;
  wxWindow *MakeControl(CControl const &control);
  wxWindow *MakeEdit(CControl const &control, wxRect const &place);
  void BindMouse();
  void TellMove(wxPoint to);
  void CatchUp();
  void ChooseFocus();
  void OnKey(wxKeyEvent &event);
  void OnPaint(wxPaintEvent &event);
  void TellSize();

  /// Tells the dialog something, and shows what has become of it.
  void Tell(std::function<void()> const &event);
  void ShowState();
  void ShowControl(CControl const &control, Shown &shown);
  void Close();
  int IdOf(wxWindow const *window) const;
  wxWindow *WindowOf(int id) const;

  CDialog &m_dialog;
  wxPanel *m_panel;
  wxPoint m_told;              // where the mouse was when the dialog heard of it last
  wxSize m_size;               // of the client area
  std::vector<Shown> m_shown;  // one for each control of the dialog
  std::exception_ptr m_failure;
};
