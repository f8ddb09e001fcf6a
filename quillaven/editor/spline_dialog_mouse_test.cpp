#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <random>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/editor/point_dialogs_internal.h>
#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/platform/files.h>

#include "tests/support/dialog_application.h"
#include "tests/support/spline_tables.h"
#include "tests/support/temporary_directory.h"

namespace {

using testing::ElementsAre;

// The tool on a table, with a mouse. The plot is 516 x 344 pixels, 500 x 328 within the margin.
struct Tool {
  explicit Tool(CSpline const &table) {
    dialog.Table(table);
    OpenInPixels(dialog);
    Repaint();
  }
  CPoint Centre(int i) const { return CentreOf(dialog.Handles().at(static_cast<std::size_t>(i))); }
  void DragFrom(CPoint from, int dx, int dy) {
    dialog.OnLButtonDown(from);
    dialog.OnMouseMove({from.x + dx, from.y + dy});
    dialog.OnLButtonUp({from.x + dx, from.y + dy});
  }
  // Whether something was to be painted anew since it was asked last: it is the plot, always.
  bool Repaint() {
    CRect rectangle;
    if (!dialog.TakeInvalidRect(rectangle)) return false;
    EXPECT_EQ(rectangle.left, dialog.Plot().left);
    EXPECT_EQ(rectangle.top, dialog.Plot().top);
    EXPECT_EQ(rectangle.right, dialog.Plot().right);
    EXPECT_EQ(rectangle.bottom, dialog.Plot().bottom);
    return true;
  }
  double X(int i) const { return dialog.Table().GetXAt(i); }
  double Y(int i) const { return dialog.Table().GetYAt(i); }
  std::vector<std::string> const &Rows() const { return dialog.Control(1009).rows; }

  CSplineDialog dialog;
};

CSpline PointTable() {
  CSpline table = Table({{0, 0}, {2, 5}, {6, -5}, {10, 0}});
  table.MaxX(10);
  table.MinY(-10);
  table.MaxY(10);
  return table;
}

// A plot that is 500 pixels wide within its margin, and one pixel high.
void OpenFlat(CSplineDialog &dialog, CSpline const &table) {
  dialog.Table(table);
  dialog.Place(1007, {0, 0, 1, 1});
  dialog.Place(1005, {0, 0, 1, 1});
  dialog.Place(1008, {0, 0, 516, 17});
  dialog.Place(1006, {0, 0, 17, 17});
  dialog.OnInitDialog();
}

// Pixels and values are no exact inverses: a handle that was dragged may lie a little beside.
void ExpectHandlesAtTheirPoints(CSplineDialog const &dialog) {
  CSpline const &table = dialog.Table();
  ASSERT_EQ(dialog.Handles().size(), static_cast<std::size_t>(table.GetSize()));
  for (int i = 0; i < table.GetSize(); ++i) {
    CPoint const centre = CentreOf(dialog.Handles()[static_cast<std::size_t>(i)]);
    EXPECT_NEAR(centre.x, dialog.Scale().PixelX(table.GetXAt(i)), 2) << i;
    EXPECT_NEAR(centre.y, dialog.Scale().PixelY(table.GetYAt(i)), 2) << i;
  }
}

TEST(HitTest, TakesTheFirstHandleThatHoldsThePoint) {
  CSpline table = PointTable();
  table.Add(2.02, 5);  // a pixel to the right: the handles overlap
  Tool tool(table);
  CPoint const centre = tool.Centre(1);
  ASSERT_EQ(tool.Centre(2).x, centre.x + 1);
  tool.dialog.OnLButtonDown(centre);
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 1, 0, 0, 0));
  tool.dialog.OnLButtonDown({centre.x - 7, centre.y - 7});  // left and top edge are inside
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 1, 0, 0, 0));
  tool.dialog.OnLButtonDown({centre.x + 7, centre.y});  // the right edge is not
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 0, 1, 0, 0));
  tool.dialog.OnLButtonDown({centre.x, centre.y + 7});
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 0, 0, 0, 0));
}

TEST(LeftButtonDown, CapturesSelectsAndPaints) {
  Tool tool(PointTable());
  tool.dialog.OnLButtonDown(tool.Centre(2));
  EXPECT_TRUE(tool.dialog.HasCapture());
  EXPECT_TRUE(tool.dialog.Dragging());
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 0, 1, 0));
  EXPECT_TRUE(tool.Repaint());
  tool.dialog.OnLButtonDown({0, 0});
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 0, 0, 0));
  EXPECT_TRUE(tool.Repaint());
}

