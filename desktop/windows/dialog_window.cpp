#include "desktop/windows/dialog_window.h"

#include <algorithm>
#include <windows.h>
#include <windowsx.h>

#include <quillaven/platform/application.h>

#include "desktop/first_focus.h"
#include "desktop/windows/dialog_form.h"

namespace {

using Kind = CControl::Kind;

// The module that has the resources of the library's dialogs: the library's own.
HINSTANCE LibraryModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<char const *>(&GetApplication), &module);
  return module;
}

INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_INITDIALOG) {
    ::SetWindowLongPtrA(window, DWLP_USER, second);
    return reinterpret_cast<DialogWindow *>(second)->OnOpen(window);
  }
  auto *const self = reinterpret_cast<DialogWindow *>(::GetWindowLongPtrA(window, DWLP_USER));
  return self != nullptr ? self->OnMessage(message, first, second) : FALSE;
}

std::string TextOf(HWND window) {
  std::string text(static_cast<std::size_t>(::GetWindowTextLengthA(window)) + 1, '\0');
  int const length = ::GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

// Whether the text has changed.
bool SetText(HWND window, std::string const &text) {
  return TextOf(window) != text && ::SetWindowTextA(window, text.c_str()) != 0;
}

SIZE ExtentOf(HWND label, std::string const &text) {
  RECT extent{};
  HDC const context = ::GetDC(label);
  auto *const font = reinterpret_cast<HFONT>(::SendMessageA(label, WM_GETFONT, 0, 0));
  HGDIOBJ const before = ::SelectObject(context, font);
  ::DrawTextA(context, text.c_str(), -1, &extent, DT_CALCRECT);
  ::SelectObject(context, before);
  ::ReleaseDC(label, context);
  return {extent.right, extent.bottom};
}

// A line of text in a font that is wider than the template's grows to the left, away from the edit that
// it belongs to. What has the height for more lines is broken into these by the system.
void MakeRoom(HWND label, std::string const &text, CRect const &place) {
  SIZE const extent = ExtentOf(label, text);
  bool const isLine = place.bottom - place.top < 2 * extent.cy;
  int const left = std::max(0, std::min<int>(place.left, place.right - extent.cx));
  if (isLine)
    ::MoveWindow(label, left, place.top, place.right - left, place.bottom - place.top, TRUE);
}

bool HasStyle(HWND window, LONG_PTR style) {
  return (::GetWindowLongPtrA(window, GWL_STYLE) & style) != 0;
}

void SetStyle(HWND window, LONG_PTR style, bool set) {
  LONG_PTR const now = ::GetWindowLongPtrA(window, GWL_STYLE);
  ::SetWindowLongPtrA(window, GWL_STYLE, set ? now | style : now & ~style);
}

void SetChecked(HWND window, bool checked) {
  bool const now = ::SendMessageA(window, BM_GETCHECK, 0, 0) == BST_CHECKED;
  if (now != checked) ::SendMessageA(window, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void SetRows(HWND window, std::vector<std::string> const &rows) {
  ::SendMessageA(window, WM_SETREDRAW, FALSE, 0);
  ::SendMessageA(window, LB_RESETCONTENT, 0, 0);
  for (std::string const &row : rows)
    ::SendMessageA(window, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row.c_str()));
  ::SendMessageA(window, WM_SETREDRAW, TRUE, 0);
  ::InvalidateRect(window, nullptr, TRUE);
}

RECT ClientOf(HWND window) {
  RECT client{};
  ::GetClientRect(window, &client);
  return client;
}

// Whether the controls of a window are these. They lie in the order of the template.
bool HasControls(HWND window, std::vector<CControl> const &controls) {
  HWND child = ::GetWindow(window, GW_CHILD);
  for (CControl const &control : controls) {
    if (child == nullptr || ::GetDlgCtrlID(child) != control.id) return false;
    child = ::GetWindow(child, GW_HWNDNEXT);
  }
  return child == nullptr;
}

// What the system wants painted, for as long as this lives.
class RequestedPaint {
 public:
  explicit RequestedPaint(HWND window)
      : m_window(window), m_context(::BeginPaint(window, &m_paint)) {}
  ~RequestedPaint() { ::EndPaint(m_window, &m_paint); }
  RequestedPaint(RequestedPaint const &) = delete;
  RequestedPaint &operator=(RequestedPaint const &) = delete;

  HDC Context() const { return m_context; }

 private:
  HWND m_window;
  PAINTSTRUCT m_paint{};
  HDC m_context;
};

// True for as long as this lives.
class Meanwhile {
 public:
  explicit Meanwhile(bool &flag) : m_flag(flag), m_before(flag) { m_flag = true; }
  ~Meanwhile() { m_flag = m_before; }
  Meanwhile(Meanwhile const &) = delete;
  Meanwhile &operator=(Meanwhile const &) = delete;

 private:
  bool &m_flag;
  bool m_before;
};

}  // namespace

DialogWindow::DialogWindow(CDialog &dialog) : m_dialog(dialog), m_icon(dialog.OnQueryDragIcon()) {}

// The library's own dialogs are resources of it; any other is built from its template, also one that
// has by chance the number of a resource.
unsigned int DialogWindow::Run(WindowHandle owner) {
  HINSTANCE const library = LibraryModule();
  char const *const resource = MAKEINTRESOURCEA(m_dialog.Template().resource);
  auto const self = reinterpret_cast<LPARAM>(this);
  if (::FindResourceA(library, resource, RT_DIALOG) != nullptr)
    ::DialogBoxParamA(library, resource, owner, Procedure, self);
  if (m_window == nullptr) {
    std::vector<unsigned char> const form = BuildForm(m_dialog);
    ::DialogBoxIndirectParamA(library, reinterpret_cast<DLGTEMPLATE const *>(form.data()), owner,
                              Procedure, self);
  }
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  if (m_window == nullptr) return 0;
  m_window = nullptr;
  return m_dialog.Result() != 0 ? m_dialog.Result() : CDialog::kCancel;
}

// A window of other controls than the dialog's is closed before it is seen.
std::intptr_t DialogWindow::OnOpen(WindowHandle window) {
  if (!HasControls(window, m_dialog.Controls())) {
    ::EndDialog(window, 0);
    return FALSE;
  }
  m_window = window;
  Guarded([this] { Open(); });
  return FALSE;  // the focus is where it shall be
}

std::intptr_t DialogWindow::OnMessage(unsigned int message, std::uintptr_t first,
                                      std::intptr_t second) {
  if (m_window == nullptr) return FALSE;
  std::intptr_t answer = TRUE;
  Guarded([&] { answer = Answer(message, first, second); });
  return answer;
}

// No exception may pass through the system.
void DialogWindow::Guarded(std::function<void()> const &what) {
  try {
    what();
  } catch (...) {
    m_failure = std::current_exception();
    Close();
  }
}

void DialogWindow::Open() {
  for (HWND child = ::GetWindow(m_window, GW_CHILD); child != nullptr;
       child = ::GetWindow(child, GW_HWNDNEXT))
    m_shown.push_back({child, {}, {}});
  ::SendMessageA(m_window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_icon.Large()));
  ::SendMessageA(m_window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_icon.Small()));
  TellPlaces();
  TellSize(false);
  Tell([this] { m_dialog.OnInitDialog(); });
  ChooseFocus();
}

