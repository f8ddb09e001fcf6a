// CSpline::DoModal: the operation of a table that needs the dialog, which stands above tables.

#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/functions/spline.h>

// Template and icon are data of the library, so that they are found whatever application asks.
// Everything that is thrown ends here, the texts of the curve builder too: the dialog then closes as
// if cancelled. The result is moved into the caller's table, so that nothing can fail half way.
unsigned int CSpline::DoModal(CSpline &table) {
  try {
    CSplineDialog dialog;
    dialog.Table(table);
    unsigned int const result = dialog.DoModal();
    if (result == CDialog::kOk) table = CSpline(dialog.Table());
    return result;
  } catch (...) {
    return CDialog::kCancel;
  }
}