TEST(LeftButtonDown, HitsAPointOutsideTheLimitsThatIsNotDrawn) {
  CSpline table = PointTable();
  table.Add(12, 0);
  Tool tool(table);
  ASSERT_GT(tool.Centre(4).x, tool.dialog.Plot().right);
  tool.dialog.OnLButtonDown(tool.Centre(4));
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 0, 0, 0, 1));
}

TEST(LeftButtonUp, ReleasesRebuildsTheListAndKeepsTheSelection) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({from.x, from.y + 10});
  EXPECT_EQ(tool.Rows()[1], "2  5") << "the list waits for the end of the drag";
  tool.dialog.OnLButtonUp({0, 0});
  EXPECT_NE(tool.Rows()[1], "2  5");
  EXPECT_FALSE(tool.dialog.HasCapture());
  EXPECT_FALSE(tool.dialog.Dragging());
  EXPECT_THAT(tool.dialog.Selected(), ElementsAre(0, 1, 0, 0));
}

TEST(Dragging, MovesPointAndHandleByTheMouse) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(1);
  tool.DragFrom({from.x + 3, from.y - 2}, 20, -30);  // the grip need not be the middle
  EXPECT_EQ(tool.X(1), 2 + static_cast<double>(static_cast<float>(10.0 * 20 / 499)));
  EXPECT_EQ(tool.Y(1), 5 + static_cast<double>(static_cast<float>(20.0 * 30 / 327)));
  EXPECT_EQ(tool.Centre(1).x, from.x + 20);
  EXPECT_EQ(tool.Centre(1).y, from.y - 30);
  EXPECT_TRUE(tool.Repaint());
}

TEST(Dragging, PaintsThePlotAnewWithEachMove) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  EXPECT_TRUE(tool.Repaint());
  for (int i = 1; i <= 2; ++i) {
    tool.dialog.OnMouseMove({from.x + i, from.y});
    EXPECT_TRUE(tool.Repaint());
  }
}

TEST(Dragging, NeedsTheButtonAndThePlot) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(1);
  Pairs const before = PointsOf(tool.dialog.Table());
  tool.dialog.OnMouseMove({from.x + 5, from.y});
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({tool.dialog.Plot().right, from.y});  // just outside
  tool.dialog.OnMouseMove({from.x, tool.dialog.Plot().top - 1});
  tool.dialog.OnMouseMove({from.x, tool.dialog.Plot().bottom});
  tool.dialog.OnLButtonUp(from);
  tool.dialog.OnMouseMove({from.x + 5, from.y});
  EXPECT_EQ(PointsOf(tool.dialog.Table()), before);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({tool.dialog.Plot().left, from.y});  // just inside
  EXPECT_NE(PointsOf(tool.dialog.Table()), before);
}

TEST(Dragging, WithoutAMoveIsNothing) {
  Tool tool(PointTable());
  tool.dialog.OnLButtonDown(tool.Centre(1));
  tool.Repaint();
  tool.dialog.OnMouseMove(tool.Centre(1));
  EXPECT_FALSE(tool.Repaint());
  EXPECT_EQ(tool.X(1), 2.0);
}

TEST(Dragging, TheFirstAndLastPointMoveUpAndDownAlone) {
  Tool tool(PointTable());
  for (int const i : {0, 3}) {
    double const x = tool.X(i);
    CPoint const centre = tool.Centre(i);
    int const inwards = i == 0 ? 40 : -40;
    tool.DragFrom(centre, inwards, 0);
    EXPECT_EQ(tool.X(i), x);
    EXPECT_EQ(tool.Y(i), 0.0);
    EXPECT_EQ(tool.Centre(i).x, centre.x);
    tool.DragFrom(centre, inwards, -33);
    EXPECT_EQ(tool.X(i), x);
    EXPECT_EQ(tool.Y(i), static_cast<double>(static_cast<float>(20.0 * 33 / 327)));
    EXPECT_EQ(tool.Centre(i).x, centre.x);
    EXPECT_EQ(tool.Centre(i).y, centre.y - 33);
  }
}

TEST(Dragging, StopsAPixelBeforeTheNeighbours) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({tool.dialog.Plot().right - 1, from.y});
  EXPECT_EQ(tool.Centre(1).x, tool.Centre(2).x - 1);
  EXPECT_LT(tool.X(1), tool.X(2));
  tool.dialog.OnLButtonUp(from);
  tool.dialog.OnLButtonDown(tool.Centre(1));
  tool.dialog.OnMouseMove({tool.dialog.Plot().left, from.y});
  EXPECT_EQ(tool.Centre(1).x, tool.Centre(0).x + 1);
  EXPECT_GT(tool.X(1), tool.X(0));
}