std::intptr_t DialogWindow::Answer(unsigned int message, std::uintptr_t first,
                                   std::intptr_t second) {
  CPoint const point{GET_X_LPARAM(second), GET_Y_LPARAM(second)};
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(first), HIWORD(first), second != 0);
      return TRUE;
    case WM_CLOSE:
      Tell([this] { m_dialog.OnCommand(static_cast<int>(CDialog::kCancel)); });
      return TRUE;
    case WM_LBUTTONDOWN:
      Tell([this, point] { m_dialog.OnLButtonDown(point); });
      return TRUE;
    case WM_MOUSEMOVE:
      Tell([this, point] { m_dialog.OnMouseMove(point); });
      return TRUE;
    case WM_LBUTTONUP:
      Tell([this, point] { m_dialog.OnLButtonUp(point); });
      return TRUE;
    case WM_LBUTTONDBLCLK:
      Tell([this, point] { m_dialog.OnLButtonDblClk(point); });
      return TRUE;
    case WM_RBUTTONDOWN:
      Tell([this, point] { m_dialog.OnRButtonDown(point); });
      return TRUE;
    case WM_CAPTURECHANGED:  // to another window: the button will come up without us
      if (m_dialog.HasCapture()) Tell([this] { m_dialog.OnLButtonUp({0, 0}); });
      return TRUE;
    case WM_SIZE:
      TellSize(first == SIZE_MINIMIZED);
      return TRUE;
    case WM_ERASEBKGND:  // the picture has a background of its own
      ::SetWindowLongPtrA(m_window, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_PAINT:
      OnPaint();
      return TRUE;
    case WM_PRINTCLIENT:
      PaintOn(reinterpret_cast<HDC>(first));
      Show();
      return TRUE;
    case WM_QUERYDRAGICON:
      return reinterpret_cast<INT_PTR>(m_icon.Large());
    default:
      return FALSE;
  }
}

// Return and Escape come as the commands of OK and Cancel; these need no button that carries them.
void DialogWindow::OnCommand(int id, unsigned int notification, bool ofControl) {
  auto const &controls = m_dialog.Controls();
  auto const control = std::find_if(controls.begin(), controls.end(),
                                    [id](CControl const &c) { return c.id == id; });
  bool const ends =
      id == static_cast<int>(CDialog::kOk) || id == static_cast<int>(CDialog::kCancel);
  bool const pressed = ends && notification == BN_CLICKED;
  if (ofControl && !pressed && control != controls.end()) return OnControl(*control, notification);
  Tell([this, id, notification] { m_dialog.OnCommand(id, static_cast<int>(notification)); });
}

