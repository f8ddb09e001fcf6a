#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/editor/dialog.h>
#include <quillaven/editor/dialog_template_internal.h>

#include "tests/support/dialog_application.h"

namespace {

using Kind = CControl::Kind;

CDialogTemplate SmallTemplate() {
  CDialogTemplate form;
  form.title = "Small";
  form.width = 60;
  form.height = 40;
  form.controls = {Item(Kind::defaultButton, 1, "OK", 0, 0, 20, 10),
                   Item(Kind::button, 2, "Cancel", 20, 0, 20, 10),
                   Item(Kind::edit, 10, "", 0, 10, 20, 10),
                   ReadOnlyEdit(11, 20, 10, 20, 10),
                   Item(Kind::checkBox, 12, "Check", 0, 20, 20, 10),
                   Item(Kind::radioButton, 13, "Radio", 20, 20, 20, 10),
                   Item(Kind::button, 14, "Command", 40, 20, 20, 10),
                   Item(Kind::edit, 15, "", 0, 30, 20, 10)};
  return form;
}

class SmallDialog : public CDialog {
 public:
  SmallDialog() : CDialog(SmallTemplate()) {}
  void OnCommand(int id, int notification) override {
    commands.push_back(id);
    CDialog::OnCommand(id, notification);
  }
  void Hide(int id) { Changed(id).shown = false; }
  using CDialog::InvalidateRect;
  using CDialog::Title;
  using CDialog::UpdateData;

  float number = 1.5F;
  float second = 0;
  int check = 1;
  std::vector<int> commands;

 protected:
  bool DoDataExchange(bool save) override {
    ExchangeCheck(save, 12, check);
    return ExchangeNumber(save, 10, number) && ExchangeNumber(save, 15, second);
  }
};

TEST(Dialog, OpensWithItsFieldsInTheControls) {
  SmallDialog dialog;
  EXPECT_EQ(dialog.Title(), "Small");
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(10).text, "1.5");
  EXPECT_TRUE(dialog.Control(12).checked);
  EXPECT_EQ(dialog.Control(11).pixels.left, 40);
  EXPECT_EQ(dialog.Control(11).pixels.bottom, 40);
  EXPECT_EQ(dialog.Result(), 0U);
  EXPECT_EQ(dialog.OnQueryDragIcon(), nullptr);
}

TEST(Dialog, LeavesTheFirstFocusToTheWindow) {
  SmallDialog dialog;
  EXPECT_EQ(dialog.OnInitDialog(), 1);
  EXPECT_EQ(dialog.TakeFocusRequest(), -1);
}

TEST(Dialog, OpensEachTimeAsItsTemplateSays) {
  DialogApplication application;
  SmallDialog dialog;
  application.scripts = {
      [&](CDialog &) {
        dialog.Hide(12);
        dialog.Title("Changed");
        dialog.Type(10, "seven");
        dialog.InvalidateRect({0, 0, 1, 1});
        dialog.Press(1);
        EXPECT_EQ(application.boxes.size(), 1U);  // the focus is asked for
        dialog.Press(2);
      },
      [&](CDialog &) {
        CRect rectangle;
        EXPECT_EQ(dialog.Result(), 0U);
        EXPECT_EQ(dialog.Title(), "Small");
        EXPECT_TRUE(dialog.Control(12).shown);
        EXPECT_EQ(dialog.Control(10).text, "1.5");
        EXPECT_EQ(dialog.Control(10).pixels.top, 20);
        EXPECT_EQ(dialog.TakeFocusRequest(), -1);
        EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
        dialog.Press(1);
      },
  };
  EXPECT_EQ(dialog.DoModal(), 2U);
  EXPECT_EQ(dialog.DoModal(), 1U);
}

TEST(Dialog, CancelReadsNothing) {
  SmallDialog dialog;
  OpenInPixels(dialog);
  dialog.Type(10, "7");
  dialog.Press(2);
  EXPECT_EQ(dialog.Result(), 2U);
  EXPECT_EQ(dialog.number, 1.5F);
}

TEST(Dialog, OkReadsTheControlsIntoTheFields) {
  SmallDialog dialog;
  OpenInPixels(dialog);
  dialog.Type(10, " -2.5e3 ");
  dialog.Press(12);
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 1U);
  EXPECT_EQ(dialog.number, -2500.0F);
  EXPECT_EQ(dialog.check, 0);
}