// 500 columns of one unit each, so that a point can come to the very x of its neighbour, which stands
// outside of what is shown or at its end.
TEST(Dragging, APointThatWouldMeetTheOneBeforeStaysWhereItIs) {
  CSpline table = Table({{0, 0}, {499, 0}, {600, 0}});
  table.MaxX(499);
  Tool tool(table);
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({tool.dialog.Plot().left, from.y});
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(table));
  EXPECT_EQ(tool.Centre(1).x, from.x);
}

TEST(Dragging, APointThatWouldMeetTheOneBehindStaysWhereItIs) {
  CSpline table = Table({{-101, 0}, {0, 0}, {499, 0}});
  table.MaxX(499);
  Tool tool(table);
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({tool.dialog.Plot().right - 1, from.y});
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(table));
  EXPECT_EQ(tool.Centre(1).x, from.x);
}

TEST(Dragging, HoldsAPointWithinTheMargin) {
  Tool tool(PointTable());
  CRect const plot = tool.dialog.Plot();
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({from.x, plot.top});
  EXPECT_EQ(tool.Centre(1).y, plot.top + 8);
  tool.dialog.OnLButtonUp(from);
  tool.dialog.OnLButtonDown(tool.Centre(1));
  tool.dialog.OnMouseMove({from.x, plot.bottom - 1});
  EXPECT_EQ(tool.Centre(1).y, plot.bottom - 8);
}

TEST(Dragging, ThePointOfReferenceWaitsWhileNoMoveIsAccepted) {
  Tool tool(PointTable());
  CPoint const from = tool.Centre(0);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({from.x + 100, from.y});  // refused: the first keeps its x
  tool.dialog.OnMouseMove({from.x + 200, from.y - 10});
  EXPECT_EQ(tool.Centre(0).y, from.y - 10) << "counted from where the button went down";
  tool.dialog.OnMouseMove({from.x + 300, from.y});
  EXPECT_EQ(tool.Centre(0).y, from.y);
}

TEST(Dragging, AnAcceptedMoveTakesTheMouseForReferenceEvenIfThePointStoppedShort) {
  Tool tool(PointTable());
  CRect const plot = tool.dialog.Plot();
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({from.x, plot.top + 2});  // the point stops at the margin
  EXPECT_EQ(tool.Centre(1).y, plot.top + 8);
  tool.dialog.OnMouseMove({from.x, plot.top + 12});
  EXPECT_EQ(tool.Centre(1).y, plot.top + 18);
}

TEST(Dragging, AFirstPointInTheColumnOfItsNeighbourDoesNotMove) {
  CSpline table = PointTable();
  table.Add(0.001, 8);
  Tool tool(table);
  ASSERT_EQ(tool.Centre(0).x, tool.Centre(1).x);
  tool.DragFrom(tool.Centre(0), 0, -20);
  EXPECT_EQ(tool.Y(0), 0.0) << "the neighbour's column less one is left of its own x";
}

TEST(Dragging, ALastPointInTheColumnOfItsNeighbourMovesUpAndDown) {
  CSpline table = Table({{0, 0}, {9.990, 8}, {9.995, 0}});
  table.MaxX(10);
  table.MinY(-10);
  table.MaxY(10);
  Tool tool(table);
  ASSERT_EQ(tool.Centre(2).x, tool.Centre(1).x);
  tool.DragFrom(tool.Centre(2), 0, -20);
  EXPECT_GT(tool.Y(2), 0.0);
  EXPECT_EQ(tool.X(2), 9.995);
}

// The neighbour before asks for a column more, and the one behind, which is asked last, takes it back.
TEST(Dragging, APointInTheColumnOfTheOneBeforeWithTheOneBehindInTheNextMovesUpAndDown) {
  CSpline table = Table({{0, 0}, {4.001, 5}, {4.005, 0}, {4.025, -5}, {10, 0}});
  table.MaxX(10);
  table.MinY(-10);
  table.MaxY(10);
  Tool tool(table);
  CPoint const from = tool.Centre(2);
  ASSERT_EQ(tool.Centre(1).x, from.x);
  ASSERT_EQ(tool.Centre(3).x, from.x + 1);
  tool.DragFrom(from, 10, -20);
  EXPECT_EQ(tool.X(2), 4.005);
  EXPECT_EQ(tool.Centre(2).x, from.x);
  EXPECT_EQ(tool.Centre(2).y, from.y - 20);
}

TEST(Dragging, ASinglePointIsFirstAndLast) {
  CSpline table = Table({{0.5, 0}});
  Tool tool(table);
  tool.DragFrom(tool.Centre(0), 50, -20);
  EXPECT_EQ(tool.X(0), 0.5);
  EXPECT_GT(tool.Y(0), 0.0);
}

