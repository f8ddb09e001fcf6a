#include "desktop/windows/window_driver.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace {

WindowDriver *g_driver = nullptr;

// A bitmap of 32 bits a pixel in memory, with a context to draw on.
class Canvas {
 public:
  Canvas(int width, int height) : m_width(width), m_height(height) {
    BITMAPINFO head{};
    head.bmiHeader.biSize = sizeof head.bmiHeader;
    head.bmiHeader.biWidth = width;
    head.bmiHeader.biHeight = -height;  // from the top
    head.bmiHeader.biPlanes = 1;
    head.bmiHeader.biBitCount = 32;
    m_context = ::CreateCompatibleDC(nullptr);
    m_bitmap = ::CreateDIBSection(m_context, &head, DIB_RGB_COLORS, &m_bits, nullptr, 0);
    m_before = ::SelectObject(m_context, m_bitmap);
  }
  ~Canvas() {
    ::SelectObject(m_context, m_before);
    ::DeleteObject(m_bitmap);
    ::DeleteDC(m_context);
  }
  Canvas(Canvas const &) = delete;
  Canvas &operator=(Canvas const &) = delete;

  WPARAM Context() const { return reinterpret_cast<WPARAM>(m_context); }
  std::size_t Count() const { return static_cast<std::size_t>(m_width * m_height); }
  std::uint32_t const *Pixels() const {
    ::GdiFlush();
    return static_cast<std::uint32_t const *>(m_bits);
  }

 private:
  int m_width;
  int m_height;
  HDC m_context;
  HBITMAP m_bitmap;
  HGDIOBJ m_before;
  void *m_bits = nullptr;
};

}  // namespace

long Picture::CountOf(unsigned long colour) const {
  return static_cast<long>(std::count(pixels.begin(), pixels.end(), colour));
}

int DrivenApplication::DoMessageBox(char const *text, char const *title, unsigned int type,
                                    unsigned int helpId) {
  if (g_driver != nullptr) g_driver->m_inBox = true;
  int const answer = CDesktopApplication::DoMessageBox(text, title, type, helpId);
  if (g_driver != nullptr) g_driver->m_inBox = false;
  return answer;
}

WindowDriver::WindowDriver()
    : m_hook(::SetWindowsHookExA(WH_CBT, OnHook, nullptr, ::GetCurrentThreadId())) {
  g_driver = this;
}

WindowDriver::~WindowDriver() {
  ::UnhookWindowsHookEx(m_hook);
  g_driver = nullptr;
  EXPECT_TRUE(scripts.empty()) << scripts.size() << " dialogs did not open";
}

LRESULT CALLBACK WindowDriver::OnHook(int code, WPARAM window, LPARAM other) {
  auto *const handle = reinterpret_cast<HWND>(window);
  if (code == HCBT_ACTIVATE && IsDialogBox(handle)) g_driver->OnActivate(handle);
  if (code == HCBT_DESTROYWND) std::erase(g_driver->m_open, handle);
  return ::CallNextHookEx(nullptr, code, window, other);
}

void WindowDriver::OnActivate(HWND window) {
  if (std::count(m_open.begin(), m_open.end(), window) != 0) return;
  if (m_inBox) {
    boxes.push_back(LookAtBox(window));
    ::PostMessageA(window, WM_COMMAND, IDOK, 0);
    return;
  }
  m_open.push_back(window);
  ::SetTimer(nullptr, 0, 1, OnTimer);
}

void CALLBACK WindowDriver::OnTimer(HWND /*window*/, UINT /*message*/, UINT_PTR id,
                                    DWORD /*time*/) {
  std::vector<HWND> const &open = g_driver->m_open;
  // The system shows a dialog when nothing else is left to do.
  if (!open.empty() && !::IsWindowVisible(open.back())) return;
  ::KillTimer(nullptr, id);
  if (!open.empty()) g_driver->RunScript(open.back());
}

