#include <quillaven/editor/dialog_template_internal.h>
#include <quillaven/editor/point_dialogs_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/strings.h>

namespace {

using Kind = CControl::Kind;

CControl NumberEdit(int id, int x, int y, int width, int height) {
  CControl control = Item(Kind::edit, id, "", x, y, width, height);
  control.rightAligned = true;
  control.scrolls = true;
  return control;
}

CDialogTemplate EditPointTemplate() {
  CDialogTemplate form;
  form.resource = 5002;
  form.title = "Edit point";
  form.width = 149;
  form.height = 55;
  form.controls = {
      Item(Kind::defaultButton, 1, "OK", 95, 4, 50, 14),
      Item(Kind::button, 2, "Cancel", 95, 22, 50, 14),
      Item(Kind::text, kNoId, "X", 4, 6, 8, 8),
      Item(Kind::text, kNoId, "Y", 4, 22, 8, 8),
      NumberEdit(CEditPointDlg::kX, 17, 4, 47, 13),
      NumberEdit(CEditPointDlg::kY, 17, 20, 47, 13),
      Item(Kind::text, CEditPointDlg::kNote, "N.B.: X between %g and %g", 4, 43, 142, 8),
  };
  return form;
}

// The edits stand where the values stand around a plot.
CDialogTemplate MarginsTemplate() {
  CDialogTemplate form;
  form.resource = 5001;
  form.title = "Options";
  form.width = 186;
  form.height = 95;
  form.controls = {
      Item(Kind::defaultButton, 1, "OK", 129, 7, 50, 14),
      Item(Kind::button, 2, "Cancel", 129, 24, 50, 14),
      Item(Kind::text, kNoId, "min X", 46, 77, 18, 8),
      Item(Kind::edit, CMarginsDlg::kMinX, "", 67, 74, 40, 14),
      Item(Kind::edit, CMarginsDlg::kMaxX, "", 139, 74, 40, 14),
      Item(Kind::text, kNoId, "max X", 116, 77, 20, 8),
      Item(Kind::text, kNoId, "max Y", 7, 15, 20, 8),
      Item(Kind::edit, CMarginsDlg::kMaxY, "", 33, 12, 40, 14),
      Item(Kind::text, kNoId, "min Y", 10, 49, 18, 8),
      Item(Kind::edit, CMarginsDlg::kMinY, "", 33, 46, 40, 14),
  };
  return form;
}

// A text filled with two bounds. One that was filled before has no conversions left, and comes out
// as it is.
std::string Filled(std::string const &format, float lower, float upper) {
  CString text;
  text.Format(format.c_str(), lower, upper);
  return text;
}

}  // namespace

CEditPointDlg::CEditPointDlg() : CDialog(EditPointTemplate()) {}

bool CEditPointDlg::DoDataExchange(bool save) {
  return ExchangeNumber(save, kX, X) && ExchangeNumber(save, kY, Y);
}

int CEditPointDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  CControl &note = Changed(kNote);
  if (Lower == Upper) {  // this is how the caller says that x may not change
    Changed(kX).readOnly = true;
    note.text.clear();
  } else {
    note.text = Filled(note.text, Lower, Upper);
  }
  return 1;
}

void CEditPointDlg::OnOK() {
  if (!UpdateData(true)) return;
  if (Lower < Upper && (X <= Lower || X >= Upper)) {
    std::string const &note = Control(kNote).text;
    std::string const format = note.empty() ? "The X-value should be between %g and %g" : note;
    AfxMessageBox(Filled(format, Lower, Upper).c_str(), 0, 0);
    SetFocus(kX);
    return;
  }
  EndDialog(kOk);
}

CMarginsDlg::CMarginsDlg() : CDialog(MarginsTemplate()) {}

bool CMarginsDlg::DoDataExchange(bool save) {
  return ExchangeNumber(save, kMaxX, MaxX) && ExchangeNumber(save, kMaxY, MaxY) &&
         ExchangeNumber(save, kMinX, MinX) && ExchangeNumber(save, kMinY, MinY);
}
