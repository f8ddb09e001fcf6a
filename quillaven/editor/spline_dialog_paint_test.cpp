#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/editor/spline_dialog_internal.h>

#include "tests/support/dialog_application.h"
#include "tests/support/spline_tables.h"

namespace {

using Operations = std::vector<CDrawOperation>;
using Kind = CDrawOperation::Kind;

// Plot: 74, 14 to 590, 358. Within the margin: 82, 22, 500 x 328.
constexpr int kLeft = 74;
constexpr int kTop = 14;
constexpr int kRight = 590;
constexpr int kBottom = 358;

CSplineDialog Opened(CSpline const &table) {
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  return dialog;
}

Operations Paint(CSplineDialog &dialog) {
  CDrawing drawing;
  dialog.OnPaint(drawing);
  return drawing.Operations();
}

// What is drawn from the pen of a colour and width up to the next pen.
Operations DrawnWith(Operations const &operations, unsigned long colour, int width = 1) {
  Operations drawn;
  bool inForce = false;
  for (CDrawOperation const &operation : operations) {
    if (operation.kind == Kind::pen) {
      inForce = operation.colour == colour && operation.width == width;
    } else if (inForce) {
      drawn.push_back(operation);
    }
  }
  return drawn;
}

// The x of vertical and the y of horizontal lines, each of which must cross the whole plot.
struct Lines {
  std::vector<int> xs;
  std::vector<int> ys;
};
Lines LinesOf(Operations const &operations) {
  Lines lines;
  for (std::size_t i = 0; i + 1 < operations.size(); ++i) {
    if (operations[i].kind != Kind::moveTo || operations[i + 1].kind != Kind::lineTo) continue;
    CRect const from = operations[i].place;
    CRect const to = operations[i + 1].place;
    if (from.left == to.left && from.top == kTop && to.top == kBottom)
      lines.xs.push_back(from.left);
    if (from.top == to.top && from.left == kLeft && to.left == kRight) lines.ys.push_back(from.top);
  }
  return lines;
}

Operations Ellipses(Operations const &operations) {
  Operations found;
  std::copy_if(operations.begin(), operations.end(), std::back_inserter(found),
               [](CDrawOperation const &o) { return o.kind == Kind::ellipse; });
  return found;
}

TEST(SplinePaint, BeginsWithThePlotInTheDevicesPenAndBrush) {
  CSplineDialog dialog = Opened(DistanceTable());
  Operations const operations = Paint(dialog);
  CDrawing expected;
  expected.Pen(0x000000, 1);
  expected.Brush(0xFFFFFF);
  expected.Rectangle({kLeft, kTop, kRight, kBottom});
  ASSERT_GT(operations.size(), 3U);
  EXPECT_TRUE(
      std::equal(expected.Operations().begin(), expected.Operations().end(), operations.begin()));
}

TEST(SplinePaint, DrawsTheIconAloneWhenMinimised) {
  CSplineDialog dialog = Opened(DistanceTable());
  dialog.Resize({0, 0, 100, 60}, true);
  CDrawing expected;
  expected.Icon({34, 14, 66, 46});
  EXPECT_EQ(Paint(dialog), expected.Operations());
}

TEST(SplinePaint, SetsTheRadioButtons) {
  CSplineDialog dialog = Opened(DistanceTable());
  EXPECT_FALSE(dialog.Control(5014).checked || dialog.Control(5015).checked);
  Paint(dialog);
  EXPECT_FALSE(dialog.Control(5014).checked);
  EXPECT_TRUE(dialog.Control(5015).checked);
  dialog.Press(5014);
  Paint(dialog);
  EXPECT_TRUE(dialog.Control(5014).checked);
  EXPECT_FALSE(dialog.Control(5015).checked);
}

TEST(SplinePaint, DrawsNeitherTicksNorGridUntilTheirBoxesAreChecked) {
  CSplineDialog dialog = Opened(DistanceTable());
  Operations const operations = Paint(dialog);
  EXPECT_TRUE(DrawnWith(operations, 0x7F7F7F).empty());
  EXPECT_EQ(LinesOf(DrawnWith(operations, 0)).xs.size(), 0U);
}

TEST(SplinePaint, DrawsAGreyTickAtEachDistanceBetweenTheEdges) {
  CSplineDialog dialog = Opened(DistanceTable());
  dialog.Press(5000);
  std::vector<int> expected;
  for (int i = 0; i < 30; ++i) expected.push_back(dialog.Scale().PixelX(CSpline::Root(i)));
  EXPECT_EQ(expected.front(), 82);
  EXPECT_EQ(expected.back(), 582);
  EXPECT_EQ(LinesOf(DrawnWith(Paint(dialog), 0x7F7F7F)).xs, expected);
}

TEST(SplinePaint, LeavesTicksAtOrBeyondTheEdgesOut) {
  CSpline table = DistanceTable();
  table.MinX(1);  // 0 lies left of the plot
  CSplineDialog dialog = Opened(table);
  dialog.Press(5000);
  std::vector<int> const xs = LinesOf(DrawnWith(Paint(dialog), 0x7F7F7F)).xs;
  EXPECT_EQ(xs.size(), 29U);
  EXPECT_EQ(xs.front(), 82);
}

TEST(SplinePaint, DrawsALineIntoTheMarginButNotOntoTheEdge) {
  CSpline table = Table({{0, 0}, {500, 0}});
  table.MinX(0);
  table.MaxX(500);
  for (double const shift : {7.5, 8.5}) {  // 7 pixels left of the margin, and 8: the edge itself
    table.MinX(static_cast<float>(shift));
    table.MaxX(static_cast<float>(500 + shift));
    CSplineDialog dialog = Opened(table);
    EXPECT_EQ(LinesOf(DrawnWith(Paint(dialog), 0x0000FF)).xs.size(), shift < 8 ? 1U : 0U);
  }
}

// Limits that bring a value to so many pixels from the margin: a half more, which is cut off.
float LimitFor(double value, int pixels) {
  return static_cast<float>(value - pixels - (pixels < 0 ? -0.5 : 0.5));
}

// The ticks are offered to a table that opens with an end of 8, and stay with other limits.
CSplineDialog WithTicksAndGrid(CSpline const &table) {
  CSplineDialog dialog = Opened(DistanceTable());
  dialog.Press(5000);
  dialog.Press(5010);
  dialog.Table(table);
  return dialog;
}

TEST(SplinePaint, DrawsUprightLinesBetweenTheEdgesAndNotOnThem) {
  struct Row {
    int x;
    bool drawn;
  };
  for (Row const row :
       {Row{kLeft, false}, Row{kLeft + 1, true}, Row{kRight - 1, true}, Row{kRight, false}}) {
    SCOPED_TRACE(row.x);
    auto const isDrawn = [&](double value, unsigned long colour) {
      CSpline table = Table({{0, 0}, {8, 0}});
      table.MinX(LimitFor(value, row.x - (kLeft + 8)));
      table.MaxX(table.MinX() + 500);
      CSplineDialog dialog = WithTicksAndGrid(table);
      EXPECT_EQ(dialog.Scale().PixelX(value), row.x);
      std::vector<int> const xs = LinesOf(DrawnWith(Paint(dialog), colour)).xs;
      EXPECT_TRUE(std::all_of(xs.begin(), xs.end(), [](int x) { return kLeft < x && x < kRight; }));
      return std::count(xs.begin(), xs.end(), row.x) != 0;
    };
    EXPECT_EQ(isDrawn(0, 0x0000FF), row.drawn) << "axis";
    EXPECT_EQ(isDrawn(row.x < 300 ? 0 : 600, 0), row.drawn) << "grid in steps of 100";
    EXPECT_EQ(isDrawn(row.x < 300 ? 0 : 8, 0x7F7F7F), row.drawn) << "first and last tick";
  }
}

TEST(SplinePaint, DrawsLevelLinesBetweenTheEdgesAndNotOnThem) {
  struct Row {
    int y;
    bool drawn;
  };
  for (Row const row :
       {Row{kTop, false}, Row{kTop + 1, true}, Row{kBottom - 1, true}, Row{kBottom, false}}) {
    SCOPED_TRACE(row.y);
    auto const isDrawn = [&](double value, unsigned long colour) {
      CSpline table = DistanceTable();
      table.MinY(LimitFor(value, kBottom - 8 - row.y));
      table.MaxY(table.MinY() + 328);
      CSplineDialog dialog = WithTicksAndGrid(table);
      EXPECT_EQ(dialog.Scale().PixelY(value), row.y);
      std::vector<int> const ys = LinesOf(DrawnWith(Paint(dialog), colour)).ys;
      EXPECT_TRUE(std::all_of(ys.begin(), ys.end(), [](int y) { return kTop < y && y < kBottom; }));
      return std::count(ys.begin(), ys.end(), row.y) != 0;
    };
    EXPECT_EQ(isDrawn(0, 0x0000FF), row.drawn) << "axis";
    EXPECT_EQ(isDrawn(row.y > 200 ? 0 : 400, 0), row.drawn) << "grid in steps of 100";
  }
}

TEST(SplinePaint, DrawsGridLinesAtWholeNumbersUpToThirty) {
  CSpline table = DistanceTable();
  table.MaxX(30);
  CSplineDialog dialog = Opened(table);
  dialog.Press(5010);
  std::vector<int> expected;
  for (int i = 0; i <= 30; ++i) expected.push_back(dialog.Scale().PixelX(i));
  Lines const lines = LinesOf(DrawnWith(Paint(dialog), 0));
  EXPECT_EQ(lines.xs, expected);
  // -10 to 100 in steps of 100, 3 of them, halved once.
  std::vector<int> heights;
  for (int const y : {0, 50, 100}) heights.push_back(dialog.Scale().PixelY(y));
  EXPECT_EQ(lines.ys, heights);
}

TEST(SplinePaint, DrawsGridLinesBelowAnEndThatIsNoWholeNumber) {
  CSpline table = DistanceTable();
  table.MaxX(7.9F);
  CSplineDialog dialog = Opened(table);
  dialog.Press(5010);
  std::vector<int> expected;
  for (int i = 0; i < 8; ++i) expected.push_back(dialog.Scale().PixelX(i));
  EXPECT_EQ(LinesOf(DrawnWith(Paint(dialog), 0)).xs, expected);
}

TEST(SplinePaint, DrawsNoGridLinesForAnEndBelowZeroOrThatIsNoNumber) {
  for (float const end : {-5.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
    CSpline table = DistanceTable();
    table.MaxX(end);
    CSplineDialog dialog = Opened(table);
    dialog.Press(5010);
    Lines const lines = LinesOf(DrawnWith(Paint(dialog), 0));
    EXPECT_TRUE(lines.xs.empty()) << end;
    EXPECT_EQ(lines.ys.size(), 3U) << end;
  }
}

TEST(SplinePaint, DrawsGridLinesByAChosenScaleBeyondThirty) {
  CSpline table = DistanceTable();
  table.MaxX(40);
  CSplineDialog dialog = Opened(table);
  dialog.Press(5010);
  std::vector<int> expected;
  for (int i = 0; i <= 40; i += 10) expected.push_back(dialog.Scale().PixelX(i));
  EXPECT_EQ(LinesOf(DrawnWith(Paint(dialog), 0)).xs, expected);
}

TEST(SplinePaint, DrawsGridLinesByAChosenScaleFromAnyOtherMinimum) {
  CSpline table = DistanceTable();
  table.MinX(-1);
  table.MaxX(1);
  CSplineDialog dialog = Opened(table);
  dialog.Press(5010);
  std::vector<int> expected;
  for (double const x : {-1.0, -0.5, 0.0, 0.5, 1.0}) expected.push_back(dialog.Scale().PixelX(x));
  EXPECT_EQ(LinesOf(DrawnWith(Paint(dialog), 0)).xs, expected) << "1.5 lies outside";
}

TEST(SplinePaint, DrawsRedAxesWhereZeroIsShown) {
  CSplineDialog dialog = Opened(DistanceTable());
  Lines const axes = LinesOf(DrawnWith(Paint(dialog), 0x0000FF));
  EXPECT_EQ(axes.xs, std::vector<int>{82});
  EXPECT_EQ(axes.ys, std::vector<int>{dialog.Scale().PixelY(0)});

  CSpline away = DistanceTable();
  away.MinX(2);
  away.MinY(10);
  CSplineDialog without = Opened(away);
  EXPECT_TRUE(DrawnWith(Paint(without), 0x0000FF).empty());
}

TEST(SplinePaint, DrawsTheCurveInBlueOfWidthTwoColumnByColumn) {
  CSpline table = DistanceTable();
  CSplineDialog dialog = Opened(table);
  Operations const curve = DrawnWith(Paint(dialog), 0xFF0000, 2);
  ASSERT_EQ(curve.size(), 500U);
  for (int p = 0; p < 500; ++p) {
    CDrawOperation const &operation = curve[static_cast<std::size_t>(p)];
    EXPECT_EQ(operation.kind, p == 0 ? Kind::moveTo : Kind::lineTo);
    auto const x = static_cast<float>(8.0 * p / 499);
    EXPECT_EQ(operation.place.left, 82 + p);
    EXPECT_EQ(operation.place.top, dialog.Scale().PixelY(table.Evaluate(x)));
  }
}

TEST(SplinePaint, BreaksTheCurveOffWhereItLeavesThePlot) {
  CSpline table = Table({{0, 0}, {4, 200}, {8, 0}});
  table.MaxX(8);
  table.MinY(0);
  table.MaxY(100);
  CSplineDialog dialog = Opened(table);
  Operations const curve = DrawnWith(Paint(dialog), 0xFF0000, 2);
  CRect const inner{82, 22, 583, 351};
  bool before = false;
  int moves = 0;
  for (CDrawOperation const &operation : curve) {
    bool const inside = PtInRect(inner, {operation.place.left, operation.place.top});
    EXPECT_EQ(operation.kind, before && inside ? Kind::lineTo : Kind::moveTo);
    moves += operation.kind == Kind::moveTo ? 1 : 0;
    before = inside;
  }
  EXPECT_GT(moves, 200);
  EXPECT_LT(moves, 300);
}

TEST(SplinePaint, AnEmptyTableIsAFlatLineInTheMiddle) {
  CSpline table;
  table.MinY(20);
  table.MaxY(60);
  CSplineDialog dialog = Opened(table);
  Operations const curve = DrawnWith(Paint(dialog), 0xFF0000, 2);
  ASSERT_EQ(curve.size(), 500U);
  for (CDrawOperation const &operation : curve)
    EXPECT_EQ(operation.place.top, dialog.Scale().PixelY(40));
  EXPECT_TRUE(Ellipses(Paint(dialog)).empty());
}

TEST(SplinePaint, DrawsHandlesInWhiteAndTheSelectedOneInRed) {
  CSplineDialog dialog = Opened(DistanceTable());
  dialog.OnLButtonDown(CentreOf(dialog.Handles()[1]));
  Operations const operations = Paint(dialog);
  CDrawing expected;
  expected.Pen(0, 1);
  expected.Brush(0xFFFFFF);
  expected.Ellipse(dialog.Handles()[0]);
  expected.Brush(0x0000FF);
  expected.Ellipse(dialog.Handles()[1]);
  expected.Brush(0xFFFFFF);
  expected.Ellipse(dialog.Handles()[2]);
  Operations const &end = expected.Operations();
  ASSERT_GT(operations.size(), end.size());
  EXPECT_TRUE(std::equal(end.rbegin(), end.rend(), operations.rbegin()));
}

TEST(SplinePaint, DoesNotDrawHandlesOutsideTheLimits) {
  CSpline table = DistanceTable();
  table.Add(9, 0);      // right of the plot
  table.Add(4, 101);    // above the margin
  table.Add(5, 99.99);  // just within
  CSplineDialog dialog = Opened(table);
  EXPECT_EQ(dialog.Handles().size(), 6U);
  EXPECT_EQ(Ellipses(Paint(dialog)).size(), 4U);
}

// A pixel is one unit wide and high, so that values at a half lie well within their pixels.
CSpline UnitTable(Pairs const &points) {
  CSpline table = Table(points);
  table.MaxX(500);
  table.MinY(0);
  table.MaxY(328);
  return table;
}

struct EdgeRow {
  double x, y;
  CPoint pixel;
  bool drawn;
};

TEST(SplinePaint, DrawsHandlesUpToEachEdgeOfTheMarginAndNoPixelBeyond) {
  for (EdgeRow const &row : {EdgeRow{0.5, 100.5, {kLeft + 8, kBottom - 108}, true},
                             {-1.5, 100.5, {kLeft + 7, kBottom - 108}, false},
                             {500.5, 100.5, {kRight - 8, kBottom - 108}, true},
                             {501.5, 100.5, {kRight - 7, kBottom - 108}, false},
                             {100.5, 328.5, {kLeft + 108, kTop + 8}, true},
                             {100.5, 329.5, {kLeft + 108, kTop + 7}, false},
                             {100.5, 0.5, {kLeft + 108, kBottom - 8}, true},
                             {100.5, -1.5, {kLeft + 108, kBottom - 7}, false}}) {
    SCOPED_TRACE(testing::Message() << row.x << ", " << row.y);
    CSplineDialog dialog = Opened(UnitTable({{row.x, row.y}}));
    ASSERT_EQ(CentreOf(dialog.Handles()[0]).x, row.pixel.x);
    ASSERT_EQ(CentreOf(dialog.Handles()[0]).y, row.pixel.y);
    EXPECT_EQ(Ellipses(Paint(dialog)).size(), row.drawn ? 1U : 0U);
  }
}

TEST(SplinePaint, DrawsTheCurveUpToTheTopAndBottomOfTheMarginAndNoPixelBeyond) {
  for (EdgeRow const &row : {EdgeRow{0, 328.5, {kLeft + 8, kTop + 8}, true},
                             {0, 329.5, {kLeft + 8, kTop + 7}, false},
                             {0, 0.5, {kLeft + 8, kBottom - 8}, true},
                             {0, -1.5, {kLeft + 8, kBottom - 7}, false}}) {
    SCOPED_TRACE(row.y);
    CSplineDialog dialog = Opened(UnitTable({{0, row.y}, {500, row.y}}));
    Operations const curve = DrawnWith(Paint(dialog), 0xFF0000, 2);
    ASSERT_EQ(curve.size(), 500U);
    EXPECT_EQ(curve[0].place.left, row.pixel.x);
    EXPECT_EQ(curve[0].place.top, row.pixel.y);
    EXPECT_EQ(curve[0].kind, Kind::moveTo);
    for (std::size_t p = 1; p < curve.size(); ++p)
      ASSERT_EQ(curve[p].kind, row.drawn ? Kind::lineTo : Kind::moveTo) << p;
  }
}

TEST(SplinePaint, DrawsAHandleOnTheRightAndBottomEndOfTheMargin) {
  CSpline table = Table({{0, 1}, {1, -1}});
  CSplineDialog dialog = Opened(table);
  ASSERT_EQ(CentreOf(dialog.Handles()[1]).x, kRight - 8);
  ASSERT_EQ(CentreOf(dialog.Handles()[1]).y, kBottom - 8);
  EXPECT_EQ(Ellipses(Paint(dialog)).size(), 2U);
}

TEST(SplinePaint, GoesFromPlotToTicksGridAxesCurveAndHandles) {
  CSplineDialog dialog = Opened(DistanceTable());
  dialog.Press(5000);
  dialog.Press(5010);
  std::vector<std::pair<unsigned long, int>> pens;
  for (CDrawOperation const &operation : Paint(dialog))
    if (operation.kind == Kind::pen) pens.emplace_back(operation.colour, operation.width);
  EXPECT_EQ(pens, (std::vector<std::pair<unsigned long, int>>{
                      {0, 1}, {0x7F7F7F, 1}, {0, 1}, {0x0000FF, 1}, {0xFF0000, 2}, {0, 1}}));
}

TEST(SplinePaint, BuildsTheCurveOfASplineOnceForEachChange) {
  CSpline table = DistanceTable();
  table.TableLinear(false);
  table.MaxX(9);  // so that the list is no reason to build it
  CSplineDialog dialog = Opened(table);
  CSpline const &edited = dialog.Table();
  std::vector<std::function<void()>> const changes{
      [] {},  // the table as it came
      [&] {
        CPoint const from = CentreOf(dialog.Handles()[1]);
        dialog.OnLButtonDown(from);
        dialog.OnMouseMove({from.x + 20, from.y + 30});
        dialog.OnLButtonUp({from.x + 20, from.y + 30});
      },
      [&] {
        dialog.OnLButtonDblClk({300, 100});
      },                                                              // one point more
      [&] { dialog.OnLButtonDblClk(CentreOf(dialog.Handles()[2])); }  // and less
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    Pairs const before = PointsOf(edited);
    changes[i]();
    EXPECT_EQ(PointsOf(edited) != before, i > 0);
    EXPECT_FALSE(CSplineAccess::CurveValid(edited));
    Operations const first = Paint(dialog);
    EXPECT_TRUE(CSplineAccess::CurveValid(edited));
    // A curve that is sampled anew loses a mark on its element 0, which means nothing.
    auto &mark = const_cast<CSplinePoint &>(CSplineAccess::Curve(edited).front());
    mark.y = 4711;
    EXPECT_EQ(Paint(dialog), first);
    EXPECT_EQ(CSplineAccess::Curve(edited).front().y, 4711) << "the second paint samples nothing";
  }
}

TEST(SplinePaint, ThrowsWhatTheCurveThrows) {
  CSpline table = Table({{0, 0}, {1e-7, 0}, {1, 0}});
  table.TableLinear(false);
  CSplineDialog dialog = Opened(table);
  CDrawing drawing;
  EXPECT_THROW(dialog.OnPaint(drawing), std::string);
}

TEST(SplinePaint, KeepsLimitsThatSixDigitsDoNotHold) {
  CSpline table = DistanceTable();
  table.MaxY(1.0F / 3);
  CSplineDialog dialog = Opened(table);
  Paint(dialog);
  dialog.Press(1);
  EXPECT_EQ(dialog.MaxY(), 1.0F / 3);
}

}  // namespace
