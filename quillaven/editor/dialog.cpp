#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <quillaven/editor/dialog.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/number_locale_internal.h>

namespace {

constexpr unsigned int kExclamation = 48;

// A text as a number that a float can hold; blanks around it do no harm. strtod alone would take
// "nan" and "0x10", which nobody means.
bool ReadNumber(std::string const &text, float &value) {
  char const *const blanks = " \t\r\n";
  std::size_t const first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return false;
  std::string const number = text.substr(first, text.find_last_not_of(blanks) + 1 - first);
  if (number.find_first_not_of("0123456789+-.eE") != std::string::npos) return false;
  PointLocale const point;
  char *end = nullptr;
  float const read = NearestFloat(std::strtod(number.c_str(), &end));
  if (end != number.c_str() + number.size() || !std::isfinite(read)) return false;
  value = read;
  return true;
}

// Six digits as printf's "%g" has them, and more where six would not give the number back.
std::string TextOf(float value) {
  constexpr int kEnough = 9;
  char text[32];
  for (int digits = 6;; ++digits) {
    char const *const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
    std::string result(text, static_cast<std::size_t>(end - text));
    float again = 0;
    if (digits == kEnough || (ReadNumber(result, again) && again == value)) return result;
  }
}

}  // namespace

CDialog::CDialog(CDialogTemplate form)
    : m_template(std::move(form)), m_strTitle(m_template.title), m_controls(m_template.controls) {}

CDialog::~CDialog() = default;

// Windows are made anew for each run, and so is what they show.
unsigned int CDialog::DoModal() {
  m_strTitle = m_template.title;
  m_controls = m_template.controls;
  m_nResult = 0;
  m_nFocus = -1;
  m_bCaptured = false;
  m_bInvalid = false;
  return GetApplication().RunModal(*this);
}

CControl *CDialog::Find(int id) {
  auto const found = std::find_if(m_controls.begin(), m_controls.end(),
                                  [id](CControl const &control) { return control.id == id; });
  return found != m_controls.end() ? &*found : nullptr;
}

CControl &CDialog::Changed(int id) {
  CControl *const control = Find(id);
  if (control == nullptr) throw std::out_of_range("no such control");
  return *control;
}

CControl const &CDialog::Control(int id) const {
  return const_cast<CDialog *>(this)->Changed(id);
}

CIcon const *CDialog::OnQueryDragIcon() const {
  return nullptr;
}

int CDialog::TakeFocusRequest() {
  return std::exchange(m_nFocus, -1);
}

bool CDialog::TakeInvalidRect(CRect &rectangle) {
  if (!std::exchange(m_bInvalid, false)) return false;
  rectangle = m_invalid;
  return true;
}

void CDialog::InvalidateRect(CRect const &rectangle) {
  if (m_bInvalid) {
    m_invalid = {std::min(m_invalid.left, rectangle.left), std::min(m_invalid.top, rectangle.top),
                 std::max(m_invalid.right, rectangle.right),
                 std::max(m_invalid.bottom, rectangle.bottom)};
  } else {
    m_invalid = rectangle;
  }
  m_bInvalid = true;
}

void CDialog::Place(int id, CRect const &pixels) {
  if (CControl *const control = Find(id); control != nullptr) control->pixels = pixels;
}

void CDialog::Resize(CRect const &client, bool minimised) {
  m_client = client;
  m_bMinimised = minimised;
}

int CDialog::OnInitDialog() {
  m_nResult = 0;
  UpdateData(false);
  return 1;
}

void CDialog::OnPaint(CDrawing & /*drawing*/) {}
void CDialog::OnLButtonDown(CPoint /*point*/) {}
void CDialog::OnMouseMove(CPoint /*point*/) {}
void CDialog::OnLButtonUp(CPoint /*point*/) {}
void CDialog::OnLButtonDblClk(CPoint /*point*/) {}
void CDialog::OnRButtonDown(CPoint /*point*/) {}

void CDialog::OnCommand(int id, int /*notification*/) {
  if (id == static_cast<int>(kOk)) OnOK();
  if (id == static_cast<int>(kCancel)) OnCancel();
}

void CDialog::Press(int id) {
  CControl *const control = Find(id);
  if (control == nullptr || !control->shown) return;
  if (control->kind == CControl::Kind::checkBox) control->checked = !control->checked;
  OnCommand(id);
}

void CDialog::Type(int id, std::string const &text) {
  CControl *const control = Find(id);
  if (control == nullptr || control->kind != CControl::Kind::edit) return;
  if (control->shown && !control->readOnly) control->text = text;
}

bool CDialog::UpdateData(bool save) {
  return DoDataExchange(save);
}

bool CDialog::DoDataExchange(bool /*save*/) {
  return true;
}

bool CDialog::ExchangeNumber(bool save, int id, float &value) {
  CControl &control = Changed(id);
  if (!save) {
    control.text = TextOf(value);
    return true;
  }
  if (ReadNumber(control.text, value)) return true;
  AfxMessageBox("Please enter a number.", kExclamation, 0);
  SetFocus(id);
  return false;
}

void CDialog::ExchangeCheck(bool save, int id, int &value) {
  CControl &control = Changed(id);
  if (save) {
    value = control.checked ? 1 : 0;
  } else {
    control.checked = value != 0;
  }
}

void CDialog::OnOK() {
  if (UpdateData(true)) EndDialog(kOk);
}

void CDialog::OnCancel() {
  EndDialog(kCancel);
}
