#include <vector>
#include <windows.h>

#include <quillaven/desktop/desktop_application.h>
#include <quillaven/editor/dialog.h>

#include "desktop/in_force.h"
#include "desktop/open_window.h"
#include "desktop/windows/dialog_window.h"

struct CDesktopApplication::Desk {
  std::vector<DialogWindow *> open;  // the one in front last
  int waiting = 0;
  HCURSOR before = nullptr;  // the cursor
  InForce inForce;

  explicit Desk(CApplication &application) : inForce(application) {}
  // The dialog in front, or the window that the program itself has there.
  HWND Front() const {
    HWND const dialog = open.empty() ? nullptr : open.back()->Handle();
    return dialog != nullptr ? dialog : ::GetActiveWindow();
  }
};

namespace {

constexpr unsigned int kError = 16;

HCURSOR WaitCursor() {
  return ::LoadCursorA(nullptr, IDC_WAIT);
}

// A service, for one, has a window station that nobody can see.
bool SeesWindows() {
  USEROBJECTFLAGS flags{};
  return ::GetUserObjectInformationA(::GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags,
                                     nullptr) != 0 &&
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace

CDesktopApplication::CDesktopApplication() : m_desk(std::make_unique<Desk>(*this)) {}

CDesktopApplication::~CDesktopApplication() = default;

bool CDesktopApplication::HasDisplay() {
  return SeesWindows();
}

int CDesktopApplication::DoMessageBox(char const *text, char const *title, unsigned int type,
                                      unsigned int /*helpId*/) {
  int const answer = ::MessageBoxA(m_desk->Front(), text, title, type);
  if (m_desk->waiting > 0) ::SetCursor(WaitCursor());  // the box has brought its own
  return answer;
}

void CDesktopApplication::BeginWaitCursor() {
  if (m_desk->waiting++ == 0) m_desk->before = ::SetCursor(WaitCursor());
}

void CDesktopApplication::EndWaitCursor() {
  if (m_desk->waiting == 0) return;
  if (--m_desk->waiting == 0) ::SetCursor(m_desk->before);
}

// The system's font, in a context in memory, as everywhere on this system.
CStampImage CDesktopApplication::MakeStamp(char const *text) {
  return CApplication::MakeStamp(text);
}

unsigned int CDesktopApplication::RunModal(CDialog &dialog) {
  DialogWindow window(dialog);
  HWND const owner = m_desk->Front();
  OpenWindow<DialogWindow> const open(m_desk->open, &window);
  if (HasDisplay()) {
    if (unsigned int const result = window.Run(owner); result != 0) return result;
  }
  DoMessageBox("There is no display to show a dialog on.", Name().c_str(), kError, 0);
  return CDialog::kCancel;
}
