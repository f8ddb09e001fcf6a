// The spline tool and its dialogs in real windows, worked by real events.
//
// These run under a virtual display of their own (on_virtual_display.sh). Screenshots go to the folder that
// QUILLAVEN_SCREENSHOTS names, so that one can look at what a user would see.

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <wx/app.h>
#include <wx/checkbox.h>
#include <wx/debug.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/textctrl.h>

#include <gtest/gtest.h>

#include <quillaven/desktop/desktop_application.h>
#include <quillaven/editor/spline_dialog_internal.h>
#include <quillaven/functions/spline.h>

#include "desktop/wx/window_driver.h"
#include "tests/support/bare_dialog.h"
#include "tests/support/spline_tables.h"

namespace {

void ToolkitComplains(wxString const &file, int line, wxString const &function,
                      wxString const &condition, wxString const &message) {
  ADD_FAILURE() << file << ":" << line << " " << function << ": " << condition << " " << message;
}

class Desktop : public testing::Test {
 protected:
  Desktop() {
    EXPECT_TRUE(application.HasDisplay());
    wxSetAssertHandler(ToolkitComplains);
  }
  CDesktopApplication application;
};

std::string ScreenshotFile(std::string const &name) {
  char const *folder = std::getenv("QUILLAVEN_SCREENSHOTS");
  std::filesystem::path const path =
      folder != nullptr ? folder : std::filesystem::temp_directory_path() / "quillaven-screenshots";
  std::filesystem::create_directories(path);
  return (path / (name + ".png")).string();
}

// Where a value of a table lies in the window, by the mapping of the model and the real controls.
struct Places {
  explicit Places(WindowDriver const &driver, PlotLimits limits = {0, 8, -10, 100}) {
    wxRect const left = driver.Control("1007").GetRect();
    wxRect const top = driver.Control("1005").GetRect();
    wxRect const right = driver.Control("1008").GetRect();
    wxRect const bottom = driver.Control("1006").GetRect();
    scale = {{left.x, top.y, right.x + right.width, bottom.y + bottom.height}, limits};
  }
  wxPoint At(double x, double y) const { return {scale.PixelX(x), scale.PixelY(y)}; }

  PlotScale scale;
};

TEST_F(Desktop, LaysTheToolOutByTheTemplateAndFillsItsControls) {
  CSpline table = DistanceTable();
  table.Name("distance decay");
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    wxDialog &window = d.Window();
    EXPECT_EQ(window.GetTitle(), "distance decay");
    EXPECT_FALSE(window.GetIcon().IsSameAs(wxNullIcon));
    EXPECT_EQ(window.GetClientSize(), window.ConvertDialogToPixels(wxSize(387, 204)));
    EXPECT_EQ(d.Control("1009").GetPosition(), window.ConvertDialogToPixels(wxPoint(305, 7)));
    EXPECT_EQ(d.TextOf("1005"), "100");
    EXPECT_EQ(d.TextOf("1006"), "-10");
    EXPECT_EQ(d.TextOf("1007"), "0");
    EXPECT_EQ(d.TextOf("1008"), "8");
    EXPECT_FALSE(d.As<wxTextCtrl>("1005").IsEditable());
    EXPECT_EQ(d.As<wxListBox>("1009").GetCount(), 30U);
    EXPECT_EQ(d.As<wxListBox>("1009").GetString(0), "0.00    80");
    EXPECT_TRUE(d.As<wxRadioButton>("5015").GetValue());
    EXPECT_TRUE(d.Control("5000").IsShown());
    d.Key(WXK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ADragMovesAPointAndOkGivesTheTableBack) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    wxListBox const &list = d.As<wxListBox>("1009");
    wxArrayString const before = list.GetStrings();
    d.Drag(places.At(1, 75), places.At(3, 40));
    EXPECT_FALSE(list.GetStrings() == before);
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  ASSERT_EQ(table.GetSize(), 3);
  EXPECT_NEAR(table.GetXAt(1), 3, 0.05);
  EXPECT_NEAR(table.GetYAt(1), 40, 1);
}

TEST_F(Desktop, TheMouseBelongsToTheToolWhileAPointIsDragged) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    wxPoint const from = places.At(1, 75);
    d.Press(from);
    EXPECT_TRUE(d.Panel().HasCapture());
    d.MoveTo({-20, -20});  // outside the window: nothing moves
    d.Settle();
    d.MoveTo({from.x, from.y + 30});
    d.Settle();
    d.Release();
    EXPECT_FALSE(d.Panel().HasCapture());
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(table.GetXAt(1), 1.0);
  EXPECT_LT(table.GetYAt(1), 75.0);
}

