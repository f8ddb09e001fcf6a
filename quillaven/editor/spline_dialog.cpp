#include <algorithm>
#include <cmath>

#include <quillaven/editor/dialog_template_internal.h>
#include <quillaven/editor/point_dialogs_internal.h>
#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/editor/spline_icon_internal.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/strings.h>

namespace {

using Kind = CControl::Kind;

constexpr int kRadius = 7;
// A table that ends exactly here is one by distance: it is listed at the distances between cells.
constexpr float kDistanceEnd = 8.0F;

CDialogTemplate SplineTemplate() {
  CDialogTemplate form;
  form.resource = 102;
  form.title = "Spline tool";
  form.width = 387;
  form.height = 204;
  form.controls = {
      Item(Kind::defaultButton, 1, "OK", 305, 183, 33, 14),
      Item(Kind::button, 2, "Cancel", 343, 183, 34, 14),
      ReadOnlyEdit(CSplineDialog::kMaxY, 6, 7, 25, 14),
      ReadOnlyEdit(CSplineDialog::kMinY, 7, 165, 25, 14),
      ReadOnlyEdit(CSplineDialog::kMinX, 37, 183, 25, 14),
      ReadOnlyEdit(CSplineDialog::kMaxX, 270, 183, 25, 14),
      Item(Kind::listBox, CSplineDialog::kList, "", 305, 7, 72, 173),
      Item(Kind::checkBox, CSplineDialog::kTicks, "X-value ticks", 137, 183, 57, 10),
      Item(Kind::button, CSplineDialog::kOptions, "Options...", 64, 183, 40, 14),
      Item(Kind::checkBox, CSplineDialog::kGrid, "Grid", 106, 183, 29, 10),
      Item(Kind::radioButton, CSplineDialog::kSpline, "Spline", 196, 183, 35, 10),
      Item(Kind::radioButton, CSplineDialog::kLinear, "Linear", 233, 183, 35, 10),
  };
  return form;
}

// Window systems count their coordinates in 16 bits.
int HeldCoordinate(int value) {
  return std::clamp(value, -32768, 32767);
}

// The wait cursor, for as long as this lives.
class WaitCursor {
 public:
  WaitCursor() { m_application.BeginWaitCursor(); }
  ~WaitCursor() { m_application.EndWaitCursor(); }
  WaitCursor(WaitCursor const &) = delete;
  WaitCursor &operator=(WaitCursor const &) = delete;

 private:
  CApplication &m_application = GetApplication();
};

}  // namespace

CPoint CentreOf(CRect const &handle) {
  return {(handle.left + handle.right) / 2, (handle.top + handle.bottom) / 2};
}

CSplineDialog::CSplineDialog() : CDialog(SplineTemplate()) {}

CIcon const *CSplineDialog::OnQueryDragIcon() const {
  return &SplineIcon();
}

void CSplineDialog::Table(CSpline const &table) {
  m_Table = table;
  Layout();
}

// The plot is no control. Its edges are those of the four edits around it, taken once.
int CSplineDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  m_Plot = {HeldCoordinate(Control(kMinX).pixels.left), HeldCoordinate(Control(kMaxY).pixels.top),
            HeldCoordinate(Control(kMaxX).pixels.right),
            HeldCoordinate(Control(kMinY).pixels.bottom)};
  Layout();
  RebuildList();
  if (m_limits.maxX != kDistanceEnd) Changed(kTicks).shown = false;
  Title(m_Table.Name());
  return 1;
}

// The limits are shown, and never read back: they change through the options alone.
bool CSplineDialog::DoDataExchange(bool save) {
  ExchangeCheck(save, kTicks, m_nShowTicks);
  ExchangeCheck(save, kGrid, m_nShowGrid);
  if (save) return true;
  ExchangeNumber(false, kMaxX, m_limits.maxX);
  ExchangeNumber(false, kMinX, m_limits.minX);
  ExchangeNumber(false, kMaxY, m_limits.maxY);
  ExchangeNumber(false, kMinY, m_limits.minY);
  return true;
}

