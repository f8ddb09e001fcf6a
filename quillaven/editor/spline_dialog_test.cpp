#include <algorithm>
#include <cmath>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/editor/point_dialogs_internal.h>
#include <quillaven/editor/spline_dialog_internal.h>

#include "tests/support/dialog_application.h"
#include "tests/support/spline_tables.h"

namespace {

using Kind = CControl::Kind;

TEST(SplineDialog, HasTheControlsOfItsTemplate) {
  struct Row {
    int id;
    Kind kind;
    char const *text;
    int x, y, width, height;
  };
  std::vector<Row> const rows{{1, Kind::defaultButton, "OK", 305, 183, 33, 14},
                              {2, Kind::button, "Cancel", 343, 183, 34, 14},
                              {1005, Kind::edit, "", 6, 7, 25, 14},
                              {1006, Kind::edit, "", 7, 165, 25, 14},
                              {1007, Kind::edit, "", 37, 183, 25, 14},
                              {1008, Kind::edit, "", 270, 183, 25, 14},
                              {1009, Kind::listBox, "", 305, 7, 72, 173},
                              {5000, Kind::checkBox, "X-value ticks", 137, 183, 57, 10},
                              {5004, Kind::button, "Options...", 64, 183, 40, 14},
                              {5010, Kind::checkBox, "Grid", 106, 183, 29, 10},
                              {5014, Kind::radioButton, "Spline", 196, 183, 35, 10},
                              {5015, Kind::radioButton, "Linear", 233, 183, 35, 10}};
  CSplineDialog const dialog;
  CDialogTemplate const &form = dialog.Template();
  EXPECT_EQ(form.resource, 102);
  EXPECT_EQ(form.title, "Spline tool");
  EXPECT_EQ(form.font, "MS Sans Serif");
  EXPECT_EQ(form.fontPoints, 8);
  EXPECT_EQ(form.width, 387);
  EXPECT_EQ(form.height, 204);
  ASSERT_EQ(form.controls.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    CControl const &control = form.controls[i];
    SCOPED_TRACE(rows[i].id);
    EXPECT_EQ(control.id, rows[i].id);
    EXPECT_EQ(control.kind, rows[i].kind);
    EXPECT_EQ(control.text, rows[i].text);
    EXPECT_EQ(control.place.left, rows[i].x);
    EXPECT_EQ(control.place.top, rows[i].y);
    EXPECT_EQ(control.place.right, rows[i].x + rows[i].width);
    EXPECT_EQ(control.place.bottom, rows[i].y + rows[i].height);
    EXPECT_EQ(control.readOnly, rows[i].id >= 1005 && rows[i].id <= 1008);
    EXPECT_TRUE(control.shown);
  }
}

TEST(SplineDialog, FieldsHaveTheirFirstValues) {
  CSplineDialog const dialog;
  EXPECT_EQ(dialog.Title(), "Spline tool");
  EXPECT_EQ(dialog.MaxX(), 8.0F);
  EXPECT_EQ(dialog.MinX(), 0.0F);
  EXPECT_EQ(dialog.MaxY(), 1.0F);
  EXPECT_EQ(dialog.MinY(), -1.0F);
  EXPECT_EQ(dialog.ShowTicks(), 0);
  EXPECT_EQ(dialog.ShowGrid(), 0);
  EXPECT_TRUE(dialog.Linear());
  EXPECT_FALSE(dialog.Dragging());
  EXPECT_TRUE(dialog.Handles().empty());
  EXPECT_TRUE(dialog.Selected().empty());
  EXPECT_EQ(dialog.Table().GetSize(), 0);
}

TEST(SplineDialog, HasAnIconOf32By32PixelsWithAtMost16Colours) {
  CSplineDialog const dialog;
  CIcon const *icon = dialog.OnQueryDragIcon();
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(icon->width, 32);
  EXPECT_EQ(icon->height, 32);
  ASSERT_EQ(icon->pixels.size(), 32U * 32U);
  std::vector<unsigned long> colours = icon->pixels;
  std::sort(colours.begin(), colours.end());
  colours.erase(std::unique(colours.begin(), colours.end()), colours.end());
  EXPECT_GT(colours.size(), 2U);
  EXPECT_LE(colours.size(), 16U);
}

TEST(SplineDialog, ThePlotLiesBetweenTheFourEditsAndIsTakenOnce) {
  CSplineDialog dialog;
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Plot().left, 2 * 37);
  EXPECT_EQ(dialog.Plot().top, 2 * 7);
  EXPECT_EQ(dialog.Plot().right, 2 * (270 + 25));
  EXPECT_EQ(dialog.Plot().bottom, 2 * (165 + 14));
  dialog.Place(1007, {0, 0, 1, 1});
  dialog.OnCommand(5002);
  EXPECT_EQ(dialog.Plot().left, 2 * 37);
}