// The toolkit may leave out the last move.
TEST_F(Desktop, ADragEndsWhereTheButtonComesUp) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.Press(places.At(1, 75));
    wxMouseEvent up(wxEVT_LEFT_UP);
    up.SetPosition(places.At(3, 40));
    d.Panel().GetEventHandler()->ProcessEvent(up);
    EXPECT_FALSE(d.Panel().HasCapture());
    d.Release();
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  ASSERT_EQ(table.GetSize(), 3);
  EXPECT_NEAR(table.GetXAt(1), 3, 0.05);
  EXPECT_NEAR(table.GetYAt(1), 40, 1);
}

// The values of the point open while the left button is down: the drag ends there, and the button
// that comes up in another window, or later, does no harm.
TEST_F(Desktop, ARightClickEndsADrag) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
                      Places const places(d);
                      d.Press(places.At(1, 75));
                      EXPECT_TRUE(d.Panel().HasCapture());
                      wxPoint const moved = places.At(3, 40);
                      d.MoveTo(moved);
                      d.Settle();
                      d.RightClick(moved);
                      EXPECT_FALSE(d.Panel().HasCapture());
                      d.MoveTo(places.At(6, 90));  // drags nothing any more
                      d.Settle();
                      EXPECT_EQ(d.As<wxListBox>("1009").GetString(0), "0.00    80");
                      d.Click("1");
                    },
                    [](WindowDriver &d) {
                      EXPECT_EQ(d.Window().GetTitle(), "Edit point");
                      double x = 0;
                      EXPECT_TRUE(d.TextOf("5016").ToCDouble(&x));
                      EXPECT_NEAR(x, 3, 0.05);
                      d.Release();  // the left button, above the other window
                      d.Write("5016", "4");
                      d.Write("5017", "50");
                      d.Key(WXK_RETURN);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 80}, {4, 50}, {8, 0}}));
}

TEST_F(Desktop, CancelLeavesTheTable) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.Drag(places.At(1, 75), places.At(3, 40));
    d.Click("2");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_EQ(PointsOf(table), PointsOf(DistanceTable()));
}

TEST_F(Desktop, DoubleClicksAddAndRemovePoints) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Places const places(d);
    d.DoubleClick(places.At(5, 90));
    d.DoubleClick(places.At(6, 20));
    d.DoubleClick(places.At(1, 75));  // removed
    d.DoubleClick(places.At(8, 0));   // the last stays
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  ASSERT_EQ(table.GetSize(), 4);
  EXPECT_NEAR(table.GetXAt(1), 5, 0.03);
  EXPECT_NEAR(table.GetYAt(1), 90, 1);
  EXPECT_NEAR(table.GetXAt(2), 6, 0.03);
}