TEST(Dragging, ATableOutOfOrderKeepsItsHandlesInStep) {
  TemporaryDirectory const directory;
  std::string const file = directory.Write("t.txt", "0\t1\t3\nx\t5\t1\t5\ny\t0\t0\t0\n");
  CStdioFile stream;
  ASSERT_TRUE(stream.Open(file.c_str(), CFile::modeRead | CFile::typeText));
  CSpline table;
  table.OnRead2(stream);
  ASSERT_EQ(table.GetSize(), 3);
  table.MinX(0);
  table.MaxX(10);
  Tool tool(table);
  // The first of two handles at one place is hit, and cannot move; the last is reached by itself.
  for (int i = 0; i < 3; ++i) {
    tool.DragFrom(tool.Centre(std::min(i, tool.dialog.Table().GetSize() - 1)), 0, -20);
    EXPECT_EQ(tool.dialog.Handles().size(),
              static_cast<std::size_t>(tool.dialog.Table().GetSize()));
    EXPECT_EQ(tool.dialog.Selected().size(), tool.dialog.Handles().size());
    ExpectHandlesAtTheirPoints(tool.dialog);
  }
}

// Each point of it stands before a smaller one, so that one that is taken out and put in again may
// come to another place.
TEST(Dragging, APointThatComesToAnotherPlaceTakesItsHandleAlong) {
  TemporaryDirectory const directory;
  std::string const file =
      directory.Write("t.txt", "-1\t1\t5\nx\t6\t2\t4\t1\t8\ny\t0\t0.5\t-0.5\t0\t0\n");
  CStdioFile stream;
  ASSERT_TRUE(stream.Open(file.c_str(), CFile::modeRead | CFile::typeText));
  CSpline table;
  table.OnRead2(stream);
  ASSERT_EQ(table.GetSize(), 5);
  table.MinX(0);
  table.MaxX(10);
  for (int i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    Tool tool(table);
    tool.DragFrom(tool.Centre(i), 0, -20);
    EXPECT_EQ(tool.dialog.Table().GetSize(), 5);
    ExpectHandlesAtTheirPoints(tool.dialog);
  }
}

TEST(Dragging, HoldsAPointWithinTheMarginAtTheSides) {
  CSpline table = Table({{-5, 0}, {2, 0}, {15, 0}});  // neighbours outside the limits
  table.MaxX(10);
  Tool tool(table);
  CRect const plot = tool.dialog.Plot();
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({plot.left, from.y});
  EXPECT_EQ(tool.Centre(1).x, plot.left + 8);
  tool.dialog.OnLButtonUp(from);
  tool.dialog.OnLButtonDown(tool.Centre(1));
  tool.dialog.OnMouseMove({plot.right - 1, from.y});
  EXPECT_EQ(tool.Centre(1).x, plot.right - 8);
}

// Where the limits run backwards, the neighbour's column less one lies behind the neighbour's x.
TEST(Dragging, AnInnerPointWhoseXWouldBreakALimitStaysWhereItIs) {
  CSpline table = PointTable();
  table.MinX(10);
  table.MaxX(0);
  Tool tool(table);
  CPoint const from = tool.Centre(1);
  tool.Repaint();
  tool.dialog.OnLButtonDown({from.x, from.y});
  ASSERT_TRUE(tool.Repaint());
  tool.dialog.OnMouseMove({from.x - 5, from.y - 5});
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(PointTable()));
  EXPECT_EQ(tool.Centre(1).x, from.x);
  EXPECT_EQ(tool.Centre(1).y, from.y);
  EXPECT_FALSE(tool.Repaint());
}

TEST(Dragging, SidewaysInAPlotOnePixelHighKeepsTheHeight) {
  CSplineDialog dialog;
  OpenFlat(dialog, PointTable());
  CPoint const from = CentreOf(dialog.Handles()[1]);
  dialog.OnLButtonDown(from);
  dialog.OnMouseMove({from.x + 10, from.y});
  EXPECT_GT(dialog.Table().GetXAt(1), 2.0);
  EXPECT_EQ(dialog.Table().GetYAt(1), 5.0);
}

TEST(Dragging, ToAHeightThatNoFloatHoldsIsRefused) {
  CSpline table = Table({{0, 0}, {4, 3e38}, {8, 0}});
  table.MaxX(8);
  table.MinY(-3e38F);
  table.MaxY(3e38F);
  Tool tool(table);
  CPoint const from = tool.Centre(1);
  tool.dialog.OnLButtonDown(from);
  tool.dialog.OnMouseMove({from.x, tool.dialog.Plot().bottom - 1});
  EXPECT_EQ(tool.Y(1), 3e38);
  tool.dialog.OnMouseMove({from.x, from.y + 100});
  EXPECT_LT(tool.Y(1), 3e38);
  EXPECT_GT(tool.Y(1), 0.0);
}