TEST(SplineDialog, LeavesTheFirstFocusToTheWindow) {
  CSplineDialog dialog;
  EXPECT_EQ(dialog.OnInitDialog(), 1);
  EXPECT_EQ(dialog.TakeFocusRequest(), -1);
}

TEST(SplineDialog, OpensWithTheLimitsInTheEditsAndTheNameAsTitle) {
  CSpline table = DistanceTable();
  table.Name("decay");
  table.MinX(0.25F);
  table.MinY(-2);
  table.MaxY(3);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Title(), "decay");
  EXPECT_EQ(dialog.Control(1008).text, "8");
  EXPECT_EQ(dialog.Control(1007).text, "0.25");
  EXPECT_EQ(dialog.Control(1005).text, "3");
  EXPECT_EQ(dialog.Control(1006).text, "-2");
}

TEST(SplineDialog, ATableWithoutANameHasAnEmptyTitle) {
  CSplineDialog dialog;
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Title(), "");
}

TEST(SplineDialog, LaysHandlesOfSevenPixelsAroundEachPointEvenOutsideThePlot) {
  CSpline table = DistanceTable();
  table.Add(9, 200);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  ASSERT_EQ(dialog.Handles().size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    CRect const &handle = dialog.Handles()[i];
    int const at = static_cast<int>(i);
    EXPECT_EQ(handle.left, dialog.Scale().PixelX(table.GetXAt(at)) - 7);
    EXPECT_EQ(handle.right, dialog.Scale().PixelX(table.GetXAt(at)) + 7);
    EXPECT_EQ(handle.top, dialog.Scale().PixelY(table.GetYAt(at)) - 7);
    EXPECT_EQ(handle.bottom, dialog.Scale().PixelY(table.GetYAt(at)) + 7);
  }
  EXPECT_GT(dialog.Handles()[3].left, dialog.Plot().right - 8);
  EXPECT_LT(dialog.Handles()[3].bottom, dialog.Plot().top);
}

TEST(SplineDialog, ATableThatEndsAtEightListsThirtyRowsByDistanceAndOffersTheTicks) {
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  std::vector<std::string> const &rows = dialog.Control(1009).rows;
  ASSERT_EQ(rows.size(), 30U);
  EXPECT_EQ(rows[0], "0.00    80");
  EXPECT_EQ(rows[2], "1.41    71");  // 75 - 0.4142 / 7 * 75
  EXPECT_EQ(rows[29], "8.00     0");
  EXPECT_TRUE(dialog.Control(5000).shown);
}

TEST(SplineDialog, AnyOtherEndListsThePointsAndHidesTheTicks) {
  CSpline table = Table({{0, 1.0 / 3}, {1.23456789, -1e9}, {8.5, 0.5}});
  table.MaxX(8.5F);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(1009).rows,
            (std::vector<std::string>{"0  0.333333", "1.23457  -1e+09", "8.5  0.5"}));
  EXPECT_FALSE(dialog.Control(5000).shown);
}

TEST(SplineDialog, AnEndThatIsNotExactlyEightIsAnyOther) {
  for (float const end : {std::nextafter(8.0F, 7.0F), std::nextafter(8.0F, 9.0F)}) {
    CSpline table = DistanceTable();
    table.MaxX(end);
    CSplineDialog dialog;
    dialog.Table(table);
    OpenInPixels(dialog);
    EXPECT_EQ(dialog.Control(1009).rows.size(), 3U);
    EXPECT_FALSE(dialog.Control(5000).shown);
  }
}

