#include <cstring>
#include <memory>
#include <vector>
#include <wx/app.h>
#include <wx/dcmemory.h>
#include <wx/image.h>
#include <wx/msgdlg.h>
#include <wx/settings.h>
#include <wx/utils.h>

#include <quillaven/desktop/desktop_application.h>
#include <quillaven/editor/dialog.h>

#include "desktop/in_force.h"
#include "desktop/open_window.h"
#include "desktop/wx/dialog_window.h"
#include "desktop/wx/toolkit.h"

struct CDesktopApplication::Desk {
  std::shared_ptr<Toolkit> toolkit = Toolkit::Shared();
  std::vector<wxWindow *> open;  // dialogs, the one in front last
  int waiting = 0;
  InForce inForce;

  explicit Desk(CApplication &application) : inForce(application) {}
  Desk(Desk const &) = delete;
  Desk &operator=(Desk const &) = delete;
  ~Desk() {
    for (; waiting > 0 && wxTheApp != nullptr; --waiting) wxEndBusyCursor();
  }
  wxWindow *Front() const { return open.empty() ? wxTheApp->GetTopWindow() : open.back(); }
};

namespace {

constexpr unsigned int kError = 16;
constexpr unsigned int kExclamation = 48;
constexpr unsigned int kSign = 0xF0;  // the part of a type that chooses the sign

long StyleOf(unsigned int type) {
  switch (type & kSign) {
    case kError:
      return wxOK | wxICON_ERROR;
    case kExclamation:
      return wxOK | wxICON_EXCLAMATION;
    default:
      return wxOK | wxICON_NONE;
  }
}

wxImage DrawText(wxString const &text) {
  wxMemoryDC dc;
  dc.SetFont(wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT));
  wxSize const size = dc.GetMultiLineTextExtent(text);
  if (size.x <= 0 || size.y <= 0) return {};
  wxBitmap bitmap(size.x, size.y, 24);
  dc.SelectObject(bitmap);
  dc.SetFont(wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT));
  dc.SetBackground(*wxWHITE_BRUSH);
  dc.Clear();
  dc.SetTextForeground(*wxBLACK);
  dc.DrawText(text, 0, 0);
  dc.SelectObject(wxNullBitmap);
  return bitmap.ConvertToImage();
}

}  // namespace

CDesktopApplication::CDesktopApplication() : m_desk(std::make_unique<Desk>(*this)) {}

CDesktopApplication::~CDesktopApplication() = default;

bool CDesktopApplication::HasDisplay() {
  return m_desk->toolkit->Start();
}

int CDesktopApplication::DoMessageBox(char const *text, char const *title, unsigned int type,
                                      unsigned int helpId) {
  if (!HasDisplay()) return CApplication::DoMessageBox(text, title, type, helpId);
  wxMessageDialog box(m_desk->Front(), ToolkitText(text), ToolkitText(title), StyleOf(type));
  box.ShowModal();
  return 1;
}

void CDesktopApplication::BeginWaitCursor() {
  if (!HasDisplay()) return;
  ++m_desk->waiting;
  wxBeginBusyCursor();
}

void CDesktopApplication::EndWaitCursor() {
  if (m_desk->waiting == 0) return;
  --m_desk->waiting;
  wxEndBusyCursor();
}

CStampImage CDesktopApplication::MakeStamp(char const *text) {
  constexpr std::size_t kLongest = 1000;  // no toolkit has bitmaps of any width
  if (std::strlen(text) > kLongest || !HasDisplay()) return CApplication::MakeStamp(text);
  wxImage const image = DrawText(ToolkitText(text));
  if (!image.IsOk()) return CApplication::MakeStamp(text);
  CStampImage stamp{image.GetWidth(), image.GetHeight(), {}};
  for (int y = 0; y < stamp.height; ++y)
    for (int x = 0; x < stamp.width; ++x)
      stamp.letters.push_back(image.GetGreen(x, y) < 128 ? 1 : 0);
  return stamp;
}

unsigned int CDesktopApplication::RunModal(CDialog &dialog) {
  if (!HasDisplay()) {
    DoMessageBox("There is no display to show a dialog on.", Name().c_str(), kError, 0);
    return CDialog::kCancel;
  }
  DialogWindow window(m_desk->Front(), dialog);
  OpenWindow<wxWindow> const open(m_desk->open, &window);
  return window.Run();
}
