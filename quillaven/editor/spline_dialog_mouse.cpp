// The spline tool under the mouse.

#include <algorithm>
#include <cmath>

#include <quillaven/editor/point_dialogs_internal.h>
#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/foundation/rounding_internal.h>

namespace {

// Held to a range; the upper end counts where a small window has turned the range round.
int Held(int value, int low, int high) {
  return std::min(std::max(value, low), high);
}

// A value that is none, as limits far apart or a plot one pixel high give it, could be written to
// no file and typed in no edit.
bool IsFloat(double value) {
  return std::isfinite(NearestFloat(value));
}

void OffsetRect(CRect &rectangle, int dx, int dy) {
  rectangle.left += dx;
  rectangle.right += dx;
  rectangle.top += dy;
  rectangle.bottom += dy;
}

}  // namespace

int CSplineDialog::HitTest(CPoint point) const {
  auto const hit = std::find_if(m_Handles.begin(), m_Handles.end(),
                                [&](CRect const &handle) { return PtInRect(handle, point); });
  return hit != m_Handles.end() ? static_cast<int>(hit - m_Handles.begin()) : -1;
}

void CSplineDialog::OnLButtonDown(CPoint point) {
  SetCapture();
  m_last = HeldPoint(point);
  m_bDragging = true;
  std::fill(m_Selected.begin(), m_Selected.end(), static_cast<unsigned char>(0));
  if (int const hit = HitTest(point); hit >= 0) m_Selected[static_cast<std::size_t>(hit)] = 1;
  InvalidateRect(m_Plot);
}

// The list waits for the end of the drag.
void CSplineDialog::OnMouseMove(CPoint point) {
  if (!m_bDragging || !PtInRect(m_Plot, point)) return;
  int const dx = point.x - m_last.x;
  int const dy = point.y - m_last.y;
  bool moved = false;
  for (std::size_t i = 0; i < m_Selected.size(); ++i) {
    if (m_Selected[i] == 0 || !MoveHandle(static_cast<int>(i), dx, dy)) continue;
    // Only a move that is accepted moves the point of reference, so that the pointer may run away
    // and come back.
    m_last = point;
    moved = true;
  }
  if (moved) InvalidateRect(m_Plot);
}

// False if the handle stays where it is. Points cannot pass one another, and the first and the last
// keep their x.
bool CSplineDialog::MoveHandle(int index, int dx, int dy) {
  auto const i = static_cast<std::size_t>(index);
  bool const first = index == 0;
  bool const last = index == m_Table.GetSize() - 1;
  PlotScale const scale = Scale();
  CRect const margin = MarginRect(0);
  CPoint const centre = CentreOf(m_Handles[i]);
  int nx = Held(centre.x + dx, margin.left, margin.right);
  int const ny = Held(centre.y + dy, margin.top, margin.bottom);
  nx = first ? centre.x : std::max(nx, CentreOf(m_Handles[i - 1]).x + 1);
  // The first point, too, stays left of the handle behind: where both stand in one column of
  // pixels, it would have to go left, which its x forbids, and so it does not move at all.
  nx = last ? centre.x : std::min(nx, CentreOf(m_Handles[i + 1]).x - 1);
  int const mx = nx - centre.x;
  int const my = ny - centre.y;
  if (mx == 0 && my == 0) return false;

  double const oldX = m_Table.GetXAt(index);
  double const x = oldX + (mx != 0 ? scale.ShiftX(mx) : 0);
  double const y = m_Table.GetYAt(index) + (my != 0 ? scale.ShiftY(-my) : 0);
  if (my != 0 && !IsFloat(y)) return false;
  // Asked so that what is no number breaks a limit too.
  bool const aboveLower = first ? x == oldX : x > m_Table.GetXAt(index - 1);
  bool const belowUpper = last ? x == oldX : x < m_Table.GetXAt(index + 1);
  if (!aboveLower || !belowUpper) return false;

  OffsetRect(m_Handles[i], mx, my);
  ReplacePoint(index, x, y);
  // In a table out of order, as a file may bring it, the point can come to another place, or take
  // that of another point of the same x.
  bool const inPlace =
      m_Handles.size() == static_cast<std::size_t>(m_Table.GetSize()) && m_Table.GetXAt(index) == x;
  if (!inPlace) Layout();
  return true;
}

void CSplineDialog::ReplacePoint(int index, double x, double y) {
  m_Table.RemoveAt(index);
  m_Table.Add(x, y);
}

// The selection remains.
void CSplineDialog::OnLButtonUp(CPoint /*point*/) {
  ReleaseCapture();
  m_bDragging = false;
  RebuildList();
}

void CSplineDialog::OnLButtonDblClk(CPoint point) {
  if (!PtInRect(MarginRect(0), point)) return;
  int const hit = HitTest(point);
  if (hit < 0) {
    PlotScale const scale = Scale();
    double const x = scale.DataX(point.x);
    double const y = scale.DataY(point.y);
    // A plot one pixel wide or high has no values for its pixels, and the top row, which stands a
    // step above the limit, may have one that no float holds.
    if (!IsFloat(x) || !IsFloat(y)) return;
    m_Table.Add(x, y);
  } else if (IsInner(hit)) {
    m_Table.RemoveAt(hit);
  } else {
    return;
  }
  ShowChange();
}

void CSplineDialog::OnRButtonDown(CPoint point) {
  int const hit = HitTest(point);
  if (hit < 0) return;
  double const x = m_Table.GetXAt(hit);
  double const y = m_Table.GetYAt(hit);
  bool const inner = IsInner(hit);
  CEditPointDlg dialog;
  dialog.X = NearestFloat(x);
  dialog.Y = NearestFloat(y);
  if (inner) {
    float const pixel = Scale().ShiftX(1);
    dialog.Lower = NearestFloat(m_Table.GetXAt(hit - 1) + pixel);
    dialog.Upper = NearestFloat(m_Table.GetXAt(hit + 1) - pixel);
  } else {  // equal bounds: the x of the first and last point cannot be changed
    dialog.Lower = dialog.X;
    dialog.Upper = dialog.X;
  }
  if (dialog.DoModal() != kOk) return;
  // While the dialog was open, the program that owns the tool may have thinned the points.
  bool const isThere = hit < m_Table.GetSize() && IsInner(hit) == inner &&
                       m_Table.GetXAt(hit) == x && m_Table.GetYAt(hit) == y;
  if (!isThere) return;
  // The dialog's x is rounded to a float, and the first and last point keep theirs as it is.
  ReplacePoint(hit, inner ? dialog.X : x, dialog.Y);
  ShowChange();
}