void DialogWindow::OnControl(CControl const &control, unsigned int notification) {
  int const id = control.id;
  switch (control.kind) {
    case Kind::text:
      return;
    case Kind::edit:
      if (notification == EN_CHANGE && !m_showing)
        Tell([this, id] { m_dialog.Type(id, TextOf(WindowOf(id))); });
      return;
    case Kind::listBox:
      if (notification == LBN_DBLCLK)
        Tell([this, id] { m_dialog.OnCommand(id, CDialog::kDoubleClicked); });
      return;
    default:
      if (notification == BN_CLICKED) Tell([this, id] { m_dialog.Press(id); });
      return;
  }
}

void DialogWindow::OnPaint() {
  {
    RequestedPaint const paint(m_window);
    PaintOn(paint.Context());
  }
  Show();  // the paint sets controls, too
}

void DialogWindow::PaintOn(ContextHandle context) {
  if (m_failure != nullptr) return;
  CDrawing drawing;
  m_dialog.OnPaint(drawing);
  RECT const client = ClientOf(m_window);
  PaintBuffer buffer(context, client.right, client.bottom);
  Draw(buffer.Context(), drawing, m_icon.Large());
  buffer.Show();
}

void DialogWindow::TellPlaces() {
  for (std::size_t i = 0; i < m_shown.size(); ++i) {
    RECT place{};
    ::GetWindowRect(m_shown[i].window, &place);
    ::MapWindowPoints(nullptr, m_window, reinterpret_cast<POINT *>(&place), 2);
    CControl const &control = m_dialog.Controls()[i];
    m_shown[i].place = {place.left, place.top, place.right, place.bottom};
    m_dialog.Place(control.id, m_shown[i].place);
    if (control.kind == Kind::text) MakeRoom(m_shown[i].window, control.text, m_shown[i].place);
  }
}

void DialogWindow::TellSize(bool minimised) {
  RECT const client = ClientOf(m_window);
  m_dialog.Resize({0, 0, client.right, client.bottom}, minimised);
}

void DialogWindow::ChooseFocus() {
  int const i = FirstFocus(m_dialog.Controls());
  HWND const window = i >= 0 ? m_shown[static_cast<std::size_t>(i)].window : m_window;
  ::SetFocus(window);
  if (i >= 0) ::SendMessageA(window, EM_SETSEL, 0, -1);
}

void DialogWindow::Tell(std::function<void()> const &event) {
  if (m_failure != nullptr || m_dialog.Result() != 0) return;  // it is about to close
  event();
  Show();
}

void DialogWindow::Show() {
  if (m_failure != nullptr || m_dialog.Result() != 0) return Close();
  Meanwhile const showing(m_showing);
  SetText(m_window, m_dialog.Title());
  for (std::size_t i = 0; i < m_shown.size(); ++i) ShowControl(m_dialog.Controls()[i], m_shown[i]);
  if (m_dialog.HasCapture() && ::GetCapture() != m_window) ::SetCapture(m_window);
  if (!m_dialog.HasCapture() && ::GetCapture() == m_window) ::ReleaseCapture();
  if (int const focus = m_dialog.TakeFocusRequest(); focus != -1)
    ::SendMessageA(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(WindowOf(focus)), TRUE);
  CRect invalid;
  if (!m_dialog.TakeInvalidRect(invalid)) return;
  RECT const rectangle{invalid.left, invalid.top, invalid.right, invalid.bottom};
  ::InvalidateRect(m_window, &rectangle, FALSE);
}

void DialogWindow::ShowControl(CControl const &control, Shown &shown) {
  HWND const window = shown.window;
  if (HasStyle(window, WS_VISIBLE) != control.shown)
    ::ShowWindow(window, control.shown ? SW_SHOWNA : SW_HIDE);
  if (control.kind == Kind::listBox) {
    if (shown.rows == control.rows) return;
    shown.rows = control.rows;
    return SetRows(window, shown.rows);
  }
  bool const changed = SetText(window, control.text);
  if (control.kind == Kind::text && changed) {
    MakeRoom(window, control.text, shown.place);
  } else if (control.kind == Kind::edit) {
    if (HasStyle(window, ES_READONLY) != control.readOnly)
      ::SendMessageA(window, EM_SETREADONLY, control.readOnly, 0);
  } else if (control.kind == Kind::checkBox) {
    SetChecked(window, control.checked);
  } else if (control.kind == Kind::radioButton) {
    SetChecked(window, control.checked);
    // The focus in a radio button presses it: the tab key goes to the one that is pressed.
    SetStyle(window, WS_TABSTOP, control.checked);
  }
}

void DialogWindow::Close() {
  ::EndDialog(m_window, static_cast<INT_PTR>(CDialog::kCancel));
}

WindowHandle DialogWindow::WindowOf(int id) const {
  for (std::size_t i = 0; i < m_shown.size(); ++i)
    if (m_dialog.Controls()[i].id == id) return m_shown[i].window;
  return nullptr;
}
