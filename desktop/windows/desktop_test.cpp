// The spline tool and its dialogs in dialog boxes of the system, worked by its messages.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/editor/dialog.h>
#include <quillaven/editor/dialog_template_internal.h>
#include <quillaven/editor/plot_scale_internal.h>
#include <quillaven/functions/spline.h>

#include "desktop/windows/dialog_form.h"
#include "desktop/windows/window_driver.h"
#include "tests/support/bare_dialog.h"
#include "tests/support/graphics_objects.h"
#include "tests/support/spline_tables.h"

namespace {

constexpr int kOk = 1;
constexpr int kCancel = 2;
constexpr int kMaxY = 1005;
constexpr int kMinY = 1006;
constexpr int kMinX = 1007;
constexpr int kMaxX = 1008;
constexpr int kList = 1009;
constexpr int kTicks = 5000;
constexpr int kOptions = 5004;
constexpr int kGrid = 5010;
constexpr int kSpline = 5014;
constexpr int kLinear = 5015;
constexpr int kPointX = 5016;
constexpr int kPointY = 5017;
constexpr int kNote = 5018;

constexpr unsigned long kBlack = 0x000000;
constexpr unsigned long kRed = 0x0000FF;
constexpr unsigned long kBlue = 0xFF0000;
constexpr unsigned long kGrey = 0x7F7F7F;

class Desktop : public testing::Test {
 protected:
  Desktop() { EXPECT_TRUE(application.HasDisplay()); }
  DrivenApplication application;
  WindowDriver driver;
};

// Where a value of a table lies in the dialog, by the mapping of the model and the real controls.
struct Places {
  explicit Places(WindowDriver const &driver, PlotLimits limits = {0, 8, -10, 100})
      : scale{{driver.PlaceOf(kMinX).left, driver.PlaceOf(kMaxY).top, driver.PlaceOf(kMaxX).right,
               driver.PlaceOf(kMinY).bottom},
              limits} {}
  POINT At(double x, double y) const { return {scale.PixelX(x), scale.PixelY(y)}; }

  PlotScale scale;
};

// A place and size in dialog units, each in pixels, as the system lays out controls.
RECT InPixels(HWND dialog, int x, int y, int width, int height) {
  RECT place{x, y, 0, 0};
  RECT size{0, 0, width, height};
  ::MapDialogRect(dialog, &place);
  ::MapDialogRect(dialog, &size);
  return {place.left, place.top, place.left + size.right, place.top + size.bottom};
}

// The width of a label's text in its font.
int WidthOf(HWND label) {
  char text[100] = "";
  int const length = ::GetWindowTextA(label, text, sizeof text);
  HDC const context = ::GetDC(label);
  ::SelectObject(context, reinterpret_cast<HFONT>(::SendMessageA(label, WM_GETFONT, 0, 0)));
  SIZE size{};
  ::GetTextExtentPoint32A(context, text, length, &size);
  ::ReleaseDC(label, context);
  return size.cx;
}

bool operator==(RECT const &a, RECT const &b) {
  return ::EqualRect(&a, &b) != 0;
}

// ---- The tool ------------------------------------------------------------------------------------

TEST_F(Desktop, TheToolIsLaidOutByItsResourceAndItsControlsAreFilled) {
  CSpline table = DistanceTable();
  table.Name("distance decay");
  driver.scripts = {[](WindowDriver &d) {
    EXPECT_EQ(d.Title(), "distance decay");
    RECT client{};
    ::GetClientRect(d.Window(), &client);
    EXPECT_TRUE(client == InPixels(d.Window(), 0, 0, 387, 204));
    EXPECT_TRUE(d.PlaceOf(kList) == InPixels(d.Window(), 305, 7, 72, 173));
    EXPECT_TRUE(d.PlaceOf(kGrid) == InPixels(d.Window(), 106, 183, 29, 10));
    EXPECT_EQ(d.TextOf(kMaxY), "100");
    EXPECT_EQ(d.TextOf(kMinY), "-10");
    EXPECT_EQ(d.TextOf(kMinX), "0");
    EXPECT_EQ(d.TextOf(kMaxX), "8");
    EXPECT_TRUE(d.HasStyle(kMaxY, ES_READONLY));
    ASSERT_EQ(d.RowsOf(kList).size(), 30U);
    EXPECT_EQ(d.RowsOf(kList)[0], "0.00    80");
    EXPECT_TRUE(d.IsChecked(kLinear));
    EXPECT_FALSE(d.IsChecked(kSpline));
    EXPECT_TRUE(d.IsShown(kTicks));
    EXPECT_EQ(::GetFocus(), d.Control(kOk));
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, TheToolHasTheIconOfTheDialogLargeAndSmall) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    LRESULT const large = ::SendMessageA(d.Window(), WM_GETICON, ICON_BIG, 0);
    EXPECT_NE(large, 0);
    EXPECT_NE(::SendMessageA(d.Window(), WM_GETICON, ICON_SMALL, 0), 0);
    EXPECT_EQ(::SendMessageA(d.Window(), WM_QUERYDRAGICON, 0, 0), large);
    EXPECT_NE(::GetWindowLongPtrA(d.Window(), GWL_STYLE) & WS_MINIMIZEBOX, 0);
    d.Click(kCancel);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ADragMovesAPointAndOkGivesTheTableBack) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    std::vector<std::string> const before = d.RowsOf(kList);
    d.Drag(places.At(1, 75), places.At(3, 40));
    EXPECT_NE(d.RowsOf(kList), before);
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  ASSERT_EQ(table.GetSize(), 3);
  EXPECT_NEAR(table.GetXAt(1), 3, 0.05);
  EXPECT_NEAR(table.GetYAt(1), 40, 1);
}

TEST_F(Desktop, TheMouseBelongsToTheToolWhileAPointIsDragged) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    POINT const from = places.At(1, 75);
    d.Mouse(WM_LBUTTONDOWN, from);
    EXPECT_EQ(::GetCapture(), d.Window());
    d.Mouse(WM_MOUSEMOVE, {-20, -20});  // outside the window: nothing moves
    d.Mouse(WM_MOUSEMOVE, {from.x, from.y + 30});
    d.Mouse(WM_LBUTTONUP, {from.x, from.y + 30});
    EXPECT_EQ(::GetCapture(), nullptr);
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(table.GetXAt(1), 1.0);
  EXPECT_LT(table.GetYAt(1), 75.0);
}

