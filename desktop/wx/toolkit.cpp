#include "desktop/wx/toolkit.h"

#include <clocale>
#include <string>
#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

namespace {

class LibraryApp : public wxApp {
 public:
  bool OnInit() override { return true; }
};

// The toolkit sets the locale of the user, which is the host program's to choose.
class KeptLocale {
 public:
  KeptLocale() : m_name(std::setlocale(LC_ALL, nullptr)) {}
  ~KeptLocale() { std::setlocale(LC_ALL, m_name.c_str()); }
  KeptLocale(KeptLocale const &) = delete;
  KeptLocale &operator=(KeptLocale const &) = delete;

 private:
  std::string m_name;
};

}  // namespace

std::shared_ptr<Toolkit> Toolkit::Shared() {
  static std::weak_ptr<Toolkit> shared;
  std::shared_ptr<Toolkit> toolkit = shared.lock();
  if (toolkit == nullptr) shared = toolkit = std::shared_ptr<Toolkit>(new Toolkit);
  return toolkit;
}

bool Toolkit::Start() {
  if (wxTheApp != nullptr) return true;
  KeptLocale const locale;
  wxLogNull const silence;  // the caller tells that there is no display
  wxApp::SetInstance(new LibraryApp);
  static char name[] = "quillaven";
  static char *arguments[] = {name, nullptr};
  int count = 1;
  if (!wxEntryStart(count, arguments)) return false;
  m_mine = true;
  wxTheApp->SetExitOnFrameDelete(false);
  return wxTheApp->CallOnInit();
}

Toolkit::~Toolkit() {
  if (!m_mine) return;
  wxTheApp->OnExit();
  wxEntryCleanup();
}

wxString ToolkitText(char const *text) {
  wxString const result = wxString::FromUTF8(text);
  return result.empty() ? wxString::From8BitData(text) : result;
}