TEST_F(Desktop, ARightClickOpensTheValuesOfAPoint) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
                      Places const places(d);
                      d.RightClick(places.At(1, 75));
                      d.Click("1");
                    },
                    [](WindowDriver &d) {
                      EXPECT_EQ(d.Window().GetTitle(), "Edit point");
                      EXPECT_EQ(d.TextOf("5016"), "1");
                      EXPECT_EQ(d.TextOf("5017"), "75");
                      EXPECT_TRUE(d.TextOf("5018").StartsWith("N.B.: X between 0.0"));
                      d.Photograph(ScreenshotFile("edit-point"));
                      d.Write("5016", "9");
                      d.Key(WXK_RETURN);  // refused in a box
                      EXPECT_TRUE(d.Control("5016").HasFocus());
                      EXPECT_EQ(d.TextOf("5016"), "9");
                      d.Write("5016", "abc");
                      d.Key(WXK_RETURN);  // refused in a box
                      EXPECT_EQ(d.TextOf("5016"), "abc");
                      d.Write("5016", "2.5");
                      d.Write("5017", "-5");
                      d.Key(WXK_RETURN);
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 80}, {2.5, -5}, {8, 0}}));
  ASSERT_EQ(driver.messages.size(), 2U);
  EXPECT_TRUE(driver.messages[0].StartsWith("N.B.: X between 0.0"));
  EXPECT_EQ(driver.messages[1], "Please enter a number.");
}

TEST_F(Desktop, TheXOfTheFirstPointCannotBeTyped) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
                      Places const places(d);
                      d.RightClick(places.At(0, 80));
                      d.Key(WXK_RETURN);
                    },
                    [](WindowDriver &d) {
                      EXPECT_FALSE(d.As<wxTextCtrl>("5016").IsEditable());
                      EXPECT_EQ(d.TextOf("5018"), "");
                      d.Write("5016", "3");
                      d.Write("5017", "60");
                      d.Click("1");
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 60}, {1, 75}, {8, 0}}));
}

TEST_F(Desktop, OptionsSetTheLimits) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
                      d.Click("5004");
                      EXPECT_EQ(d.TextOf("1005"), "120");
                      EXPECT_EQ(d.TextOf("1008"), "8.5");
                      d.Click("1");
                    },
                    [](WindowDriver &d) {
                      EXPECT_EQ(d.Window().GetTitle(), "Options");
                      EXPECT_EQ(d.TextOf("5006"), "8");
                      d.Photograph(ScreenshotFile("options"));
                      d.Write("5007", "120");
                      d.Write("5006", "8.5");
                      d.Click("1");
                    }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(table.MaxY(), 120.0F);
  EXPECT_EQ(table.MaxX(), 8.5F);
}

TEST_F(Desktop, SplineGridAndTicksShowInThePicture) {
  CSpline table = DistanceTable();
  table.Name("distance decay");
  table.Add(2.5, 30);
  table.Add(4, 55);
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    constexpr unsigned long kBlue = 0xFF0000;
    constexpr unsigned long kRed = 0x0000FF;
    constexpr unsigned long kGrey = 0x7F7F7F;
    Screenshot const plain = d.Photograph(ScreenshotFile("linear"));
    EXPECT_GT(plain.CountOf(kBlue), 200);
    EXPECT_GT(plain.CountOf(kRed), 500) << "two axes";
    EXPECT_LT(plain.CountOf(kGrey), 300);
    d.Click("5014");
    EXPECT_TRUE(d.As<wxRadioButton>("5014").GetValue());
    d.Click("5010");
    d.Click("5000");
    EXPECT_TRUE(d.As<wxCheckBox>("5010").GetValue());
    Places const places(d);
    d.Press(places.At(4, 55));
    Screenshot const full = d.Photograph(ScreenshotFile("spline-grid-ticks"));
    d.Release();
    EXPECT_GT(full.CountOf(kBlue), 200);
    EXPECT_GT(full.CountOf(kGrey), 20 * 300) << "a tick at each distance";
    EXPECT_GT(full.CountOf(0), plain.CountOf(0) + 1000) << "the grid";
    EXPECT_GT(full.CountOf(kRed), plain.CountOf(kRed) - 60 + 100) << "a selected handle";
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_FALSE(table.TableLinear());
}