TEST(SplineDialog, RowsAreRoundedToFloatsFirst) {
  CSpline table = Table({{0.1234565, 0.1234565}, {2, 0}});
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  // As a double it lies below the half, and the nearest float above.
  EXPECT_EQ(dialog.Control(1009).rows[0], "0.123457  0.123457");
}

// A compact file may bring any double. The highest float has digits that lie a little above it.
TEST(SplineDialog, RowsOfWhatNoFloatHoldsAreInfinite) {
  CSpline table = Table({{0, 3.40282347e38}, {1, -1e300}, {1e300, 0}});
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(1009).rows,
            (std::vector<std::string>{"0  3.40282e+38", "1  -inf", "inf  0"}));
}

void ExpectThePlotIsToBePainted(CSplineDialog &dialog) {
  CRect rectangle;
  ASSERT_TRUE(dialog.TakeInvalidRect(rectangle));
  EXPECT_EQ(rectangle.left, dialog.Plot().left);
  EXPECT_EQ(rectangle.top, dialog.Plot().top);
  EXPECT_EQ(rectangle.right, dialog.Plot().right);
  EXPECT_EQ(rectangle.bottom, dialog.Plot().bottom);
}

TEST(SplineDialog, CommandsOfTheTwoBoxesPaintAnew) {
  for (int const id : {5000, 5010}) {
    CSplineDialog dialog;
    dialog.Table(DistanceTable());
    OpenInPixels(dialog);
    CRect rectangle;
    dialog.TakeInvalidRect(rectangle);
    dialog.Press(id);
    SCOPED_TRACE(id);
    ExpectThePlotIsToBePainted(dialog);
    EXPECT_EQ(dialog.ShowTicks() + dialog.ShowGrid(), 0) << "the paint reads the boxes";
    CDrawing drawing;
    dialog.OnPaint(drawing);
    EXPECT_EQ(id == 5000 ? dialog.ShowTicks() : dialog.ShowGrid(), 1);
  }
}

TEST(SplineDialog, TwoCommandsWithoutAControlRebuildTheList) {
  for (int const id : {5002, 5003}) {
    CSplineDialog dialog;
    dialog.Table(DistanceTable());
    OpenInPixels(dialog);
    dialog.Table(Table({{0, 0}, {2, 1}}));  // ends at 1: by points
    EXPECT_EQ(dialog.Control(1009).rows.size(), 30U);
    dialog.OnCommand(id);
    EXPECT_EQ(dialog.Control(1009).rows, (std::vector<std::string>{"0  0", "2  1"}));
  }
}

TEST(SplineDialog, TheRadioButtonsSwitchTheTableAndClearTheSelection) {
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  std::vector<std::string> const linear = dialog.Control(1009).rows;
  dialog.OnLButtonDown(CentreOf(dialog.Handles()[1]));
  dialog.OnLButtonUp({0, 0});
  EXPECT_THAT(dialog.Selected(), testing::ElementsAre(0, 1, 0));
  CRect rectangle;
  dialog.TakeInvalidRect(rectangle);
  dialog.Press(5014);
  ExpectThePlotIsToBePainted(dialog);
  EXPECT_FALSE(dialog.Linear());
  EXPECT_FALSE(dialog.Table().TableLinear());
  EXPECT_NE(dialog.Control(1009).rows, linear);
  EXPECT_THAT(dialog.Selected(), testing::ElementsAre(0, 0, 0));
  EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
  dialog.Press(5015);
  ExpectThePlotIsToBePainted(dialog);
  EXPECT_TRUE(dialog.Linear());
  EXPECT_TRUE(dialog.Table().TableLinear());
  EXPECT_EQ(dialog.Control(1009).rows, linear);
}

TEST(SplineDialog, ARadioButtonThatIsInForceDoesNothing) {
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  dialog.OnLButtonDown(CentreOf(dialog.Handles()[1]));
  CRect rectangle;
  dialog.TakeInvalidRect(rectangle);
  dialog.Press(5015);
  EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
  EXPECT_THAT(dialog.Selected(), testing::ElementsAre(0, 1, 0));
}