TEST(DoubleClick, WhereTheHeightIsOneThatNoFloatHoldsAddsNothing) {
  CSpline table = PointTable();
  table.MaxY(std::numeric_limits<float>::max());
  Tool tool(table);
  CPoint const top{tool.dialog.Scale().PixelX(4), tool.dialog.Plot().top + 8};
  ASSERT_GT(tool.dialog.Scale().DataY(top.y), 3.41e38);
  tool.dialog.OnLButtonDblClk(top);
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(PointTable()));
  EXPECT_FALSE(tool.Repaint());
  tool.dialog.OnLButtonDblClk({top.x, top.y + 1});
  EXPECT_EQ(tool.dialog.Table().GetSize(), 5);
}

TEST(DoubleClick, InAPlotOnePixelHighAddsNothing) {
  CSplineDialog dialog;
  OpenFlat(dialog, PointTable());
  dialog.OnLButtonDblClk({300, 8});
  EXPECT_EQ(dialog.Table().GetSize(), 4);
}

TEST(DoubleClick, OnAnEmptyPlaceAddsAPointAndASecondOneRemovesIt) {
  Tool tool(PointTable());
  CPoint const place{tool.dialog.Scale().PixelX(4), tool.dialog.Scale().PixelY(3)};
  tool.dialog.OnLButtonDblClk(place);
  ASSERT_EQ(tool.dialog.Table().GetSize(), 5);
  EXPECT_EQ(tool.X(2), tool.dialog.Scale().DataX(place.x));
  EXPECT_EQ(tool.Y(2), tool.dialog.Scale().DataY(place.y));
  EXPECT_EQ(tool.dialog.Handles().size(), 5U);
  EXPECT_EQ(tool.Rows().size(), 5U);
  EXPECT_TRUE(tool.Repaint());
  tool.dialog.OnLButtonDblClk(place);
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(PointTable()));
  EXPECT_EQ(tool.Rows().size(), 4U);
  EXPECT_TRUE(tool.Repaint());
}

TEST(DoubleClick, OnTheFirstOrLastHandleDoesNothing) {
  Tool tool(PointTable());
  for (int const i : {0, 3}) {
    tool.dialog.OnLButtonDblClk({tool.Centre(i).x + (i == 0 ? 1 : -1), tool.Centre(i).y});
    EXPECT_EQ(tool.dialog.Table().GetSize(), 4);
    EXPECT_FALSE(tool.Repaint());
  }
}

TEST(DoubleClick, CountsWithinTheMarginAlone) {
  Tool tool(PointTable());
  CRect const plot = tool.dialog.Plot();
  for (CPoint const point :
       {CPoint{plot.left + 7, 100}, CPoint{plot.right - 8, 100}, CPoint{200, plot.top + 7},
        CPoint{200, plot.bottom - 8}, CPoint{-5, -5}}) {
    tool.dialog.OnLButtonDblClk(point);
    EXPECT_EQ(tool.dialog.Table().GetSize(), 4);
  }
  tool.dialog.OnLButtonDblClk({plot.left + 9, plot.top + 8});
  EXPECT_EQ(tool.dialog.Table().GetSize(), 5);
  tool.dialog.OnLButtonDblClk({plot.right - 10, plot.bottom - 9});
  EXPECT_EQ(tool.dialog.Table().GetSize(), 6);
}

TEST(DoubleClick, BringsAPointToAnEmptyTable) {
  Tool tool((CSpline()));
  tool.dialog.OnLButtonDblClk({200, 100});
  EXPECT_EQ(tool.dialog.Table().GetSize(), 1);
}

TEST(DoubleClick, InAPlotOfOnePixelAddsNothing) {
  CSplineDialog dialog;
  dialog.Table(PointTable());
  dialog.Place(1007, {0, 0, 1, 1});
  dialog.Place(1005, {0, 0, 1, 1});
  dialog.Place(1008, {0, 0, 17, 17});
  dialog.Place(1006, {0, 0, 17, 17});
  dialog.OnInitDialog();
  dialog.OnLButtonDblClk({8, 8});
  EXPECT_EQ(dialog.Table().GetSize(), 4);
  CDrawing drawing;
  dialog.OnPaint(drawing);
  dialog.OnLButtonDown({8, 8});
  dialog.OnMouseMove({8, 9});
  dialog.OnMouseMove({9, 8});
  EXPECT_EQ(dialog.Table().GetXAt(0), 0.0);
  EXPECT_EQ(dialog.Table().GetXAt(3), 10.0);
}