TEST_F(Desktop, TheTicksAreHiddenForATableThatEndsElsewhere) {
  CSpline table = DistanceTable();
  table.MaxX(8.5F);
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    EXPECT_FALSE(d.Control("5000").IsShown());
    EXPECT_EQ(d.As<wxListBox>("1009").GetCount(), 3U);
    d.Key(WXK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, LongNumbersAreWrittenSmallerAndToldInWholeWhereTheyAreCut) {
  CSpline table = Table({{-1234.56, 0.5}, {12345.6, -1.23457e-05}, {1.23457e6, 1}});
  table.MinX(-123.5F);
  table.MaxX(1.23457e6F);
  table.MinY(0);
  table.MaxY(1);
  WindowDriver driver;
  driver.scripts = {
      [](WindowDriver &d) {
        auto const points = [&d](char const *id) { return d.Control(id).GetFont().GetPointSize(); };
        int const usual = d.Control("1").GetFont().GetPointSize();
        EXPECT_EQ(points("1005"), usual);
        EXPECT_LT(points("1007"), usual);
        EXPECT_EQ(d.Control("1007").GetToolTipText(), "") << "it fits, small as it is";
        EXPECT_EQ(d.TextOf("1008"), "1.23457e+06");
        EXPECT_EQ(d.Control("1008").GetToolTipText(), "1.23457e+06");
        EXPECT_LT(points("1009"), usual);
        auto &list = d.As<wxListBox>("1009");
        EXPECT_LT(list.GetTextExtent(list.GetString(1)).x, list.GetSize().x);
        d.Photograph(ScreenshotFile("long-numbers"));
        d.Click("5004");
        EXPECT_EQ(points("1008"), usual) << "the limit is short now";
        EXPECT_EQ(d.Control("1008").GetToolTipText(), "");
        d.Key(WXK_ESCAPE);
      },
      [](WindowDriver &d) {
        d.Write("5006", "9");
        d.Click("1");
      }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, ADoubleClickInTheListShowsABox) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    wxPoint const list = d.Control("1009").GetPosition();
    d.DoubleClick({list.x + 30, list.y + 30});
    d.Key(WXK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  ASSERT_EQ(driver.messages.size(), 1U);
  EXPECT_EQ(driver.messages[0], "double click!");
}

TEST_F(Desktop, ReturnPressesOkAndOnCancelCancels) {
  for (char const *button : {"1", "2"}) {
    CSpline table = DistanceTable();
    WindowDriver driver;
    driver.scripts = {[button](WindowDriver &d) {
      d.Focus(button);
      d.Key(WXK_RETURN);
    }};
    EXPECT_EQ(CSpline::DoModal(table), button[0] == '1' ? 1U : 2U);
  }
}

TEST_F(Desktop, ClosingTheWindowCancels) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) { d.Window().Close(); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

// The dialog follows in its next paint; until then the window must not turn the button back.
TEST_F(Desktop, ARadioButtonStaysPressedUntilTheDialogFollows) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    auto &spline = d.As<wxRadioButton>("5014");
    EXPECT_FALSE(spline.GetValue());
    spline.SetValue(true);
    wxCommandEvent event(wxEVT_RADIOBUTTON);
    event.SetEventObject(&spline);
    spline.GetEventHandler()->ProcessEvent(event);
    EXPECT_TRUE(spline.GetValue());
    d.Settle();
    EXPECT_TRUE(spline.GetValue());
    EXPECT_FALSE(d.As<wxRadioButton>("5015").GetValue());
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_FALSE(table.TableLinear());
}

TEST_F(Desktop, ADialogWithoutButtonsClosesByKeysAndByItsBox) {
  std::vector<std::pair<WindowDriver::Script, unsigned int>> const ways = {
      {[](WindowDriver &d) { d.Window().Close(); }, CDialog::kCancel},
      {[](WindowDriver &d) { d.Key(WXK_ESCAPE); }, CDialog::kCancel},
      {[](WindowDriver &d) { d.Key(WXK_RETURN); }, CDialog::kOk}};
  for (auto const &[way, result] : ways) {
    CBareDialog dialog;
    WindowDriver driver;
    driver.scripts = {[&way = way](WindowDriver &d) {
      d.Window().Raise();
      d.Panel().SetFocus();
      d.Settle();
      way(d);
    }};
    EXPECT_EQ(dialog.DoModal(), result);
  }
}

TEST_F(Desktop, ALineGoesOnWithAnotherPen) {
  CBareDialog dialog;
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    Screenshot const shot = d.Photograph(ScreenshotFile("pens"));
    EXPECT_GT(shot.CountOf(0x0000FF), 2 * 80);
    EXPECT_GT(shot.CountOf(0xFF0000), 2 * 50);
    d.Window().Close();
  }};
  EXPECT_EQ(dialog.DoModal(), CDialog::kCancel);
}