TEST(SplineDialog, ADoubleClickInTheListShowsItsTextAndNothingElse) {
  RecordingApplication application;
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  dialog.OnCommand(1009, 1);
  EXPECT_TRUE(application.boxes.empty());
  dialog.OnCommand(1009, CDialog::kDoubleClicked);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "double click!");
  EXPECT_EQ(application.boxes[0].title, "Quillaven");
  EXPECT_EQ(application.boxes[0].type, 0U);
  EXPECT_EQ(application.boxes[0].helpId, 0U);
  EXPECT_EQ(dialog.Table().GetSize(), 3);
}

TEST(SplineDialog, OptionsSetTheLimitsAndLeaveTheListAndTheTicksBox) {
  DialogApplication application;
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  std::vector<std::string> const rows = dialog.Control(1009).rows;
  dialog.OnLButtonDown(CentreOf(dialog.Handles()[1]));
  application.scripts = {[](CDialog &options) {
    EXPECT_EQ(options.Title(), "Options");
    EXPECT_EQ(options.Control(5005).text, "0");
    EXPECT_EQ(options.Control(5006).text, "8");
    EXPECT_EQ(options.Control(5007).text, "100");
    EXPECT_EQ(options.Control(5008).text, "-10");
    options.Type(5005, "-2");
    options.Type(5006, "8.5");
    options.Type(5007, "200");
    options.Type(5008, "-100");
    options.Press(1);
  }};
  CRect rectangle;
  dialog.TakeInvalidRect(rectangle);
  dialog.Press(5004);
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(dialog.MinX(), -2.0F);
  EXPECT_EQ(dialog.Table().MinX(), -2.0F);
  EXPECT_EQ(dialog.MaxX(), 8.5F);
  EXPECT_EQ(dialog.Table().MaxX(), 8.5F);
  EXPECT_EQ(dialog.MaxY(), 200.0F);
  EXPECT_EQ(dialog.Table().MaxY(), 200.0F);
  EXPECT_EQ(dialog.MinY(), -100.0F);
  EXPECT_EQ(dialog.Table().MinY(), -100.0F);
  EXPECT_EQ(dialog.Control(1007).text, "-2");
  EXPECT_EQ(dialog.Control(1008).text, "8.5");
  EXPECT_EQ(dialog.Control(1005).text, "200");
  EXPECT_EQ(dialog.Control(1006).text, "-100");
  EXPECT_EQ(CentreOf(dialog.Handles()[1]).x, dialog.Scale().PixelX(1));
  EXPECT_THAT(dialog.Selected(), testing::ElementsAre(0, 0, 0));
  EXPECT_TRUE(dialog.TakeInvalidRect(rectangle));
  EXPECT_EQ(dialog.Control(1009).rows, rows);
  EXPECT_TRUE(dialog.Control(5000).shown);
}

TEST(SplineDialog, OptionsThatEndATableAtEightListDistancesLaterAndKeepTheTicksBoxHidden) {
  DialogApplication application;
  CSpline table = DistanceTable();
  table.MaxX(10);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  application.scripts = {[](CDialog &options) {
    options.Type(5006, "8");
    options.Press(1);
  }};
  dialog.Press(5004);
  EXPECT_EQ(dialog.Control(1009).rows.size(), 3U);
  EXPECT_FALSE(dialog.Control(5000).shown);
  dialog.OnLButtonUp({0, 0});  // rebuilds the list
  EXPECT_EQ(dialog.Control(1009).rows.size(), 30U);
  EXPECT_FALSE(dialog.Control(5000).shown);
}

TEST(SplineDialog, OptionsThatAreCancelledChangeNothing) {
  DialogApplication application;
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  application.scripts = {[](CDialog &options) {
    options.Type(5006, "5");
    options.Press(2);
  }};
  CRect rectangle;
  dialog.TakeInvalidRect(rectangle);
  dialog.Press(5004);
  EXPECT_EQ(dialog.MaxX(), 8.0F);
  EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
}