TEST(RightButton, EditsAnInnerPointBetweenItsNeighboursLessAPixel) {
  DialogApplication application;
  Tool tool(PointTable());
  application.scripts = {[](CDialog &edit) {
    auto const &dialog = dynamic_cast<CEditPointDlg &>(edit);
    EXPECT_EQ(dialog.X, 2.0F);
    EXPECT_EQ(dialog.Y, 5.0F);
    float const pixel = static_cast<float>(10.0 / 499);
    EXPECT_EQ(dialog.Lower, pixel);
    EXPECT_EQ(dialog.Upper, static_cast<float>(6.0 - pixel));
    EXPECT_EQ(edit.Control(5018).text, "N.B.: X between 0.0200401 and 5.97996");
    edit.Type(5016, "4.5");
    edit.Type(5017, "-7");
    edit.Press(1);
  }};
  tool.dialog.OnRButtonDown(tool.Centre(1));
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(PointsOf(tool.dialog.Table()), (Pairs{{0, 0}, {4.5, -7}, {6, -5}, {10, 0}}));
  EXPECT_EQ(tool.Centre(1).x, tool.dialog.Scale().PixelX(4.5));
  EXPECT_EQ(tool.Rows()[1], "4.5  -7");
  EXPECT_TRUE(tool.Repaint());
}

// The program that owns the tool may send it commands while the other dialog is open.
TEST(RightButton, LeavesATableAloneThatWasThinnedMeanwhile) {
  CSpline table;
  for (int x = 0; x <= 8; ++x) table.Add(x, 0);
  DialogApplication application;
  Tool tool(table);
  application.scripts = {[&tool](CDialog &edit) {
    tool.dialog.OnCommand(5011);
    edit.Type(5016, "5.5");
    edit.Type(5017, "0.5");
    edit.Press(1);
  }};
  tool.dialog.OnRButtonDown(tool.Centre(5));
  EXPECT_EQ(application.opened, 1U);
  ASSERT_LT(tool.dialog.Table().GetSize(), 9);
  for (auto const &[x, y] : PointsOf(tool.dialog.Table())) EXPECT_EQ(y, 0);
}

TEST(RightButton, LeavesTheXOfTheFirstAndLastPoint) {
  for (int const i : {0, 3}) {
    DialogApplication application;
    Tool tool(PointTable());
    double const x = tool.X(i);
    application.scripts = {[](CDialog &edit) {
      auto const &dialog = dynamic_cast<CEditPointDlg &>(edit);
      EXPECT_EQ(dialog.Lower, dialog.X);
      EXPECT_EQ(dialog.Upper, dialog.X);
      EXPECT_TRUE(edit.Control(5016).readOnly);
      edit.Type(5016, "4.5");
      edit.Type(5017, "-7");
      edit.Press(1);
    }};
    tool.dialog.OnRButtonDown(tool.Centre(i));
    EXPECT_EQ(tool.X(i), x);
    EXPECT_EQ(tool.Y(i), -7.0);
  }
}

// A dialog's fields are floats, and the points of a table need not be.
TEST(RightButton, KeepsAnXOfTheFirstAndLastPointThatNoFloatHolds) {
  CSpline const table = Table({{0.1, 0.25}, {0.10000000075, 0.5}, {0.9, 0.75}});
  for (int const i : {0, 2}) {
    for (char const *y : {"", "0.5"}) {
      DialogApplication application;
      Tool tool(table);
      application.scripts = {[&](CDialog &edit) {
        if (*y != '\0') edit.Type(5017, y);
        edit.Press(1);
      }};
      Pairs expected = PointsOf(table);
      if (*y != '\0') expected[static_cast<std::size_t>(i)].second = 0.5;
      CPoint const centre = tool.Centre(i);
      tool.dialog.OnRButtonDown({centre.x, centre.y - (i == 0 ? 0 : 1)});
      ASSERT_EQ(application.opened, 1U);
      EXPECT_EQ(PointsOf(tool.dialog.Table()), expected) << i << " " << y;
    }
  }
}

TEST(RightButton, OnAPointThatNoFloatHoldsAsksForAnotherHeight) {
  DialogApplication application;
  CSpline table = Table({{-1e300, 0}, {4, 1e300}, {1e300, 0}});
  Tool tool(table);
  application.scripts = {[&](CDialog &edit) {
    auto const &dialog = dynamic_cast<CEditPointDlg &>(edit);
    EXPECT_EQ(dialog.Lower, -std::numeric_limits<float>::infinity());
    EXPECT_EQ(dialog.Upper, std::numeric_limits<float>::infinity());
    EXPECT_EQ(edit.Control(5017).text, "inf");
    edit.Press(1);
    EXPECT_EQ(application.boxes.size(), 1U);
    edit.Type(5017, "7");
    edit.Press(1);
  }};
  tool.dialog.OnRButtonDown(tool.Centre(1));
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(PointsOf(tool.dialog.Table()), (Pairs{{-1e300, 0}, {4, 7}, {1e300, 0}}));
}