TEST_F(Desktop, ASplineThatCannotBeBuiltClosesTheWindow) {
  CSpline table = Table({{0, 0}, {1e-7, 0}, {1, 0}});
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) { d.Click("5014"); }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  EXPECT_TRUE(table.TableLinear());
}

// Reaches the commands that have no control.
class OwnerOfDialogs : public CDesktopApplication {
 public:
  unsigned int RunModal(CDialog &dialog) override {
    open = &dialog;
    return CDesktopApplication::RunModal(dialog);
  }
  void BeginWaitCursor() override {
    ++waits;
    CDesktopApplication::BeginWaitCursor();
    EXPECT_TRUE(wxIsBusy());
  }
  CDialog *open = nullptr;
  int waits = 0;
};

TEST_F(Desktop, AnOwnersCommandThinsTheTableAndTheWindowShowsIt) {
  OwnerOfDialogs owner;
  CSpline table = Table({{0, 0}, {1, 10.5}, {2, 20}, {4, 80}, {5, 60}, {6, 40.5}, {8.5, -5}});
  table.MinX(0);
  table.MaxX(8.5F);
  table.MinY(-10);
  table.MaxY(100);
  table.TableLinear(false);
  WindowDriver driver;
  driver.scripts = {[&owner](WindowDriver &d) {
    EXPECT_EQ(d.As<wxListBox>("1009").GetCount(), 7U);
    EXPECT_TRUE(d.As<wxRadioButton>("5014").GetValue());
    owner.open->OnCommand(CSplineDialog::kThin);
    d.Settle();
    EXPECT_EQ(d.As<wxListBox>("1009").GetCount(), 5U);
    EXPECT_EQ(d.As<wxListBox>("1009").GetString(1), "2  20");
    EXPECT_TRUE(d.As<wxRadioButton>("5015").GetValue());
    EXPECT_FALSE(d.As<wxRadioButton>("5014").GetValue());
    EXPECT_FALSE(wxIsBusy());
    d.Photograph(ScreenshotFile("thinned"));
    d.Click("1");
  }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
  EXPECT_EQ(owner.waits, 1);
  EXPECT_TRUE(table.TableLinear());
  EXPECT_EQ(PointsOf(table), (Pairs{{0, 0}, {2, 20}, {4, 80}, {6, 40.5}, {8.5, -5}}));
}

TEST_F(Desktop, LinesFromEdgeToEdgeStayWithinTheFrame) {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) {
    d.Click("5010");
    Screenshot const shot = d.Photograph(ScreenshotFile("grid"));
    CRect const plot = Places(d).scale.plot;
    int const width = d.Window().GetScreenRect().width;
    auto const at = [&](int x, int y) {
      return shot.pixels[static_cast<std::size_t>(y * width + x)];
    };
    for (int y = plot.top; y < plot.bottom; ++y) {
      EXPECT_EQ(at(plot.right, y), at(plot.right, plot.top)) << "right of the frame, row " << y;
      EXPECT_EQ(at(plot.left - 1, y), at(plot.left - 1, plot.top)) << "left of it, row " << y;
    }
    for (int x = plot.left; x < plot.right; ++x)
      EXPECT_EQ(at(x, plot.bottom), at(plot.left, plot.bottom)) << "below it, column " << x;
    EXPECT_EQ(at(plot.right - 1, plot.top + 40), 0U) << "the frame";
    d.Key(WXK_ESCAPE);
  }};
  EXPECT_EQ(CSpline::DoModal(table), 2U);
}