TEST(SplineDialog, EqualLimitsDivideByZeroAndDoNoHarm) {
  DialogApplication application;
  CSplineDialog dialog;
  dialog.Table(DistanceTable());
  OpenInPixels(dialog);
  application.scripts = {[](CDialog &options) {
    options.Type(5006, "0");
    options.Type(5007, "-10");
    options.Press(1);
  }};
  dialog.Press(5004);
  dialog.Press(5000);
  dialog.Press(5010);
  CDrawing drawing;
  dialog.OnPaint(drawing);
  EXPECT_FALSE(drawing.Operations().empty());
  CRect const plot = dialog.Plot();
  for (int y = plot.top; y < plot.bottom; y += 16) {
    for (int x = plot.left; x < plot.right; x += 16) {
      dialog.OnLButtonDown({x, y});
      dialog.OnMouseMove({plot.right - 1, plot.bottom - 1});
      dialog.OnMouseMove({plot.left, plot.top});
      dialog.OnLButtonUp({x, y});
      dialog.OnLButtonDblClk({x, y});
    }
  }
  EXPECT_EQ(dialog.Handles().size(), static_cast<std::size_t>(dialog.Table().GetSize()));
}

TEST(Thinning, DropsPointsWithinAHundredthOfTheRangeAndMakesTheTableLinear) {
  RecordingApplication application;
  CSpline table = Table({{0, 0}, {1, 10}, {2, 21}, {3, 31.5}, {4, 38}, {8, 80}});
  table.MaxX(8);
  table.MinY(0);
  table.MaxY(100);
  table.TableLinear(false);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  CRect rectangle;
  dialog.TakeInvalidRect(rectangle);
  dialog.OnCommand(5011);
  EXPECT_TRUE(dialog.Linear());
  EXPECT_TRUE(dialog.Table().TableLinear());
  // (1, 10) lies half a unit off the line to (2, 21), (2, 21) exactly one off that to (3, 31.5)
  // once (1, 10) is gone: a difference of the tolerance itself stays out.
  EXPECT_EQ(PointsOf(dialog.Table()), (Pairs{{0, 0}, {3, 31.5}, {4, 38}, {8, 80}}));
  EXPECT_EQ(application.waitCursorBegun, 1);
  EXPECT_EQ(application.waitCursorEnded, 1);
  EXPECT_EQ(dialog.Handles().size(), 4U);
  EXPECT_EQ(dialog.Control(1009).rows.size(), 30U);
  EXPECT_TRUE(dialog.TakeInvalidRect(rectangle));
}

// Looks at a tool as the wait cursor comes and goes.
class WaitingApplication : public RecordingApplication {
 public:
  explicit WaitingApplication(CSplineDialog const &tool) : m_tool(tool) {}
  void BeginWaitCursor() override {
    pointsAtBegin = m_tool.Table().GetSize();
    linearAtBegin = m_tool.Table().TableLinear();
  }
  void EndWaitCursor() override {
    pointsAtEnd = m_tool.Table().GetSize();
    handlesAtEnd = m_tool.Handles().size();
    rowsAtEnd = m_tool.Control(1009).rows.size();
  }

  int pointsAtBegin = 0;
  bool linearAtBegin = true;
  int pointsAtEnd = 0;
  std::size_t handlesAtEnd = 0;
  std::size_t rowsAtEnd = 0;

 private:
  CSplineDialog const &m_tool;
};

TEST(Thinning, ShowsTheWaitCursorFromItsBeginningToItsEnd) {
  CSpline table = Table({{0, 0}, {1, 10}, {2, 20}, {9, 90}});
  table.MaxX(9);
  table.TableLinear(false);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  WaitingApplication const application(dialog);
  dialog.OnCommand(5011);
  EXPECT_EQ(application.pointsAtBegin, 4);
  EXPECT_FALSE(application.linearAtBegin);
  EXPECT_EQ(application.pointsAtEnd, 2);
  EXPECT_EQ(application.handlesAtEnd, 2U);
  EXPECT_EQ(application.rowsAtEnd, 2U);
}