void WindowDriver::RunScript(HWND window) {
  Script script;
  if (!scripts.empty()) {
    script = scripts.front();
    scripts.erase(scripts.begin());
  }
  try {
    Settle();
    ::UpdateWindow(window);
    if (script) script(*this);
    Settle();
  } catch (std::exception const &e) {
    ADD_FAILURE() << e.what();
  }
  if (std::count(m_open.begin(), m_open.end(), window) == 0 || !::IsWindowVisible(window)) return;
  ADD_FAILURE() << "the dialog '" << WindowText(window) << "' was left open";
  ::EndDialog(window, IDCANCEL);
}

HWND WindowDriver::Control(int id) const {
  HWND const control = ::GetDlgItem(Window(), id);
  if (control == nullptr) throw std::runtime_error("no control " + std::to_string(id));
  return control;
}

RECT WindowDriver::PlaceOf(int id) const {
  RECT place{};
  ::GetWindowRect(Control(id), &place);
  ::MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT *>(&place), 2);
  return place;
}

std::string WindowDriver::TextOf(int id) const {
  return WindowText(Control(id));
}

std::string WindowDriver::Title() const {
  return WindowText(Window());
}

std::vector<std::string> WindowDriver::RowsOf(int id) const {
  std::vector<std::string> rows;
  LRESULT const count = ::SendMessageA(Control(id), LB_GETCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    char row[100] = "";
    ::SendMessageA(Control(id), LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(row));
    rows.emplace_back(row);
  }
  return rows;
}

bool WindowDriver::IsShown(int id) const {
  return ::IsWindowVisible(Control(id)) != 0;
}

bool WindowDriver::IsChecked(int id) const {
  return ::SendMessageA(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

bool WindowDriver::HasStyle(int id, LONG_PTR style) const {
  return (::GetWindowLongPtrA(Control(id), GWL_STYLE) & style) != 0;
}

void WindowDriver::Mouse(UINT message, POINT point) const {
  ::SendMessageA(Window(), message, 0, MAKELPARAM(point.x, point.y));
  if (!m_open.empty()) ::UpdateWindow(Window());
}

void WindowDriver::Drag(POINT from, POINT to, int steps) const {
  Mouse(WM_LBUTTONDOWN, from);
  for (int i = 1; i <= steps; ++i)
    Mouse(WM_MOUSEMOVE,
          {from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
  Mouse(WM_LBUTTONUP, to);
}

void WindowDriver::DoubleClick(POINT point) const {
  Mouse(WM_LBUTTONDOWN, point);
  Mouse(WM_LBUTTONUP, point);
  Mouse(WM_LBUTTONDBLCLK, point);
  Mouse(WM_LBUTTONUP, point);
}

void WindowDriver::Focus(int id) const {
  ::SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
}

void WindowDriver::Write(int id, std::string const &text) const {
  HWND const edit = Control(id);
  Focus(id);
  for (char const letter : text) ::SendMessageA(edit, WM_CHAR, static_cast<WPARAM>(letter), 1);
}

void WindowDriver::Key(WPARAM key) const {
  HWND const focus = ::GetFocus();
  ::PostMessageA(focus, WM_KEYDOWN, key, 1);
  ::PostMessageA(focus, WM_KEYUP, key, 0xC0000001);
  Settle();
}

void WindowDriver::Settle() const {
  MSG message{};
  while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (!m_open.empty() && ::IsDialogMessageA(Window(), &message)) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
}

Picture WindowDriver::Paint() const {
  RECT client{};
  ::GetClientRect(Window(), &client);
  Canvas const canvas(client.right, client.bottom);
  ::SendMessageA(Window(), WM_PRINTCLIENT, canvas.Context(), PRF_CLIENT);
  Picture picture{client.right, client.bottom, {}};
  std::uint32_t const *const pixels = canvas.Pixels();
  for (std::size_t i = 0; i < canvas.Count(); ++i) {
    std::uint32_t const pixel = pixels[i];
    picture.pixels.push_back(RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF));
  }
  return picture;
}