TEST(RightButton, CancelledOrBesideTheHandlesChangesNothing) {
  DialogApplication application;
  Tool tool(PointTable());
  application.scripts = {[](CDialog &edit) {
    edit.Type(5016, "4.5");
    edit.Press(2);
  }};
  tool.dialog.OnRButtonDown(tool.Centre(1));
  tool.dialog.OnRButtonDown({0, 0});
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(PointsOf(tool.dialog.Table()), PointsOf(PointTable()));
  EXPECT_FALSE(tool.Repaint());
}

TEST(RightButton, NeighboursWithinTwoPixelsForbidNothing) {
  DialogApplication application;
  CSpline table = PointTable();
  table.Add(2.01, 0);
  table.Add(2.02, 0);
  Tool tool(table);
  application.scripts = {[](CDialog &edit) {
    auto const &dialog = dynamic_cast<CEditPointDlg &>(edit);
    EXPECT_GT(dialog.Lower, dialog.Upper);
    edit.Type(5016, "7");
    edit.Press(1);
  }};
  tool.dialog.OnRButtonDown({tool.Centre(2).x, tool.Centre(2).y});
  EXPECT_EQ(PointsOf(tool.dialog.Table()),
            (Pairs{{0, 0}, {2, 5}, {2.02, 0}, {6, -5}, {7, 0}, {10, 0}}));
}

constexpr int kFar = std::numeric_limits<std::int32_t>::max();

// What a user may do with a mouse and the keyboard, in any order and at any place. True if it may
// put a point before the first or behind the last.
bool DoAnything(CSplineDialog &dialog, std::mt19937 &random) {
  auto const below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  auto const anywhere = [&] {
    CPoint const near{below(800) - 10, below(420) - 10};
    std::vector<CPoint> const corners{{kFar, -kFar}, {-kFar, kFar}, {kFar, kFar}, {-kFar, -kFar}};
    return below(50) != 0 ? near : corners[static_cast<std::size_t>(below(4))];
  };
  CPoint point = anywhere();
  std::size_t const n = dialog.Handles().size();
  if (below(3) != 0) point = CentreOf(dialog.Handles()[static_cast<std::size_t>(below(400)) % n]);
  switch (below(9)) {
    case 0:
      dialog.OnLButtonDown(point);
      return false;
    case 1:
    case 2:
    case 3:
      dialog.OnMouseMove(anywhere());
      return false;
    case 4:
      dialog.OnLButtonUp(point);
      return false;
    case 5:
      dialog.OnLButtonDblClk(point);
      return true;
    case 6:
      dialog.OnRButtonDown(point);
      return true;
    case 7:
      dialog.Press(below(2) == 0 ? CSplineDialog::kSpline : CSplineDialog::kLinear);
      return false;
    default:
      dialog.Press(below(2) == 0 ? CSplineDialog::kTicks : CSplineDialog::kGrid);
      return false;
  }
}

TEST(MouseEvents, InAnyOrderKeepTheTableSortedAndEverythingInStep) {
  DialogApplication application;
  int edited = 0;
  for (unsigned int seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Tool tool(DistanceTable());
    CSplineDialog &dialog = tool.dialog;
    for (int step = 0; step < 400; ++step) {
      application.scripts = {[&](CDialog &edit) {
        edit.Type(5016, std::to_string(1 + random() % 7));
        edit.Type(5017, std::to_string(random() % 90));
        edit.Press(1);
        ++edited;
      }};
      DoAnything(dialog, random);
      CSpline const &table = dialog.Table();
      ASSERT_EQ(dialog.Handles().size(), static_cast<std::size_t>(table.GetSize()));
      ASSERT_EQ(dialog.Selected().size(), dialog.Handles().size());
      ASSERT_LE(std::count(dialog.Selected().begin(), dialog.Selected().end(), 1), 1);
      ASSERT_EQ(table.GetXAt(0), 0.0);
      ASSERT_EQ(table.GetXAt(table.GetSize() - 1), 8.0);
      for (int i = 1; i < table.GetSize(); ++i) ASSERT_LT(table.GetXAt(i - 1), table.GetXAt(i));
      if (step % 20 == 0 && table.TableLinear()) {
        CDrawing drawing;
        dialog.OnPaint(drawing);
        ASSERT_GE(drawing.Operations().size(), 500U);
      }
    }
  }
  EXPECT_GT(edited, 500);
}