TEST_F(Desktop, BoxesHaveTheTextAndTitleOfTheLibrary) {
  WindowDriver driver;
  for (unsigned int const type : {0U, 16U, 48U})
    EXPECT_EQ(application.DoMessageBox("It is so.", "Title", type, 0), 1);
  EXPECT_EQ(driver.messages, (std::vector<wxString>{"It is so.", "It is so.", "It is so."}));
  EXPECT_EQ(driver.titles, (std::vector<wxString>{"Title", "Title", "Title"}));
}

TEST_F(Desktop, WaitCursorsCount) {
  application.EndWaitCursor();
  EXPECT_FALSE(wxIsBusy());
  application.BeginWaitCursor();
  application.BeginWaitCursor();
  application.EndWaitCursor();
  EXPECT_TRUE(wxIsBusy());
  application.EndWaitCursor();
  EXPECT_FALSE(wxIsBusy());
}

TEST_F(Desktop, AStampHasLettersOnBackground) {
  CStampImage const stamp = application.MakeStamp("Year 1990");
  EXPECT_GT(stamp.width, 20);
  EXPECT_GT(stamp.height, 8);
  ASSERT_EQ(stamp.letters.size(), static_cast<std::size_t>(stamp.width * stamp.height));
  auto const letters = std::count(stamp.letters.begin(), stamp.letters.end(), 1);
  EXPECT_GT(letters, 30);
  EXPECT_LT(letters, stamp.width * stamp.height / 2);
  EXPECT_EQ(letters + std::count(stamp.letters.begin(), stamp.letters.end(), 0),
            stamp.width * stamp.height);
  EXPECT_GT(application.MakeStamp("Year 1990, and more").width, stamp.width);
}

TEST_F(Desktop, AStampWithoutLettersOrOfEndlessLengthIsThatOfTheLibrary) {
  CApplication builtIn;
  for (std::string const &text : {std::string(), std::string(5000, 'x')}) {
    CStampImage const stamp = application.MakeStamp(text.c_str());
    EXPECT_EQ(stamp.width, builtIn.MakeStamp(text.c_str()).width);
  }
}

// The variable that names the display, taken away for as long as this lives. A display that was open
// once in a process stays so: these tests run in a process of their own, in this order.
class NoDisplay {
 public:
  NoDisplay() : m_name(std::getenv("DISPLAY")) { unsetenv("DISPLAY"); }
  ~NoDisplay() { setenv("DISPLAY", m_name.c_str(), 1); }
  NoDisplay(NoDisplay const &) = delete;
  NoDisplay &operator=(NoDisplay const &) = delete;

 private:
  std::string m_name;
};

TEST(WithoutDisplay, CancelsAndSaysSo) {
  NoDisplay const none;
  CDesktopApplication application;
  ASSERT_FALSE(application.HasDisplay());
  CSpline table = DistanceTable();
  testing::internal::CaptureStderr();
  EXPECT_EQ(CSpline::DoModal(table), 2U);
  std::string const said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("There is no display to show a dialog on."), std::string::npos) << said;
  EXPECT_EQ(said.find("GTK"), std::string::npos) << said;
  application.BeginWaitCursor();
  application.EndWaitCursor();
  EXPECT_EQ(application.MakeStamp("1990").width, CApplication().MakeStamp("1990").width);
}

TEST(WithoutDisplay, FindsADisplayThatComesLater) {
  CDesktopApplication application;
  {
    NoDisplay const none;
    EXPECT_FALSE(application.HasDisplay());
  }
  EXPECT_TRUE(application.HasDisplay());
}