TEST_F(Desktop, ADragEndsWhenAnotherWindowTakesTheMouse) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.Mouse(WM_LBUTTONDOWN, places.At(1, 75));
    ::SetCapture(d.Control(kList));
    d.Mouse(WM_MOUSEMOVE, places.At(3, 40));
    EXPECT_EQ(::GetCapture(), d.Control(kList));
    ::ReleaseCapture();
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), PointsOf(DistanceTable()));
}

TEST_F(Desktop, CancelLeavesTheTable) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.Drag(places.At(1, 75), places.At(3, 40));
    d.Click(kCancel);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(PointsOf(table), PointsOf(DistanceTable()));
}

TEST_F(Desktop, DoubleClicksAddAndRemovePoints) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.DoubleClick(places.At(5, 90));
    d.DoubleClick(places.At(6, 20));
    d.DoubleClick(places.At(1, 75));  // removed
    d.DoubleClick(places.At(8, 0));   // the last stays
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  ASSERT_EQ(table.GetSize(), 4);
  EXPECT_NEAR(table.GetXAt(1), 5, 0.03);
  EXPECT_NEAR(table.GetYAt(1), 90, 1);
  EXPECT_NEAR(table.GetXAt(2), 6, 0.03);
}

TEST_F(Desktop, ARightClickOpensTheValuesOfAPoint) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
                      Places const places(d);
                      d.RightClick(places.At(1, 75));
                      d.Click(kOk);
                    },
                    [](WindowDriver &d) {
                      EXPECT_EQ(d.Title(), "Edit point");
                      EXPECT_EQ(d.TextOf(kPointX), "1");
                      EXPECT_EQ(d.TextOf(kPointY), "75");
                      EXPECT_TRUE(d.TextOf(kNote).starts_with("N.B.: X between 0.0"));
                      EXPECT_EQ(::GetFocus(), d.Control(kPointX));
                      d.Write(kPointX, "9");
                      d.Key(VK_RETURN);  // refused in a box
                      EXPECT_EQ(::GetFocus(), d.Control(kPointX));
                      EXPECT_EQ(d.TextOf(kPointX), "9");
                      d.Write(kPointX, "abc");
                      d.Key(VK_RETURN);  // refused in a box
                      EXPECT_EQ(d.TextOf(kPointX), "abc");
                      d.Write(kPointX, "2.5");
                      d.Write(kPointY, "-5");
                      for (SeenBox const &box : d.boxes) EXPECT_EQ(box.owner, d.Window());
                      d.Key(VK_RETURN);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 80}, {2.5, -5}, {8, 0}}));
  ASSERT_EQ(driver.boxes.size(), 2U);
  EXPECT_TRUE(driver.boxes[0].text.starts_with("N.B.: X between 0.0"));
  EXPECT_EQ(driver.boxes[1].text, "Please enter a number.");
  EXPECT_TRUE(driver.boxes[1].hasIcon);
}