// Which handles may lie beside their points: those that a drag has moved since the last layout.
class DraggedHandles {
 public:
  void Follow(CSplineDialog const &dialog) {
    m_dragged.resize(dialog.Handles().size(), 0);
    for (std::size_t i = 0; i < m_dragged.size(); ++i)
      if (dialog.Dragging() && dialog.Selected()[i] != 0) m_dragged[i] = 1;
    bool beside = false;
    for (int i = 0; i < dialog.Table().GetSize(); ++i) {
      if (IsAtItsPoint(dialog, i)) continue;
      beside = true;
      EXPECT_EQ(m_dragged[static_cast<std::size_t>(i)], 1) << i;
    }
    if (!beside) m_dragged.assign(m_dragged.size(), 0);
  }

 private:
  static bool IsAtItsPoint(CSplineDialog const &dialog, int i) {
    CPoint const centre = CentreOf(dialog.Handles()[static_cast<std::size_t>(i)]);
    return centre.x == dialog.Scale().PixelX(dialog.Table().GetXAt(i)) &&
           centre.y == dialog.Scale().PixelY(dialog.Table().GetYAt(i));
  }
  std::vector<int> m_dragged;
};

// Equal, turned round, huge and tiny ones, too.
std::string AnyLimit(std::mt19937 &random) {
  std::vector<std::string> const limits = {"0", "8", "-1", "1e-30", "3e38", "-3e38", "7.3", "100"};
  return limits[random() % limits.size()];
}

void AnswerAnything(CDialog &dialog, std::mt19937 &random) {
  if (dialog.Title() == "Options") {
    for (int id = 5005; id <= 5008; ++id) dialog.Type(id, AnyLimit(random));
  } else {
    dialog.Type(5016, std::to_string(static_cast<int>(random() % 12) - 2) + ".1");
    dialog.Type(5017, std::to_string(random() % 90));
  }
  dialog.Press(1);
  if (dialog.Result() == 0) dialog.Press(2);  // refused
}

bool DoAnythingAtAll(CSplineDialog &dialog, std::mt19937 &random) {
  CDrawing drawing;
  switch (random() % 30) {
    case 0:
      dialog.Press(CSplineDialog::kOptions);
      return false;
    case 1:
      dialog.OnCommand(5011);
      return true;
    case 2:
      dialog.OnPaint(drawing);
      return false;
    default:
      if (!dialog.Handles().empty()) return DoAnything(dialog, random);
      dialog.OnLButtonDblClk({static_cast<int>(random() % 600), 100});
      return true;
  }
}

// The first and last point keep their x; others may at most come before or behind them.
void ExpectTheEndsAreKept(Pairs const &before, Pairs const &after, bool mayAdd) {
  if (before.empty()) return;
  ASSERT_FALSE(after.empty());
  EXPECT_LE(after.front().first, before.front().first);
  EXPECT_GE(after.back().first, before.back().first);
  if (mayAdd) return;
  EXPECT_EQ(after.front().first, before.front().first);
  EXPECT_EQ(after.back().first, before.back().first);
}

TEST(MouseEvents, OnAnyTableWithAnyLimitsKeepEverythingInStep) {
  DialogApplication application;
  std::vector<Pairs> const tables = {
      {}, {{0.1, 3}}, {{0.1, 0}, {0.9, 1}}, {{0.1, 0}, {0.10000000075, 5}, {1.0 / 3, 2}, {7.7, 1}}};
  for (unsigned int seed = 1; seed <= 120; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CSpline table = Table(tables[seed % tables.size()]);
    table.MaxX(8);
    Tool tool(table);
    DraggedHandles dragged;
    for (int step = 0; step < 300 && !testing::Test::HasFailure(); ++step) {
      SCOPED_TRACE(step);
      application.scripts = {[&](CDialog &dialog) { AnswerAnything(dialog, random); }};
      Pairs const before = PointsOf(tool.dialog.Table());
      bool mayAdd = true;  // what throws may have added one first
      try {
        mayAdd = DoAnythingAtAll(tool.dialog, random);
      } catch (std::string const &text) {
        EXPECT_EQ(text, "spline only for n >= 3 points");
      } catch (std::bad_alloc const &) {  // a curve that is too long to be sampled
      }
      CSpline const &edited = tool.dialog.Table();
      ExpectTheEndsAreKept(before, PointsOf(edited), mayAdd);
      ASSERT_EQ(tool.dialog.Handles().size(), static_cast<std::size_t>(edited.GetSize()));
      ASSERT_EQ(tool.dialog.Selected().size(), tool.dialog.Handles().size());
      for (int i = 1; i < edited.GetSize(); ++i) ASSERT_LT(edited.GetXAt(i - 1), edited.GetXAt(i));
      for (auto const &[x, y] : PointsOf(edited)) ASSERT_TRUE(std::isfinite(x) && std::isfinite(y));
      dragged.Follow(tool.dialog);
    }
  }
}

}  // namespace