TEST(Dialog, RefusesATextThatIsNoNumberAndLosesNothing) {
  for (char const *text :
       {"", "  ", "abc", "1,5", "1.5x", "nan", "inf", "0x10", "1e99", "--1", ".", "e5", "1 2"}) {
    SCOPED_TRACE(text);
    RecordingApplication application;
    SmallDialog dialog;
    OpenInPixels(dialog);
    dialog.Type(10, text);
    dialog.Press(1);
    EXPECT_EQ(dialog.Result(), 0U);
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, "Please enter a number.");
    EXPECT_EQ(application.boxes[0].type, 48U) << "with an exclamation mark";
    EXPECT_EQ(dialog.TakeFocusRequest(), 10);
    EXPECT_EQ(dialog.TakeFocusRequest(), -1);
    EXPECT_EQ(dialog.Control(10).text, text);
    EXPECT_EQ(dialog.number, 1.5F);
    dialog.Type(10, "2");
    dialog.Press(1);
    EXPECT_EQ(dialog.Result(), 1U);
    EXPECT_EQ(dialog.number, 2.0F);
  }
}

TEST(Dialog, TakesAnyFormOfANumber) {
  struct Case {
    char const *text;
    float value;
  };
  for (Case const &c : {Case{"+5", 5.0F},
                        {".5", 0.5F},
                        {"5.", 5.0F},
                        {"1E2", 100.0F},
                        {"1e-60", 0.0F},
                        {"\t-0.25\n", -0.25F}}) {
    SCOPED_TRACE(c.text);
    SmallDialog dialog;
    OpenInPixels(dialog);
    dialog.Type(10, c.text);
    dialog.Press(1);
    EXPECT_EQ(dialog.Result(), 1U);
    EXPECT_EQ(dialog.number, c.value);
  }
}

TEST(Dialog, NumbersHaveSixDigitsAndMoreOnlyWhereTheseWouldLoseSomething) {
  struct Case {
    float value;
    char const *text;
  };
  for (Case const &c : {Case{0.1F, "0.1"},
                        {100000.0F, "100000"},
                        {1e6F, "1e+06"},
                        {1.0F / 3, "0.33333334"},
                        {-1.0F, "-1"},
                        {16777215.0F, "16777215"},
                        {1234567.0F, "1234567"},
                        {std::numeric_limits<float>::max(), "3.4028235e+38"}}) {
    SmallDialog dialog;
    dialog.number = c.value;
    OpenInPixels(dialog);
    EXPECT_EQ(dialog.Control(10).text, c.text);
    dialog.Press(1);
    EXPECT_EQ(dialog.number, c.value);
  }
}

TEST(Dialog, AValueThatIsNoNumberIsShownAndRefused) {
  RecordingApplication application;
  SmallDialog dialog;
  dialog.number = std::numeric_limits<float>::quiet_NaN();
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(10).text, "nan");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 0U);
}

TEST(Dialog, ACheckBoxTurnsByItselfAndARadioButtonDoesNot) {
  SmallDialog dialog;
  OpenInPixels(dialog);
  dialog.Press(12);
  EXPECT_FALSE(dialog.Control(12).checked);
  dialog.Press(12);
  EXPECT_TRUE(dialog.Control(12).checked);
  dialog.Press(13);
  EXPECT_FALSE(dialog.Control(13).checked);
  EXPECT_EQ(dialog.commands, (std::vector<int>{12, 12, 13}));
}

TEST(Dialog, HiddenControlsCannotBePressedAndReadOnlyEditsNotTypedIn) {
  SmallDialog dialog;
  OpenInPixels(dialog);
  dialog.Hide(12);
  dialog.Press(12);
  dialog.Press(99);
  EXPECT_TRUE(dialog.commands.empty());
  dialog.Type(11, "7");
  dialog.Type(14, "7");
  dialog.Type(99, "7");
  EXPECT_EQ(dialog.Control(11).text, "");
  EXPECT_EQ(dialog.Control(14).text, "Command");
  EXPECT_THROW(dialog.Control(99), std::out_of_range);
}

TEST(Dialog, JoinsTheRectanglesThatArePaintedAnew) {
  SmallDialog dialog;
  CRect rectangle;
  EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
  dialog.InvalidateRect({10, 10, 20, 20});
  dialog.InvalidateRect({5, 15, 12, 40});
  ASSERT_TRUE(dialog.TakeInvalidRect(rectangle));
  EXPECT_EQ(rectangle.left, 5);
  EXPECT_EQ(rectangle.top, 10);
  EXPECT_EQ(rectangle.right, 20);
  EXPECT_EQ(rectangle.bottom, 40);
  EXPECT_FALSE(dialog.TakeInvalidRect(rectangle));
}

TEST(Dialog, IsRunByTheApplicationInForce) {
  DialogApplication application;
  application.scripts = {[](CDialog &dialog) { dialog.Press(1); }};
  SmallDialog dialog;
  EXPECT_EQ(dialog.DoModal(), 1U);
  EXPECT_EQ(application.opened, 1U);
  EXPECT_EQ(dialog.DoModal(), 2U);
}

TEST(Dialog, IsCancelledWithoutAnApplication) {
  SmallDialog dialog;
  EXPECT_EQ(dialog.DoModal(), 2U);
}

}  // namespace