TEST_F(Desktop, TheXOfTheFirstPointCannotBeTyped) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
                      d.RightClick(Places(d).At(0, 80));
                      d.Click(kOk);
                    },
                    [](WindowDriver &d) {
                      EXPECT_TRUE(d.HasStyle(kPointX, ES_READONLY));
                      EXPECT_EQ(d.TextOf(kNote), "");
                      d.Write(kPointX, "3");
                      EXPECT_EQ(d.TextOf(kPointX), "0");
                      d.Write(kPointY, "60");
                      d.Click(kOk);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 60}, {1, 75}, {8, 0}}));
}

TEST_F(Desktop, OptionsSetTheLimits) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
                      HWND const tool = d.Window();
                      d.Click(kOptions);
                      EXPECT_EQ(d.Window(), tool);
                      EXPECT_TRUE(::IsWindowEnabled(tool));
                      EXPECT_EQ(d.TextOf(kMaxY), "120");
                      EXPECT_EQ(d.TextOf(kMaxX), "8.5");
                      d.Click(kOk);
                    },
                    [](WindowDriver &d) {
                      HWND const tool = ::GetWindow(d.Window(), GW_OWNER);
                      EXPECT_FALSE(::IsWindowEnabled(tool)) << "it waits for the dialog above it";
                      EXPECT_EQ(d.Title(), "Options");
                      EXPECT_EQ(d.TextOf(5006), "8");
                      EXPECT_EQ(::GetWindowLongPtrA(d.Window(), GWL_STYLE) & WS_MINIMIZEBOX, 0);
                      d.Write(5007, "120");
                      d.Write(5006, "8.5");
                      d.Click(kOk);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(table.MaxY(), 120.0F);
  EXPECT_EQ(table.MaxX(), 8.5F);
}

// The system's fonts differ from machine to machine.
TEST_F(Desktop, LabelsHaveRoomForTheirTexts) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
                      d.Click(kOptions);
                      d.Click(kCancel);
                    },
                    [](WindowDriver &d) {
                      int labels = 0;
                      for (HWND control = ::GetWindow(d.Window(), GW_CHILD); control != nullptr;
                           control = ::GetWindow(control, GW_HWNDNEXT)) {
                        if (::GetDlgCtrlID(control) != -1) continue;
                        ++labels;
                        RECT client{};
                        ::GetClientRect(control, &client);
                        EXPECT_GE(client.right, WidthOf(control));
                      }
                      EXPECT_EQ(labels, 4);
                      d.Click(kCancel);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, TheTicksAreHiddenForATableThatEndsElsewhere) {
  CSpline table = DistanceTable();
  table.MaxX(8.5F);
  driver.scripts = {[](WindowDriver &d) {
    EXPECT_FALSE(d.IsShown(kTicks));
    EXPECT_EQ(d.RowsOf(kList).size(), 3U);
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ADoubleClickInTheListShowsABoxOverTheTool) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    ::SendMessageA(d.Control(kList), WM_LBUTTONDOWN, 0, MAKELPARAM(20, 20));
    ::SendMessageA(d.Control(kList), WM_LBUTTONUP, 0, MAKELPARAM(20, 20));
    ::SendMessageA(d.Control(kList), WM_LBUTTONDBLCLK, 0, MAKELPARAM(20, 20));
    ASSERT_EQ(d.boxes.size(), 1U);
    EXPECT_EQ(d.boxes[0].text, "double click!");
    EXPECT_EQ(d.boxes[0].owner, d.Window());
    EXPECT_FALSE(d.boxes[0].hasIcon);
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

// An owner may send what no button of the tool sends.
TEST_F(Desktop, CommandsWithoutAControlReachTheDialog) {
  CSpline table = Table({{0, 0}, {2, 2}, {4, 4}, {8, 8}});
  table.MaxX(8);
  table.MinY(0);
  table.MaxY(8);
  driver.scripts = {[](WindowDriver &d) {
    constexpr WPARAM kThin = 5011;
    ::SendMessageA(d.Window(), WM_COMMAND, kThin, 0);
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 0}, {8, 8}}));
}