void CSplineDialog::OnCommand(int id, int notification) {
  switch (id) {
    case kTicks:
    case kGrid:
      return InvalidateRect(m_Plot);  // the paint reads the boxes
    case kRebuildList:
    case kRebuildListAgain:
      return RebuildList();
    case kOptions:
      return Options();
    case kThin:
      return Thin();
    case kSpline:
      return SetLinear(false);
    case kLinear:
      return SetLinear(true);
    case kList:
      // The row is not acted on. It stays so.
      if (notification == kDoubleClicked) AfxMessageBox("double click!", 0, 0);
      return;
    default:
      CDialog::OnCommand(id, notification);
  }
}

// Every layout clears the selection.
void CSplineDialog::Layout() {
  m_bLinear = m_Table.TableLinear();
  m_limits = {m_Table.MinX(), m_Table.MaxX(), m_Table.MinY(), m_Table.MaxY()};
  PlotScale const scale = Scale();
  m_Handles.clear();
  for (int i = 0; i < m_Table.GetSize(); ++i) {
    int const x = scale.PixelX(m_Table.GetXAt(i));
    int const y = scale.PixelY(m_Table.GetYAt(i));
    m_Handles.push_back({x - kRadius, y - kRadius, x + kRadius, y + kRadius});
  }
  m_Selected.assign(m_Handles.size(), 0);
}

void CSplineDialog::RebuildList() {
  std::vector<std::string> &rows = Changed(kList).rows;
  rows.clear();
  CString row;
  if (m_limits.maxX == kDistanceEnd) {
    for (int i = 0; i < CSpline::NRoots(); ++i) {
      float const r = CSpline::Root(i);
      row.Format("%4.2f  %4.0f", r, m_Table.Evaluate(r));
      rows.push_back(row);
    }
    return;
  }
  for (int i = 0; i < m_Table.GetSize(); ++i) {
    float const x = NearestFloat(m_Table.GetXAt(i));
    float const y = NearestFloat(m_Table.GetYAt(i));
    row.Format("%.6lg  %.6lg", static_cast<double>(x), static_cast<double>(y));
    rows.push_back(row);
  }
}

void CSplineDialog::ShowChange() {
  Layout();
  RebuildList();
  InvalidateRect(m_Plot);
}

void CSplineDialog::SetLinear(bool linear) {
  if (m_bLinear == linear) return;
  m_bLinear = linear;
  m_Table.TableLinear(linear);
  ShowChange();
}

// The list and the box of the ticks stay as they were, though they depend on the limits.
void CSplineDialog::Options() {
  CMarginsDlg dialog;
  dialog.MinX = m_limits.minX;
  dialog.MaxX = m_limits.maxX;
  dialog.MinY = m_limits.minY;
  dialog.MaxY = m_limits.maxY;
  if (dialog.DoModal() != kOk) return;
  m_limits = {dialog.MinX, dialog.MaxX, dialog.MinY, dialog.MaxY};
  m_Table.MinX(dialog.MinX);
  m_Table.MaxX(dialog.MaxX);
  m_Table.MinY(dialog.MinY);
  m_Table.MaxY(dialog.MaxY);
  UpdateData(false);
  Layout();
  InvalidateRect(m_Plot);
}

// Like CSpline::Simplify, but with a tolerance, and with other points for a table that is left with
// two: they lie on the zero line, and their x comes from the limits, not from the points.
void CSplineDialog::Thin() {
  constexpr float kThird = 0.33333334F;
  WaitCursor const cursor;
  m_bLinear = true;
  m_Table.TableLinear(true);
  float const tolerance = NearestFloat((static_cast<double>(m_limits.maxY) - m_limits.minY) * 0.01);
  bool allZero = true;
  for (int i = 1; i < m_Table.GetSize() - 1;) {
    double const x = m_Table.GetXAt(i);
    double const y = m_Table.GetYAt(i);
    if (y != 0) allZero = false;
    m_Table.RemoveAt(i);
    if (tolerance < std::fabs(y - m_Table.Evaluate(NearestFloat(x)))) {
      m_Table.Add(x, y);
      ++i;
    }
  }
  if (m_Table.GetSize() == 2 && allZero) {
    m_Table.Add((2.0 * m_limits.minX + m_limits.maxX) * kThird, 0);
    m_Table.Add((2.0 * m_limits.maxX + m_limits.minX) * kThird, 0);
  }
  ShowChange();
}