TEST(Thinning, GivesATableOnTheZeroLineTwoPointsAtTheThirdsOfTheLimits) {
  RecordingApplication application;
  CSpline table = Table({{1, 0}, {2, 0}, {3, 0}});
  table.MinX(-3);
  table.MaxX(9);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  dialog.OnCommand(5011);
  double const third = 0.33333334F;
  EXPECT_EQ(PointsOf(dialog.Table()), (Pairs{{1, 0}, {3 * third, 0}, {3, 0}, {15 * third, 0}}));
}

TEST(Thinning, LooksAtInnerPointsAloneForTheZeroLine) {
  RecordingApplication application;
  CSpline table = Table({{0, 5}, {8, 7}});  // no inner point has another y
  table.MaxX(8);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  dialog.OnCommand(5011);
  EXPECT_EQ(dialog.Table().GetSize(), 4);
  EXPECT_EQ(dialog.Table().GetYAt(1), 0.0);
  EXPECT_EQ(dialog.Table().GetYAt(2), 0.0);
}

TEST(Thinning, LeavesTwoPointsWhereAnInnerOneHadAHeight) {
  RecordingApplication application;
  for (double const height : {0.001, -1e-300}) {
    CSpline table = Table({{0, 0}, {4, height}, {8, 0}});
    table.MaxX(8);
    CSplineDialog dialog;
    dialog.Table(table);
    OpenInPixels(dialog);
    dialog.OnCommand(5011);
    EXPECT_EQ(PointsOf(dialog.Table()), (Pairs{{0, 0}, {8, 0}})) << height;
  }
}

TEST(Thinning, AddsNothingToATableOfOnePointOrNone) {
  RecordingApplication application;
  for (Pairs const &points : {Pairs{}, Pairs{{3, 0}}}) {
    CSplineDialog dialog;
    dialog.Table(Table(points));
    OpenInPixels(dialog);
    dialog.OnCommand(5011);
    EXPECT_EQ(PointsOf(dialog.Table()), points);
  }
}

// A hundredth as a float is a little less than one as a double.
TEST(Thinning, RoundsItsToleranceToAFloat) {
  RecordingApplication application;
  double const between = 0.0099999999;
  ASSERT_LT(0.01F, between);
  CSpline table = Table({{0, 0}, {4, between}, {8, 0}});
  table.MinY(0);
  table.MaxY(1);
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  dialog.OnCommand(5011);
  EXPECT_EQ(dialog.Table().GetSize(), 3);
}

TEST(Thinning, ToleratesATwistedRange) {
  RecordingApplication application;
  CSpline table = DistanceTable();
  table.MinY(100);
  table.MaxY(-100);  // a tolerance below zero keeps every point
  CSplineDialog dialog;
  dialog.Table(table);
  OpenInPixels(dialog);
  dialog.OnCommand(5011);
  EXPECT_EQ(dialog.Table().GetSize(), 3);
}

