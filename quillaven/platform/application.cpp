#include <quillaven/platform/application.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/system_box_internal.h>
#include <quillaven/platform/system_stamp_internal.h>

int CApplication::DoMessageBox(char const *text, char const *title, unsigned int type,
                               unsigned int /*helpId*/) {
  return ShowSystemBox(text, title, type);
}

void CApplication::OnMainWindowMessage(unsigned int /*message*/) {}
void CApplication::BeginWaitCursor() {}
void CApplication::EndWaitCursor() {}
std::string CApplication::HelpFilePath() const {
  return {};
}
CStampImage CApplication::MakeStamp(char const *text) {
  return DrawSystemStamp(text);
}
unsigned int CApplication::RunModal(CDialog & /*dialog*/) {
  return 2;
}
std::string CApplication::Name() const {
  return "Quillaven";
}

namespace {

CApplication &BuiltInApplication() {
  static CApplication application;
  return application;
}

CApplication *g_application = nullptr;  // null: the built-in one

}  // namespace

CApplication::~CApplication() {
  if (g_application == this) g_application = nullptr;
}

CApplication *SetApplication(CApplication *application) {
  CApplication *before = &GetApplication();
  g_application = application;
  return before;
}

CApplication &GetApplication() {
  return g_application != nullptr ? *g_application : BuiltInApplication();
}

void ShowMessageBox(char const *text, char const *title, unsigned int type) {
  GetApplication().DoMessageBox(text, title, type, 0);
}

void AfxMessageBox(char const *text, unsigned int type, unsigned int helpId) {
  CApplication &application = GetApplication();
  application.DoMessageBox(text, application.Name().c_str(), type, helpId);
}