TEST(DesktopApplication, CanBeMadeAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    CDesktopApplication application;
    CSpline table = DistanceTable();
    ASSERT_TRUE(application.HasDisplay());
    ASSERT_NE(wxTheApp, nullptr);
    WindowDriver driver;
    driver.scripts = {[](WindowDriver &d) { d.Click("1"); }};
    EXPECT_EQ(CSpline::DoModal(table), 1U);
  }
  EXPECT_EQ(wxTheApp, nullptr) << "the toolkit is stopped by whoever started it";
}

TEST(DesktopApplication, UsesTheToolkitOfAProgramThatHasOne) {
  int count = 0;
  char *arguments[] = {nullptr};
  wxApp::SetInstance(new wxApp);
  ASSERT_TRUE(wxEntryStart(count, arguments));
  wxAppConsole *const own = wxTheApp;
  {
    CDesktopApplication application;
    CSpline table = DistanceTable();
    WindowDriver driver;
    driver.scripts = {[](WindowDriver &d) { d.Key(WXK_ESCAPE); }};
    EXPECT_EQ(CSpline::DoModal(table), 2U);
    EXPECT_EQ(wxTheApp, own);
  }
  EXPECT_EQ(wxTheApp, own);
  wxEntryCleanup();
}

TEST(DesktopApplication, LeavesTheLocaleOfTheProgram) {
  std::string const before = std::setlocale(LC_ALL, nullptr);
  CDesktopApplication application;
  EXPECT_TRUE(application.HasDisplay());
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

void ShowsTheTool() {
  CSpline table = DistanceTable();
  WindowDriver driver;
  driver.scripts = {[](WindowDriver &d) { d.Click("1"); }};
  EXPECT_EQ(CSpline::DoModal(table), 1U);
}

TEST(DesktopApplication, SeveralCanBeDestroyedInAnyOrder) {
  CApplication *const before = &GetApplication();
  std::vector<std::size_t> order = {0, 1, 2};
  do {
    SCOPED_TRACE(testing::PrintToString(order));
    std::vector<std::unique_ptr<CDesktopApplication>> all(3);
    for (auto &one : all) one = std::make_unique<CDesktopApplication>();
    EXPECT_TRUE(all[order[0]]->HasDisplay()) << "the first to go has started the toolkit";
    for (std::size_t const next : order) {
      all[next].reset();
      CApplication *last = before;
      for (auto const &one : all)
        if (one != nullptr) last = one.get();
      EXPECT_EQ(&GetApplication(), last);
      EXPECT_EQ(wxTheApp != nullptr, last != before) << "the toolkit goes with the last";
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(DesktopApplication, TheOneThatIsLeftStillShowsWindows) {
  auto outer = std::make_unique<CDesktopApplication>();
  ASSERT_TRUE(outer->HasDisplay());
  auto inner = std::make_unique<CDesktopApplication>();
  outer.reset();
  ShowsTheTool();
  outer = std::make_unique<CDesktopApplication>();  // the inner one of the two now
  inner.reset();
  ShowsTheTool();
}

TEST(DesktopApplication, LeavesAnApplicationThatWasPutInForceLater) {
  CApplication *const before = &GetApplication();
  CApplication later;
  {
    CDesktopApplication application;
    EXPECT_EQ(SetApplication(&later), &application);
  }
  EXPECT_EQ(&GetApplication(), &later);
  EXPECT_EQ(SetApplication(before), &later);
}

TEST(DesktopApplication, TakesItsWaitCursorsWithIt) {
  CDesktopApplication outer;
  ASSERT_TRUE(outer.HasDisplay());
  outer.BeginWaitCursor();
  {
    CDesktopApplication inner;
    inner.BeginWaitCursor();
    inner.BeginWaitCursor();
  }
  EXPECT_TRUE(wxIsBusy());
  outer.EndWaitCursor();
  EXPECT_FALSE(wxIsBusy());
}

TEST(DesktopApplication, BringsTheApplicationBeforeBack) {
  CApplication *const before = &GetApplication();
  {
    CDesktopApplication application;
    EXPECT_EQ(&GetApplication(), &application);
  }
  EXPECT_EQ(&GetApplication(), before);
}

}  // namespace