TEST(DoModal, GivesTheTableBackOnOkWithAllItsFields) {
  DialogApplication application;
  CSpline table = DistanceTable();
  table.Name("decay");
  table.XLabel("distance");
  table.YLabel("weight");
  application.scripts = {[](CDialog &dialog) {
                           auto &tool = dynamic_cast<CSplineDialog &>(dialog);
                           tool.Press(5014);
                           tool.OnLButtonDblClk({tool.Scale().PixelX(4), tool.Plot().top + 20});
                           tool.Press(5004);
                           CDrawing drawing;
                           tool.OnPaint(drawing);
                           tool.Press(1);
                         },
                         [](CDialog &options) {
                           options.Type(5005, "-1");
                           options.Type(5006, "9");
                           options.Type(5007, "250");
                           options.Type(5008, "-20");
                           options.Press(1);
                         }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(table.GetSize(), 4);
  EXPECT_FALSE(table.TableLinear());
  EXPECT_EQ(table.MinX(), -1.0F);
  EXPECT_EQ(table.MaxX(), 9.0F);
  EXPECT_EQ(table.MaxY(), 250.0F);
  EXPECT_EQ(table.MinY(), -20.0F);
  EXPECT_STREQ(table.Name(), "decay");
  EXPECT_STREQ(table.XLabel(), "distance");
  EXPECT_STREQ(table.YLabel(), "weight");
  EXPECT_TRUE(CSplineAccess::CurveValid(table)) << "the curve comes along with its flag";
}

TEST(DoModal, CancelLeavesTheTableWhateverWasEdited) {
  DialogApplication application;
  CSpline table = DistanceTable();
  application.scripts = {[](CDialog &dialog) {
    auto &tool = dynamic_cast<CSplineDialog &>(dialog);
    tool.Press(5014);
    tool.OnLButtonDblClk({tool.Scale().PixelX(4), tool.Plot().top + 20});
    EXPECT_EQ(tool.Table().GetSize(), 4);
    tool.Press(2);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(PointsOf(table), PointsOf(DistanceTable()));
  EXPECT_TRUE(table.TableLinear());
}

// Ends each dialog with a result of its own.
class OtherResultApplication : public DialogApplication {
 public:
  unsigned int RunModal(CDialog &dialog) override {
    DialogApplication::RunModal(dialog);
    return 3;
  }
};

TEST(DoModal, AnyOtherResultLeavesTheTableAsCancelDoes) {
  OtherResultApplication application;
  CSpline table = DistanceTable();
  application.scripts = {[](CDialog &dialog) {
    dialog.Press(5014);
    dialog.Press(1);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 3U);
  EXPECT_EQ(application.opened, 1U);
  EXPECT_TRUE(table.TableLinear());
}

TEST(DoModal, ASplineThatCannotBeBuiltClosesTheDialogAsCancelled) {
  DialogApplication application;
  CSpline table = Table({{0, 0}, {1e-7, 0}, {1, 0}});  // two points at one place of the curve
  std::string thrown;
  application.scripts = {[&](CDialog &dialog) {
    dialog.Press(5014);
    CDrawing drawing;
    try {
      dialog.OnPaint(drawing);
    } catch (std::string const &text) {
      thrown = text;
      throw;
    }
    dialog.Press(1);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(thrown, "spline only for n >= 3 points");
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(table.GetSize(), 3);
}

// Two points at one place of the curve, in a table that is listed by the values of its curve.
CSpline BrokenDistanceTable(bool linear) {
  CSpline table = Table({{0, 0}, {1e-7, 0}, {8, 0}});
  table.MaxX(8);
  table.TableLinear(linear);
  return table;
}

TEST(DoModal, AListThatCannotBeBuiltClosesTheDialogWhileItOpens) {
  CSplineDialog dialog;
  dialog.Table(BrokenDistanceTable(false));
  EXPECT_THROW(dialog.OnInitDialog(), std::string);

  DialogApplication application;
  CSpline table = BrokenDistanceTable(false);
  application.scripts = {[](CDialog &opened) { opened.Press(1); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(application.scripts.size(), 1U) << "the user never sees it";
  EXPECT_EQ(PointsOf(table), PointsOf(BrokenDistanceTable(false)));
  EXPECT_FALSE(table.TableLinear());
}

TEST(DoModal, AListThatCannotBeBuiltForASplineClosesTheDialogAsCancelled) {
  DialogApplication application;
  CSpline table = BrokenDistanceTable(true);
  std::string thrown;
  application.scripts = {[&](CDialog &dialog) {
    try {
      dialog.Press(5014);
    } catch (std::string const &text) {
      thrown = text;
      throw;
    }
    dialog.Press(1);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(thrown, "spline only for n >= 3 points");
  EXPECT_EQ(PointsOf(table), PointsOf(BrokenDistanceTable(true)));
  EXPECT_TRUE(table.TableLinear());
}

TEST(DoModal, SwallowsAnythingThatIsThrown) {
  DialogApplication application;
  CSpline table = DistanceTable();
  application.scripts = {[](CDialog & /*dialog*/) { throw 7; }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  application.scripts = {[](CDialog & /*dialog*/) { throw std::bad_alloc(); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(PointsOf(table), PointsOf(DistanceTable()));
}

}  // namespace