// ---- Keys and ends -------------------------------------------------------------------------------

TEST_F(Desktop, ReturnPressesOkAndOnCancelCancels) {
  for (int const button : {kOk, kCancel}) {
    CSpline table = DistanceTable();
    driver.scripts = {[button](WindowDriver &d) {
      d.Focus(button);
      d.Key(VK_RETURN);
    }};
    EXPECT_EQ(CSpline::DoModal(table), static_cast<unsigned int>(button));
  }
}

// The focus may press a radio button: the tab key must not turn the table into a spline.
TEST_F(Desktop, TheTabKeyStopsAtTheRadioButtonThatIsPressed) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    d.Focus(kGrid);
    d.Key(VK_TAB);
    EXPECT_EQ(::GetFocus(), d.Control(kLinear));
    EXPECT_TRUE(d.IsChecked(kLinear));
    d.Click(kSpline);
    d.Settle();
    d.Focus(kGrid);
    d.Key(VK_TAB);
    EXPECT_EQ(::GetFocus(), d.Control(kSpline));
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ClosingTheWindowCancels) {
  CSpline table = DistanceTable();
  driver.scripts = {
      [](WindowDriver &d) { ::SendMessageA(d.Window(), WM_SYSCOMMAND, SC_CLOSE, 0); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ASplineThatCannotBeBuiltClosesTheTool) {
  CSpline table = Table({{0, 0}, {1e-7, 0}, {1, 0}});
  driver.scripts = {[](WindowDriver &d) { d.Click(kSpline); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_TRUE(table.TableLinear());
}

// ---- Pictures ------------------------------------------------------------------------------------

TEST_F(Desktop, SplineGridAndTicksShowInThePicture) {
  CSpline table = DistanceTable();
  table.Name("distance decay");
  table.Add(2.5, 30);
  table.Add(4, 55);
  driver.scripts = {[](WindowDriver &d) {
    Picture const plain = d.Paint();
    EXPECT_EQ(plain.At(1, 1), ::GetSysColor(COLOR_BTNFACE)) << "beside the plot";
    EXPECT_GT(plain.CountOf(kBlue), 200);
    EXPECT_GT(plain.CountOf(kRed), 400) << "two axes";
    EXPECT_LT(plain.CountOf(kGrey), 300);
    d.Click(kSpline);
    d.Click(kGrid);
    d.Click(kTicks);
    EXPECT_TRUE(d.IsChecked(kGrid));
    Places const places(d);
    d.Mouse(WM_LBUTTONDOWN, places.At(4, 55));
    EXPECT_TRUE(d.IsChecked(kSpline));
    EXPECT_FALSE(d.IsChecked(kLinear));
    Picture const full = d.Paint();
    d.Mouse(WM_LBUTTONUP, places.At(4, 55));
    EXPECT_GT(full.CountOf(kBlue), 200);
    EXPECT_GT(full.CountOf(kGrey), 20 * 200) << "a tick at each distance";
    EXPECT_GT(full.CountOf(kBlack), plain.CountOf(kBlack) + 1000) << "the grid";
    EXPECT_GT(full.CountOf(kRed), plain.CountOf(kRed) - 60 + 100) << "a selected handle";
    POINT const handle = places.At(4, 55);
    EXPECT_EQ(full.At(handle.x, handle.y), kRed);
    d.Click(kOk);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_FALSE(table.TableLinear());
}

TEST_F(Desktop, APaintLeavesNoObjectsOfTheSystemBehind) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    d.Paint();
    DWORD const before = GraphicsObjects();
    for (int i = 0; i < 100; ++i) {
      ::InvalidateRect(d.Window(), nullptr, FALSE);
      ::UpdateWindow(d.Window());
    }
    EXPECT_LT(GraphicsObjects(), before + 50);
    d.Click(kCancel);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, DialogsLeaveNoObjectsOfTheSystemBehind) {
  auto const open = [this] {
    CSpline table = DistanceTable();
    driver.scripts = {[](WindowDriver &d) { d.Click(kCancel); }};
    CSpline::DoModal(table);
  };
  open();
  DWORD const graphics = GraphicsObjects();
  for (int i = 0; i < 60; ++i) open();
  EXPECT_LT(GraphicsObjects(), graphics + 50);
}

TEST_F(Desktop, ADragOfOneOf30PointsOfASplineRepaintsSmoothly) {
  CSpline table = SplineOf30Points();
  driver.scripts = {[](WindowDriver &d) {
    POINT const from = Places(d, {0, 8, 0, 100}).At(CSpline::Root(9), 60);
    d.Mouse(WM_LBUTTONDOWN, from);
    constexpr int kMoves = 200;
    int paints = 0;
    auto const start = std::chrono::steady_clock::now();
    for (int i = 1; i <= kMoves; ++i) {
      ::SendMessageA(d.Window(), WM_MOUSEMOVE, 0, MAKELPARAM(from.x, from.y + i % 80 - 40));
      if (::GetUpdateRect(d.Window(), nullptr, FALSE)) ++paints;
      ::UpdateWindow(d.Window());
    }
    std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(paints, kMoves);
    EXPECT_GT(paints / seconds.count(), 30);
    d.Mouse(WM_LBUTTONUP, from);
    d.Click(kCancel);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, AMinimisedToolShowsItsIconAlone) {
  CSpline table = DistanceTable();
  driver.scripts = {[](WindowDriver &d) {
    RECT client{};
    ::GetClientRect(d.Window(), &client);
    LPARAM const size = MAKELPARAM(client.right, client.bottom);
    ::SendMessageA(d.Window(), WM_SIZE, SIZE_MINIMIZED, size);
    Picture const icon = d.Paint();
    EXPECT_EQ(icon.CountOf(kBlack), 0) << "no frame of the plot";
    EXPECT_EQ(icon.CountOf(0x404040), 4 * 28 - 4 + 3 * 12) << "the icon's grey";
    EXPECT_EQ(icon.At(client.right / 2 - 16 + 7, client.bottom / 2 - 16 + 5), 0x8080FFU);
    ::SendMessageA(d.Window(), WM_SIZE, SIZE_RESTORED, size);
    EXPECT_GT(d.Paint().CountOf(kBlue), 200);
    d.Click(kCancel);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

// ---- Dialogs of a program ------------------------------------------------------------------------

TEST_F(Desktop, ADialogWithoutButtonsClosesByKeysAndByItsBox) {
  std::vector<std::pair<WindowDriver::Script, unsigned int>> const ways = {
      {[](WindowDriver &d) { ::SendMessageA(d.Window(), WM_CLOSE, 0, 0); }, 2U},
      {[](WindowDriver &d) { d.Key(VK_ESCAPE); }, 2U},
      {[](WindowDriver &d) { d.Key(VK_RETURN); }, 1U}};
  for (auto const &[way, result] : ways) {
    CBareDialog dialog;
    driver.scripts = {way};
    EXPECT_EQ(dialog.DoModal(), result);
  }
}

TEST_F(Desktop, ALineGoesOnWithAnotherPen) {
  CBareDialog dialog;
  driver.scripts = {[](WindowDriver &d) {
    Picture const picture = d.Paint();
    EXPECT_EQ(picture.At(50, 20), kRed);
    EXPECT_EQ(picture.At(100, 50), kBlue);
    ::SendMessageA(d.Window(), WM_CLOSE, 0, 0);
  }};
  EXPECT_EQ(dialog.DoModal(), 2U);
}

// One control of each kind, all by its own template. It writes down what it is told.
class CFullDialog : public CDialog {
 public:
  explicit CFullDialog(int resource = 0) : CDialog(Form(resource)) {}
  int OnInitDialog() override {
    CDialog::OnInitDialog();
    Changed(4).rows = {"first", "second"};
    return 1;
  }
  void OnCommand(int id, int notification) override {
    commands.emplace_back(id, notification);
    if (id == 10) Changed(9).text = "a new label";
    if (id == 11) throw std::string("it went wrong");
    if (id == 5) Changed(6).shown = !Control(5).checked;
    if (id == 7 || id == 8) {
      Changed(7).checked = id == 7;
      Changed(8).checked = id == 8;
    }
    CDialog::OnCommand(id, notification);
  }
  std::vector<std::pair<int, int>> commands;

 private:
  static CDialogTemplate Form(int resource) {
    using Kind = CControl::Kind;
    CDialogTemplate form;
    form.resource = resource;
    form.title = "Gr\xFC\xDF";  // one byte a letter
    form.width = 150;
    form.height = 120;
    form.controls = {Item(Kind::defaultButton, 1, "OK", 5, 100, 40, 14),
                     Item(Kind::edit, 3, "first text", 5, 5, 60, 14),
                     Item(Kind::listBox, 4, "", 5, 25, 60, 35),
                     Item(Kind::checkBox, 5, "Box", 5, 65, 60, 10),
                     Item(Kind::button, 6, "Hidden later", 50, 100, 50, 14),
                     Item(Kind::radioButton, 7, "One", 80, 5, 50, 10),
                     Item(Kind::radioButton, 8, "Two", 80, 18, 50, 10),
                     Item(Kind::text, 9, "a label", 80, 40, 60, 8),
                     Item(Kind::button, 10, "Label", 80, 55, 50, 14),
                     Item(Kind::button, 11, "Throw", 80, 75, 50, 14)};
    return form;
  }
};

TEST_F(Desktop, ADialogOfAProgramIsBuiltFromItsTemplate) {
  CFullDialog dialog;
  driver.scripts = {[&dialog](WindowDriver &d) {
    EXPECT_EQ(d.Title(), "Gr\xFC\xDF");
    EXPECT_TRUE(d.PlaceOf(4) == InPixels(d.Window(), 5, 25, 60, 35));
    EXPECT_EQ(d.RowsOf(4), (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(::GetFocus(), d.Control(3)) << "the first edit";
    d.Write(3, "typed");
    EXPECT_EQ(dialog.Control(3).text, "typed");
    d.Click(5);
    EXPECT_TRUE(dialog.Control(5).checked);
    EXPECT_TRUE(d.IsChecked(5));
    EXPECT_FALSE(d.IsShown(6));
    d.Click(5);
    EXPECT_FALSE(d.IsChecked(5));
    EXPECT_TRUE(d.IsShown(6));
    d.Click(8);
    EXPECT_TRUE(d.IsChecked(8));
    EXPECT_FALSE(d.IsChecked(7));
    d.Click(10);
    EXPECT_EQ(d.TextOf(9), "a new label");
    d.Key(VK_RETURN);
  }};
  EXPECT_EQ(dialog.DoModal(), 1U);
  std::vector<std::pair<int, int>> const expected = {{5, 0}, {5, 0}, {8, 0}, {10, 0}, {1, 0}};
  EXPECT_EQ(dialog.commands, expected);
}

// 102 is the spline tool among the library's resources.
TEST_F(Desktop, ADialogOfAProgramWithTheNumberOfOneOfTheLibraryIsBuiltFromItsTemplate) {
  CFullDialog dialog(102);
  driver.scripts = {[&dialog](WindowDriver &d) {
    EXPECT_TRUE(d.PlaceOf(4) == InPixels(d.Window(), 5, 25, 60, 35));
    d.Write(3, "typed");
    EXPECT_EQ(dialog.Control(3).text, "typed");
    EXPECT_EQ(::GetDlgItem(d.Window(), kTicks), nullptr);
    d.Key(VK_RETURN);
  }};
  EXPECT_EQ(dialog.DoModal(), 1U);
}

TEST_F(Desktop, TheArrowKeysGoFromRadioButtonToRadioButton) {
  CFullDialog dialog;
  driver.scripts = {[](WindowDriver &d) {
    d.Click(7);
    d.Focus(7);
    d.Key(VK_DOWN);
    EXPECT_EQ(::GetFocus(), d.Control(8));
    d.Key(VK_SPACE);
    EXPECT_TRUE(d.IsChecked(8));
    EXPECT_FALSE(d.IsChecked(7));
    d.Key(VK_DOWN);
    EXPECT_EQ(::GetFocus(), d.Control(7)) << "they are one group";
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(dialog.DoModal(), 2U);
}

TEST_F(Desktop, WhatADialogThrowsClosesItAndIsThrownOn) {
  CFullDialog dialog;
  driver.scripts = {[](WindowDriver &d) { d.Click(11); }};
  EXPECT_THROW(dialog.DoModal(), std::string);
}

// The dialog below closes, too.
class COuterDialog : public CFullDialog {
 public:
  void OnCommand(int id, int notification) override {
    if (id == 6) CFullDialog().DoModal();
    CFullDialog::OnCommand(id, notification);
  }
};

TEST_F(Desktop, WhatADialogAboveAnotherThrowsClosesBoth) {
  COuterDialog dialog;
  driver.scripts = {[](WindowDriver &d) { d.Click(6); }, [](WindowDriver &d) { d.Click(11); }};
  EXPECT_THROW(dialog.DoModal(), std::string);
}

class CFailingDialog : public CBareDialog {
 public:
  int OnInitDialog() override { throw 1; }
};

TEST_F(Desktop, ADialogThatFailsToOpenIsNeverShown) {
  CFailingDialog dialog;
  EXPECT_THROW(dialog.DoModal(), int);
}

// Templates are what a program makes them.
TEST_F(Desktop, ATemplateOfFarPlacesAndOddPicturesDoesNoHarm) {
  class COddDialog : public CDialog {
   public:
    COddDialog() : CDialog(Form()) {}
    CIcon const *OnQueryDragIcon() const override {
      static CIcon const icon{1000, 1000, {1, 2, 3}};  // pixels are missing
      return &icon;
    }

   private:
    static CDialogTemplate Form() {
      CDialogTemplate form;
      form.width = 100;
      form.height = 100;
      form.controls = {
          Item(CControl::Kind::text, -1, "far", 1000000, -1000000, 1000000, 3000000),
          Item(CControl::Kind::text, -1, std::string(70000, 'x').c_str(), 0, 0, 10, 10)};
      return form;
    }
  };
  COddDialog dialog;
  driver.scripts = {[](WindowDriver &d) {
    d.Paint();
    d.Key(VK_ESCAPE);
  }};
  EXPECT_EQ(dialog.DoModal(), 2U);
}

// ---- The application -----------------------------------------------------------------------------

TEST_F(Desktop, BoxesHaveTheTextTitleAndSignOfTheLibrary) {
  for (unsigned int const type : {0U, 16U, 48U})
    EXPECT_EQ(application.DoMessageBox("It is so.", "Title", type, 0), 1);
  ASSERT_EQ(driver.boxes.size(), 3U);
  for (SeenBox const &box : driver.boxes) {
    EXPECT_EQ(box.text, "It is so.");
    EXPECT_EQ(box.title, "Title");
  }
  EXPECT_FALSE(driver.boxes[0].hasIcon);
  EXPECT_TRUE(driver.boxes[1].hasIcon);
  EXPECT_TRUE(driver.boxes[2].hasIcon);
}

TEST_F(Desktop, BoxesAreOwnedByTheWindowOfTheProgram) {
  HWND const own = ::CreateWindowA("Static", "program", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200,
                                   100, nullptr, nullptr, nullptr, nullptr);
  ::SetActiveWindow(own);
  application.DoMessageBox("It is so.", "Title", 0, 0);
  ::DestroyWindow(own);
  ASSERT_EQ(driver.boxes.size(), 1U);
  EXPECT_EQ(driver.boxes[0].owner, own);
}

TEST_F(Desktop, WaitCursorsCount) {
  HCURSOR const before = ::SetCursor(::LoadCursorA(nullptr, IDC_ARROW));
  HCURSOR const arrow = ::GetCursor();
  HCURSOR const wait = ::LoadCursorA(nullptr, IDC_WAIT);
  application.EndWaitCursor();
  EXPECT_EQ(::GetCursor(), arrow);
  application.BeginWaitCursor();
  application.BeginWaitCursor();
  application.EndWaitCursor();
  EXPECT_EQ(::GetCursor(), wait);
  application.DoMessageBox("It is so.", "Title", 0, 0);
  EXPECT_EQ(::GetCursor(), wait) << "after a box, too";
  application.EndWaitCursor();
  EXPECT_EQ(::GetCursor(), arrow);
  ::SetCursor(before);
}

TEST_F(Desktop, AStampHasLettersOnBackground) {
  CStampImage const stamp = application.MakeStamp("Year 1990");
  EXPECT_GT(stamp.width, 20);
  EXPECT_GT(stamp.height, 8);
  ASSERT_EQ(stamp.letters.size(), static_cast<std::size_t>(stamp.width * stamp.height));
  auto const letters = std::count(stamp.letters.begin(), stamp.letters.end(), 1);
  EXPECT_GT(letters, 30);
  EXPECT_LT(letters, stamp.width * stamp.height / 2);
  EXPECT_GT(application.MakeStamp("Year 1990, and more").width, stamp.width);
}

// A window station that nobody sees, as a service has one, for as long as this lives.
class UnseenStation {
 public:
  UnseenStation()
      : m_before(::GetProcessWindowStation()),
        m_station(::CreateWindowStationA("quillaven-unseen", 0, GENERIC_ALL, nullptr)) {
    EXPECT_TRUE(::SetProcessWindowStation(m_station));
  }
  ~UnseenStation() {
    ::SetProcessWindowStation(m_before);
    ::CloseWindowStation(m_station);
  }
  UnseenStation(UnseenStation const &) = delete;
  UnseenStation &operator=(UnseenStation const &) = delete;

 private:
  HWINSTA m_before;
  HWINSTA m_station;
};

class TellingApplication : public CDesktopApplication {
 public:
  int DoMessageBox(char const *text, char const * /*title*/, unsigned int /*type*/,
                   unsigned int /*helpId*/) override {
    said = text;
    return 1;
  }
  std::string said;
};

TEST(DesktopApplication, WhereNobodySeesWindowsCancelsAndSaysSo) {
  TellingApplication application;
  EXPECT_TRUE(application.HasDisplay());
  {
    UnseenStation const station;
    EXPECT_FALSE(application.HasDisplay());
    CSpline table = DistanceTable();
    EXPECT_EQ(CSpline::DoModal(table), 2U);
    EXPECT_EQ(application.said, "There is no display to show a dialog on.");
  }
  EXPECT_TRUE(application.HasDisplay());
}

TEST(DesktopApplication, CanBeMadeAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    DrivenApplication application;
    CSpline table = DistanceTable();
    WindowDriver driver;
    driver.scripts = {[](WindowDriver &d) { d.Click(kOk); }};
    EXPECT_EQ(CSpline::DoModal(table), 1U);
  }
}

TEST(DesktopApplication, BringsTheApplicationBeforeBack) {
  CApplication *const before = &GetApplication();
  {
    CDesktopApplication application;
    EXPECT_EQ(&GetApplication(), &application);
  }
  EXPECT_EQ(&GetApplication(), before);
}

// ---- Forms ---------------------------------------------------------------------------------------

// The forms of the dialogs that open, without opening them.
class FormReader : public CApplication {
 public:
  FormReader() : m_before(SetApplication(this)) {}
  ~FormReader() override { SetApplication(m_before); }
  FormReader(FormReader const &) = delete;
  FormReader &operator=(FormReader const &) = delete;

  unsigned int RunModal(CDialog &dialog) override {
    forms.emplace_back(dialog.Template().resource, BuildForm(dialog));
    if (dialog.Template().resource != 102) return CDialog::kCancel;
    dialog.Place(kMinX, {0, 0, 10, 10});
    dialog.Place(kMaxX, {190, 0, 200, 10});
    dialog.Place(kMinY, {0, 190, 10, 200});
    dialog.OnInitDialog();
    dialog.OnCommand(kOptions);
    dialog.OnRButtonDown({192, 100});  // the last point, in the middle of the right edge
    return CDialog::kCancel;
  }
  std::vector<std::pair<int, std::vector<unsigned char>>> forms;

 private:
  CApplication *m_before;
};

// What is built from a template is what the resource compiler makes of the same dialog.
TEST(DialogForms, AreThoseOfTheResourcesByteForByte) {
  CSpline table = Table({{0, 0}, {8, 0}});
  table.MaxX(8);
  FormReader reader;
  CSpline::DoModal(table);
  HMODULE const library = ::GetModuleHandleA("QuillavenLib.dll");
  ASSERT_NE(library, nullptr);
  ASSERT_EQ(reader.forms.size(), 3U);
  for (auto const &[id, form] : reader.forms) {
    SCOPED_TRACE(id);
    HRSRC const found = ::FindResourceA(library, MAKEINTRESOURCEA(id), RT_DIALOG);
    ASSERT_NE(found, nullptr);
    auto const *bytes =
        static_cast<unsigned char const *>(::LockResource(::LoadResource(library, found)));
    DWORD const size = ::SizeofResource(library, found);
    ASSERT_GE(size, form.size());
    EXPECT_LT(size, form.size() + 4) << "but for zeros at the end";
    EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + form.size()), form);
  }
}

}  // namespace
