// The picture of the spline tool.

#include <cstddef>

#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/foundation/rounding_internal.h>

namespace {

constexpr unsigned long kRed = 0x0000FF;
constexpr unsigned long kBlue = 0xFF0000;
constexpr unsigned long kGrey = 0x7F7F7F;
constexpr int kLeast = 5;
constexpr int kMost = 15;
constexpr float kUnitSteps = 30;  // up to here lines stand at whole numbers

CRect InTheMiddle(CRect const &client, CIcon const &icon) {
  int const left = (client.left + client.right - icon.width) / 2;
  int const top = (client.top + client.bottom - icon.height) / 2;
  return {left, top, left + icon.width, top + icon.height};
}

}  // namespace

void CSplineDialog::OnPaint(CDrawing &drawing) {
  if (IsMinimised()) return drawing.Icon(InTheMiddle(Client(), *OnQueryDragIcon()));
  drawing.DefaultPen();
  drawing.DefaultBrush();
  drawing.Rectangle(m_Plot);
  UpdateData(true);
  Changed(kSpline).checked = !m_bLinear;
  Changed(kLinear).checked = m_bLinear;
  if (m_nShowTicks != 0) PaintTicks(drawing);
  if (m_nShowGrid != 0) PaintGrid(drawing);
  PaintAxes(drawing);
  PaintCurve(drawing);
  PaintHandles(drawing);
}

// The plot without its margin, with some pixels more at right and bottom.
CRect CSplineDialog::MarginRect(int more) const {
  constexpr int kMargin = PlotScale::kMargin;
  return {m_Plot.left + kMargin, m_Plot.top + kMargin, m_Plot.right - kMargin + more,
          m_Plot.bottom - kMargin + more};
}

void CSplineDialog::VerticalLine(CDrawing &drawing, double x) const {
  int const px = Scale().PixelX(x);
  if (px <= m_Plot.left || px >= m_Plot.right) return;
  drawing.MoveTo(px, m_Plot.top);
  drawing.LineTo(px, m_Plot.bottom);
}

void CSplineDialog::HorizontalLine(CDrawing &drawing, double y) const {
  int const py = Scale().PixelY(y);
  if (py <= m_Plot.top || py >= m_Plot.bottom) return;
  drawing.MoveTo(m_Plot.left, py);
  drawing.LineTo(m_Plot.right, py);
}

void CSplineDialog::PaintTicks(CDrawing &drawing) const {
  drawing.Pen(kGrey, 1);
  for (int i = 0; i < CSpline::NRoots(); ++i) VerticalLine(drawing, CSpline::Root(i));
}

void CSplineDialog::PaintGrid(CDrawing &drawing) const {
  drawing.Pen(CDrawing::kBlack, 1);
  GridSteps across{0, 1, 0};
  if (m_limits.minX == 0 && m_limits.maxX <= kUnitSteps) {
    across.count = Truncated(static_cast<double>(m_limits.maxX) + 1);
  } else {
    across = ChooseScale(m_limits.minX, m_limits.maxX, kLeast, kMost);
  }
  for (int i = 0; i < across.count; ++i)
    VerticalLine(drawing, static_cast<double>(i) * across.step + across.start);
  GridSteps const up = ChooseScale(m_limits.minY, m_limits.maxY, kLeast, kMost);
  for (int i = 0; i < up.count; ++i)
    HorizontalLine(drawing, static_cast<double>(i) * up.step + up.start);
}

void CSplineDialog::PaintAxes(CDrawing &drawing) const {
  drawing.Pen(kRed, 1);
  VerticalLine(drawing, 0);
  HorizontalLine(drawing, 0);
}

// One value for each column of pixels. Where the curve leaves the plot it is broken off.
void CSplineDialog::PaintCurve(CDrawing &drawing) {
  drawing.Pen(kBlue, 2);
  PlotScale const scale = Scale();
  CRect const inner = MarginRect(1);
  double const range = static_cast<double>(m_limits.maxX) - m_limits.minX;
  int const width = scale.Width();
  bool before = false;
  for (int p = 0; p < width; ++p) {
    float const x = NearestFloat(range * p / (width - 1) + m_limits.minX);
    CPoint const pixel{inner.left + p, scale.PixelY(m_Table.Evaluate(x))};
    bool const inside = PtInRect(inner, pixel);
    if (before && inside) {
      drawing.LineTo(pixel.x, pixel.y);
    } else {
      drawing.MoveTo(pixel.x, pixel.y);
    }
    before = inside;
  }
}

void CSplineDialog::PaintHandles(CDrawing &drawing) const {
  drawing.DefaultPen();
  CRect const inner = MarginRect(1);
  for (std::size_t i = 0; i < m_Handles.size(); ++i) {
    if (!PtInRect(inner, CentreOf(m_Handles[i]))) continue;
    if (m_Selected[i] != 0) {
      drawing.Brush(kRed);
    } else {
      drawing.DefaultBrush();
    }
    drawing.Ellipse(m_Handles[i]);
  }
}
