// The spline tool: a user shapes a function table with the mouse.
//
//   CSplineDialog dialog;
//   dialog.Table(table);                        // works on a copy
//   if (dialog.DoModal() == CDialog::kOk) table = dialog.Table();
//
// Points are dragged, added, deleted and typed; the table is switched between spline and straight
// lines, and its display range is set. Every edit changes the copy at once. The picture is painted
// from the copy, which samples its curve anew in the first paint after a change.

#pragma once

#include <vector>

#include <quillaven/editor/dialog.h>
#include <quillaven/editor/plot_scale_internal.h>
#include <quillaven/functions/spline.h>

class CSplineDialog : public CDialog {
 public:
  static constexpr int kMaxY = 1005;
  static constexpr int kMinY = 1006;
  static constexpr int kMinX = 1007;
  static constexpr int kMaxX = 1008;
  static constexpr int kList = 1009;
  static constexpr int kTicks = 5000;
  static constexpr int kRebuildList = 5002;       // no control sends this or the next,
  static constexpr int kRebuildListAgain = 5003;  // but an owner may
  static constexpr int kOptions = 5004;
  static constexpr int kGrid = 5010;
  static constexpr int kThin = 5011;  // no control sends this, but an owner may
  static constexpr int kSpline = 5014;
  static constexpr int kLinear = 5015;

  CSplineDialog();

  CSpline const &Table() const { return m_Table; }
  /// Takes a copy and lays out its handles.
  void Table(CSpline const &table);

  float MaxX() const { return m_limits.maxX; }
  float MinX() const { return m_limits.minX; }
  float MaxY() const { return m_limits.maxY; }
  float MinY() const { return m_limits.minY; }
  int ShowTicks() const { return m_nShowTicks; }
  int ShowGrid() const { return m_nShowGrid; }
  bool Linear() const { return m_bLinear; }
  bool Dragging() const { return m_bDragging; }
  CRect const &Plot() const { return m_Plot; }
  /// One for each point of the table, drawn or not.
  std::vector<CRect> const &Handles() const { return m_Handles; }
  /// One for each point, 1 if it is selected.
  std::vector<unsigned char> const &Selected() const { return m_Selected; }
  PlotScale Scale() const { return {m_Plot, m_limits}; }

  CIcon const *OnQueryDragIcon() const override;
  int OnInitDialog() override;
  void OnPaint(CDrawing &drawing) override;
  void OnLButtonDown(CPoint point) override;
  void OnMouseMove(CPoint point) override;
  void OnLButtonUp(CPoint point) override;
  void OnLButtonDblClk(CPoint point) override;
  void OnRButtonDown(CPoint point) override;
  void OnCommand(int id, int notification = 0) override;

 protected:
  bool DoDataExchange(bool save) override;

 private:
  void Layout();
  void RebuildList();
  void ShowChange();
  void SetLinear(bool linear);
  void Options();
  void Thin();

  int HitTest(CPoint point) const;
  bool MoveHandle(int index, int dx, int dy);
  void ReplacePoint(int index, double x, double y);
  bool IsInner(int index) const { return index > 0 && index < m_Table.GetSize() - 1; }

  CRect MarginRect(int more) const;
  void PaintTicks(CDrawing &drawing) const;
  void PaintGrid(CDrawing &drawing) const;
  void PaintAxes(CDrawing &drawing) const;
  void PaintCurve(CDrawing &drawing);
  void PaintHandles(CDrawing &drawing) const;
  void VerticalLine(CDrawing &drawing, double x) const;
  void HorizontalLine(CDrawing &drawing, double y) const;

  PlotLimits m_limits{0, 8, -1, 1};  // as they are shown
  int m_nShowTicks = 0;
  int m_nShowGrid = 0;
  bool m_bLinear = true;
  CSpline m_Table;
  std::vector<unsigned char> m_Selected;
  std::vector<CRect> m_Handles;
  CRect m_Plot;
  CPoint m_last;  // the mouse, when a move was accepted last
  bool m_bDragging = false;
};

/// The middle of a handle.
CPoint CentreOf(CRect const &handle);
