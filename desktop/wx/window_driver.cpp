#include "desktop/wx/window_driver.h"

#include <algorithm>
#include <wx/msgdlg.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

int WindowDriver::Enter(wxDialog *dialog) {
  titles.push_back(dialog->GetTitle());
  if (auto const *box = dynamic_cast<wxMessageDialog *>(dialog)) {
    messages.push_back(box->GetMessage());
    return wxID_OK;
  }
  m_open.push_back(dialog);
  Script script;
  if (!scripts.empty()) {
    script = scripts.front();
    scripts.erase(scripts.begin());
  }
  dialog->CallAfter([this, dialog, script] { Run(dialog, script); });
  return wxID_NONE;
}

void WindowDriver::Exit(wxDialog *dialog) {
  m_open.erase(std::remove(m_open.begin(), m_open.end(), dialog), m_open.end());
}

void WindowDriver::Run(wxDialog *dialog, Script const &script) {
  auto const isOpen = [&] { return std::count(m_open.begin(), m_open.end(), dialog) != 0; };
  try {
    Settle(200);
    if (script) script(*this);
    Settle();
  } catch (std::exception const &e) {
    ADD_FAILURE() << e.what();
  }
  if (!isOpen() || !dialog->IsModal()) return;
  ADD_FAILURE() << "the window '" << dialog->GetTitle() << "' was left open";
  dialog->EndModal(wxID_CANCEL);
}

wxString WindowDriver::TextOf(std::string const &id) const {
  wxWindow &window = Control(id);
  if (auto const *edit = dynamic_cast<wxTextCtrl *>(&window)) return edit->GetValue();
  return window.GetLabel();
}

Screenshot WindowDriver::Photograph(std::string const &file) {
  Settle(100);
  wxRect const place = Window().GetScreenRect();
  return TakeScreenshot(file, place.x, place.y, place.width, place.height);
}
